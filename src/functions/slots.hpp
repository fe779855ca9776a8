#pragma once

#include <vector>

#include "functions/function_table.hpp"

/// The words that rows of the function table are written in. A word makes a slot with the usual reports, and
/// the words behind it change what is unusual.
namespace brindlewort::slots {

constexpr Report required(std::string_view label) {
  return {ReportKind::kRequired, label};
}
constexpr Report invalid(std::string_view label) {
  return {ReportKind::kInvalid, label};
}
constexpr Report function(std::string_view text) {
  return {ReportKind::kFunction, text};
}

struct SlotWord : Slot {
  constexpr SlotWord empty(Report report) const {
    return with([&](SlotWord& s) { s.whenEmpty = report; });
  }
  constexpr SlotWord outside(Report report) const {
    return with([&](SlotWord& s) { s.whenOutside = report; });
  }
  constexpr SlotWord unusable(Report report) const {
    return with([&](SlotWord& s) { s.whenUnusable = report; });
  }
  /// One report for an empty slot and one out of range.
  constexpr SlotWord reports(Report report) const { return empty(report).outside(report); }
  /// No report for a missing number: this one is taken.
  constexpr SlotWord orElse(double number) const {
    return with([&](SlotWord& s) {
      s.optional = true;
      s.fallback = number;
      s.whenUnusable = {};
    });
  }
  /// No test for a negative literal.
  constexpr SlotWord negative() const {
    return with([](SlotWord& s) { s.mayBeNegative = true; });
  }
  /// The text is read as a double: an exponent counts.
  constexpr SlotWord asDouble() const {
    return with([](SlotWord& s) { s.readAsDouble = true; });
  }
  /// The limits themselves are refused.
  constexpr SlotWord open() const {
    return with([](SlotWord& s) { s.exclusive = true; });
  }

 private:
  template <class Change>
  constexpr SlotWord with(Change change) const {
    SlotWord copy = *this;
    change(copy);
    return copy;
  }
};

constexpr SlotWord slot(SlotKind kind, std::string_view name) {
  SlotWord s;
  s.kind = kind;
  s.name = name;
  return s;
}

/// A series; anything else is the close (or another price).
constexpr SlotWord series(std::string_view name = "source", std::string_view defaultSeries = "CLOSE") {
  SlotWord s = slot(SlotKind::kSeries, name);
  s.optional = true;
  s.defaultSeries = defaultSeries;
  return s;
}
/// A series or number that must be given.
constexpr SlotWord seriesRequired(std::string_view name = "source") {
  return slot(SlotKind::kSeries, name).empty(required(name)).unusable(required(name));
}

constexpr SlotWord ranged(SlotWord s, double low, double high) {
  s.low = low;
  s.high = high;
  return s.empty(required(s.name)).outside(invalid(s.name));
}
/// An integer without a range of its own, or with one up to the number of bars or another limit.
constexpr SlotWord whole(std::string_view name) {
  return ranged(slot(SlotKind::kWhole, name), -kNoLimit, kNoLimit);
}
constexpr SlotWord whole(std::string_view name, double low, double high = kBars) {
  return ranged(slot(SlotKind::kWhole, name), low, high);
}
/// As whole(), digits behind the point being cut.
constexpr SlotWord integer(std::string_view name, double low, double high = kBars) {
  return ranged(slot(SlotKind::kInteger, name), low, high);
}

constexpr SlotWord number(std::string_view name) {
  return slot(SlotKind::kNumber, name).unusable(required(name));
}
constexpr SlotWord number(std::string_view name, double low, double high) {
  SlotWord s = number(name);
  s.low = low;
  s.high = high;
  return s;
}
constexpr SlotWord barsNumber(std::string_view name) {
  return slot(SlotKind::kBarsNumber, name).unusable(required(name));
}
constexpr SlotWord maType(std::string_view name = "moving average type") {
  return slot(SlotKind::kMaType, name).unusable(required(name));
}
/// A number text within limits.
constexpr SlotWord literal(std::string_view name, double low, double high) {
  SlotWord s = slot(SlotKind::kLiteral, name);
  s.low = low;
  s.high = high;
  return s;
}

/// A slot that a handler of its own binds; for the reference page.
constexpr SlotWord any(std::string_view name) {
  return slot(SlotKind::kSeries, name);
}
/// The same, and it may be left out.
constexpr SlotWord more(std::string_view name) {
  SlotWord s = any(name);
  s.optional = true;
  return s;
}
/// Accepted and not looked at.
constexpr SlotWord ignored() {
  return slot(SlotKind::kIgnored, "ignored").negative();
}

constexpr SlotWord ichimokuPeriod(std::string_view name) {
  return whole(name, 2).outside(function("value should be between 2 to 9999"));
}

inline std::vector<Slot> stochasticSlots() {
  return {whole("%K periods", 2).asDouble().outside(invalid("%k periods")),
          whole("%K slowing periods", 2).asDouble().outside(invalid("%k slowing periods")),
          whole("%D periods", 2).asDouble().outside(invalid("%d periods")), maType()};
}

/// The third period is tested for emptiness and decimals alone: the range marked as its own is made on the
/// second period's value.
inline std::vector<Slot> stochasticMomentumSlots(bool incremental) {
  SlotWord dType = maType("%D moving average type");
  dType.numberOnly = !incremental;
  return {whole("%K periods", 2).outside(invalid("%k periods")),
          whole("%K smooth", 2).outside(invalid("%k smooth")),
          whole("%K double periods"),
          whole("%D periods", 2).outside(invalid("%d periods")),
          maType(),
          dType};
}

/// The second and third period take the first one's value when they are left out.
inline std::vector<Slot> directionalSlots() {
  const auto optionalPeriod = [](std::string_view name) {
    SlotWord s = whole(name, 2).empty({});
    s.optional = true;
    return s;
  };
  return {whole("periods", 2), optionalPeriod("DI- periods"), optionalPeriod("DI+ periods")};
}

}  // namespace brindlewort::slots
