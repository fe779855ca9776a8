// The dispatcher: a walk over a row of the function table that binds the arguments in the row's order of
// checks and runs its operation.

#include "functions/argument_binding.hpp"
#include "functions/function_table.hpp"
#include "functions/script_engine.hpp"
#include "series/numbers.hpp"

namespace brindlewort {

namespace {

/// Binds the arguments of one call under the checks of its row.
class RowWalk {
 public:
  RowWalk(CScriptEngine& engine, const FunctionRow& row, const FunctionCall& call)
      : engine_(engine), row_(row), name_(call.name) {
    arguments_.prices = engine.prices();
    arguments_.output = call.output;
    arguments_.dryRun = engine.dryRun;
    engine.SplitArguments(call.argumentText, row.required, std::span(texts_).first(row.slots.size() + 1));
  }

  bool bind() {
    for (Check check : row_.order) {
      if (!run(check)) return false;
    }
    return true;
  }
  const Arguments& arguments() const { return arguments_; }

 private:
  bool run(Check check) {
    if (check == Check::kSurplus) {
      if (row_.argumentsIgnored) return true;
      if (row_.noArguments && !texts_[0].empty()) {
        return engine_.ReportRaw("Inputs are not allowed for  " + std::string(name_));
      }
      return texts_[row_.slots.size()].empty() || report(row_.surplus);
    }
    for (std::size_t i = 0; i < row_.slots.size(); ++i) {
      if (!run(check, row_.slots[i], i)) return false;
    }
    return true;
  }

  bool run(Check check, const Slot& slot, std::size_t i) {
    const std::string_view text = texts_[i];
    switch (check) {
      case Check::kEmpty:
        return !text.empty() || slot.whenEmpty.kind == ReportKind::kNone || report(slot.whenEmpty);
      case Check::kNegative: {
        if (slot.mayBeNegative || !LooksNumeric(text)) return true;
        const std::string_view complaint = CheckNotNegative(text);
        return complaint.empty() || engine_.ReportFunction(name_, complaint);
      }
      case Check::kWhole:
        return slot.kind != SlotKind::kWhole || checkWhole(text);
      case Check::kBind:
        return bindSlot(slot, text, i);
      case Check::kSurplus:
        break;
    }
    return true;
  }

  /// A decimal goes the way that a wrong count goes: as a text of the function, or as a label.
  bool checkWhole(std::string_view text) {
    const std::string_view complaint = CheckWholeNumber(text);
    if (complaint.empty()) return true;
    const bool asFunction = row_.surplus.kind == ReportKind::kFunction;
    return report({asFunction ? ReportKind::kFunction : ReportKind::kRequired, complaint});
  }

  bool bindSlot(const Slot& slot, std::string_view text, std::size_t i) {
    double& number = arguments_.numbers[i];
    if (slot.optional && text.empty() && slot.kind != SlotKind::kSeries) {
      number = slot.fallback;
      return true;
    }
    switch (slot.kind) {
      case SlotKind::kIgnored:
        return true;
      case SlotKind::kSeries:
        return bindSeries(slot, text, i);
      case SlotKind::kWhole:
      case SlotKind::kInteger:
        number = parseInt32(text);
        break;
      case SlotKind::kLiteral:
        number = parseDouble(text);
        break;
      case SlotKind::kNumber:
      case SlotKind::kBarsNumber:
      case SlotKind::kMaType:
        if (!bindNumber(slot, text, number)) {
          if (slot.whenUnusable.kind != ReportKind::kNone) return report(slot.whenUnusable);
          number = slot.fallback;
          return true;
        }
        break;
    }
    if (!inRange(slot, number)) return report(slot.whenOutside);
    // A literal that must also be a number on its own.
    return slot.kind != SlotKind::kLiteral || slot.whenUnusable.kind == ReportKind::kNone ||
           engine_.GetNumber(name_, text, number, false, false) || report(slot.whenUnusable);
  }

  bool bindSeries(const Slot& slot, std::string_view text, std::size_t i) {
    ScriptVariable variable;
    if (!engine_.GetVector(text, variable)) {
      if (slot.defaultSeries.empty()) return report(slot.whenUnusable);
      variable = engine_.LookupVariable(slot.defaultSeries);
    }
    arguments_.series[i] = std::move(variable.values);
    return true;
  }

  bool bindNumber(const Slot& slot, std::string_view text, double& number) {
    const bool isType = slot.kind == SlotKind::kMaType;
    if (isType && !slot.numberOnly && text == "VIDYA") text = "7";
    return engine_.GetNumber(name_, text, number, slot.kind == SlotKind::kBarsNumber, isType);
  }

  bool inRange(const Slot& slot, double number) const {
    const double high = slot.high == kBars ? engine_.windowLength : slot.high;
    return slot.exclusive ? number > slot.low && number < high : number >= slot.low && number <= high;
  }

  bool report(const Report& what) {
    switch (what.kind) {
      case ReportKind::kRequired:
        return engine_.ReportRequired(name_, what.text);
      case ReportKind::kInvalid:
        return engine_.ReportInvalid(name_, what.text);
      case ReportKind::kFunction:
        return engine_.ReportFunction(name_, what.text);
      case ReportKind::kNone:
        break;
    }
    return false;
  }

  CScriptEngine& engine_;
  const FunctionRow& row_;
  std::string_view name_;
  std::array<std::string_view, kMaxSlots> texts_{};
  Arguments arguments_;
};

bool runRow(CScriptEngine& engine, const FunctionRow& row, FunctionCall& call, ScriptVariable& result) {
  if (row.handler) return row.handler(engine, call, result);
  RowWalk walk(engine, row, call);
  if (!walk.bind()) return false;
  if (row.scalar) {
    result.value = row.scalar(walk.arguments());
    return true;
  }
  result.values = Series(static_cast<std::size_t>(engine.windowLength), NULL_VALUE);
  if (!row.batch(walk.arguments(), result.values.edit())) result.values.clear();
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
  RememberVariable(working.name, working);
  return working;
}

}  // namespace brindlewort
