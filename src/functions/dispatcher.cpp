// The dispatcher of the whole-history way: binds the arguments by a walk over the row of the function table
// and runs its batch operation.

#include "functions/function_table.hpp"
#include "functions/row_walk.hpp"
#include "functions/script_engine.hpp"

namespace brindlewort {

namespace {

/// Gives the arguments as the batch operations take them.
struct BatchBinder {
  CScriptEngine& engine;
  Arguments arguments;

  bool bindSeries(std::string_view text, std::size_t i) {
    ScriptVariable variable;
    if (!engine.GetVector(text, variable)) return false;
    arguments.series[i] = std::move(variable.values);
    return true;
  }
  void bindDefault(std::string_view name, std::size_t i) {
    arguments.series[i] = engine.LookupVariable(name).values;
  }
  double& number(std::size_t i) { return arguments.numbers[i]; }
};

bool runRow(CScriptEngine& engine, const FunctionRow& row, FunctionCall& call, ScriptVariable& result) {
  if (row.handler) return row.handler(engine, call, result);
  BatchBinder binder{engine, {}};
  Arguments& arguments = binder.arguments;
  arguments.prices = engine.prices();
  arguments.output = call.output;
  arguments.dryRun = engine.dryRun;
  if (!RowWalk(engine, row, row.slots, call.name, call.argumentText, binder).bind()) return false;
  if (row.scalar) {
    result.value = row.scalar(arguments);
    return true;
  }
  result.values = Series(static_cast<std::size_t>(engine.windowLength), NULL_VALUE);
  if (!row.batch(arguments, result.values.edit())) result.values.clear();
  return true;
}

}  // namespace

ScriptVariable CScriptEngine::EvaluateFunction(std::string_view name, std::string_view argumentText,
                                               std::string_view innerText) {
  currentFunction = name;
  ScriptVariable working = FindSeries(name, innerText);
  if (name != "CSP" && !working.values.empty()) return working;

  FunctionCall call{name, argumentText};
  const FoundFunction found = findFunction(name, Path::kWholeHistory);
  if (found.row) {
    call.output = found.output;
    if (!runRow(*this, *found.row, call, working)) return {};
  } else {
    errorText = "Error: Undefined function '" + std::string(name) + "'";
  }
  const std::size_t rows = static_cast<std::size_t>(windowLength);
  if (call.sized) {
    if (working.values.size() >= rows && rows > 0) {
      working.value = working.values[rows - 1];
    } else if (working.values.empty()) {
      working.values = zeros();
    } else {
      working.values.resize(rows, 0.0);
    }
  }
  if (working.values.unique()) rowsHeld_ += working.values.size();
  RememberVariable(working.name, working);
  return working;
}

}  // namespace brindlewort
