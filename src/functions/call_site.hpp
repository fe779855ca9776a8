#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "functions/function_table.hpp"
#include "functions/transient_store.hpp"
#include "functions/variable_store.hpp"

namespace brindlewort {

struct Expression;  // of the engine: a text made ready for evaluation

/// The value that an argument has in a call of the incremental way.
struct ArgumentValue {
  const StoreEntry* entry = nullptr;  ///< null for a bare word that is handed on as it stands
  bool hasRows = false;
  double value = 0.0;
  bool operator==(const ArgumentValue& other) const;
};

/// One call in a script of the incremental way, with what can be kept from run to run: the result's entry and
/// the bound arguments. Argument texts are bound anew only when they say something else than before, since
/// most are names and number texts that never change.
struct CallSite {
  struct Argument {
    std::string_view text;             ///< as it stands in the script
    Expression* expression = nullptr;  ///< null until the argument is first evaluated
    bool bareWord = false;             ///< handed on unevaluated while no variable has this name
  };

  std::string_view name;
  std::string_view innerText;
  std::vector<Argument> arguments;  ///< up to the first empty one
  FoundFunction function;

  StoreEntry* result = nullptr;
  std::uint64_t resultShape = 0;  ///< the store's when `result` was found

  // What the arguments were when they were bound, and what they were bound to.
  std::vector<ArgumentValue> values;
  std::vector<ArgumentValue> boundValues;
  std::uint64_t boundShape = 0;
  bool bound = false;
  std::string argumentText;
  std::array<StoreEntry*, kMaxSlots> series{};
  std::array<double, kMaxSlots> numbers{};
  std::array<Expression*, 3> parts{};  ///< expressions that the function itself evaluates

  FieldMemo work;
  std::uint64_t nullSince = 0;  ///< the result is all null since this moment
  std::size_t changedFrom = 0;  ///< first row that the last run may have changed

  bool isSeries(std::size_t slot) const { return series[slot] != nullptr; }
};

}  // namespace brindlewort
