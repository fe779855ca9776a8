#pragma once

#include <string>

#include "functions/function_table.hpp"
#include "random.hpp"

namespace brindlewort::fuzz {

/// Writes scripts from the function table and the words of the language: as a rule ones that run, and now and
/// then what is refused.
class ScriptWriter {
 public:
  explicit ScriptWriter(Random& random) : random_(random) {}

  /// Some SET statements and a main expression; statements end with a single carriage return.
  std::string script();
  std::string expression(int depth);
  /// A call of any function of the table.
  std::string call(int depth);
  /// A name of the language: of a function, a constant, a price.
  std::string word();
  std::string number();

 private:
  std::string statement(int number);
  std::string condition(int depth);
  std::string operand(int depth);
  std::string argument(const Slot& slot, int depth);
  std::string whole(const Slot& slot);
  std::string series(int depth);

  Random& random_;
  int sets_ = 0;  ///< statements so far, whose names may be used
};

}  // namespace brindlewort::fuzz
