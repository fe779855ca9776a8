#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "functions/function_table.hpp"
#include "random.hpp"

namespace brindlewort::fuzz {

/// Writes scripts from the function table and the words of the language: as a rule ones that run, and now and
/// then what is refused.
class ScriptWriter {
 public:
  enum class Oddities { kSome, kNone };
  explicit ScriptWriter(Random& random, Oddities oddities = Oddities::kSome)
      : random_(random), oddities_(oddities) {}

  /// Some SET statements and a main expression; statements end with a single carriage return.
  std::string script();
  std::string expression(int depth);
  /// A call of any function of the table.
  std::string call(int depth);
  /// A call of this one, under a name of its.
  std::string call(const FunctionRow& row, std::string_view name, int depth);
  /// A name of the language: of a function, a constant, a price.
  std::string word();
  std::string number();
  /// The names of all constants.
  static const std::vector<std::string>& constants();

 private:
  std::string statement(int number);
  std::string condition(int depth);
  std::string operand(int depth);
  std::string argument(const Slot& slot, int depth);
  std::string whole(const Slot& slot);
  std::string series(int depth);

  /// Now and then, when oddities are wanted at all.
  bool odd(std::size_t oneIn) { return oddities_ == Oddities::kSome && random_.oneIn(oneIn); }

  Random& random_;
  Oddities oddities_;
  int sets_ = 0;  ///< statements so far, whose names may be used
};

}  // namespace brindlewort::fuzz
