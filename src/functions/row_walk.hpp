#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "functions/argument_binding.hpp"
#include "functions/function_table.hpp"
#include "functions/script_engine.hpp"
#include "series/numbers.hpp"

namespace brindlewort {

/// Binds the arguments of one call under the checks of its row, in the row's order. The binder says what a
/// series is bound to:
///   bool bindSeries(text, slot)       false when the text is no series
///   void bindDefault(name, slot)      the series taken instead
///   double& number(slot)
template <class Binder>
class RowWalk {
 public:
  /// `argumentText` must outlive the walk.
  RowWalk(CScriptEngine& engine, const FunctionRow& row, const std::vector<Slot>& slots,
          std::string_view name, std::string_view argumentText, Binder& binder)
      : engine_(engine), row_(row), slots_(slots), name_(name), binder_(binder) {
    engine.SplitArguments(argumentText, row.required, std::span(texts_).first(slots.size() + 1));
  }

  bool bind() {
    for (Check check : row_.order) {
      if (!run(check)) return false;
    }
    return true;
  }

 private:
  bool run(Check check) {
    if (check == Check::kSurplus) {
      if (row_.argumentsIgnored) return true;
      if (row_.noArguments && !texts_[0].empty()) {
        return engine_.ReportRaw("Inputs are not allowed for  " + std::string(name_));
      }
      return texts_[slots_.size()].empty() || report(row_.surplus);
    }
    for (std::size_t i = 0; i < slots_.size(); ++i) {
      if (!run(check, slots_[i], i)) return false;
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
    double& number = binder_.number(i);
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
        number = slot.readAsDouble ? parseDouble(text) : parseInt32(text);
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
    if (binder_.bindSeries(text, i)) return true;
    if (slot.defaultSeries.empty()) return report(slot.whenUnusable);
    binder_.bindDefault(slot.defaultSeries, i);
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
  const std::vector<Slot>& slots_;
  std::string_view name_;
  std::array<std::string_view, kMaxSlots> texts_{};
  Binder& binder_;
};

}  // namespace brindlewort
