// DATEPART and DATEDIFF over the whole history.

#include "functions/handler_tools.hpp"
#include "functions/handlers.hpp"
#include "series/julian_date.hpp"

namespace brindlewort::handlers {

namespace {

constexpr std::string_view kParts[] = {"SECOND", "MINUTE", "HOUR", "DAY", "MONTH", "YEAR"};

/// The number of a part or unit, from its digits or its word; -1 for an unknown word.
std::int64_t partNumber(std::string_view text) {
  if (IsNumberText(text)) return magnitude(parseInt32(text));
  for (std::size_t i = 0; i < std::size(kParts); ++i) {
    if (text == kParts[i]) return static_cast<std::int64_t>(i) + 1;
  }
  return -1;
}

/// A reference to an earlier bar: a number of bars, or a series of such numbers.
bool bindReference(CScriptEngine& engine, const FunctionCall& call, std::string_view text,
                   std::string_view label, std::string_view what, Offset& out) {
  if (!bindOffset(engine, call, text, label, out)) return false;
  if (out.rows > engine.windowLength - 2) {
    return engine.ReportRaw(std::string(what) + " function reference periods outside of allowed range");
  }
  return true;
}

}  // namespace

bool bindDatePart(CScriptEngine& engine, std::string_view text, int greatest, int& part) {
  const std::int64_t number = partNumber(text);
  if (number < 1 || number > greatest) {
    return engine.ReportRaw("Kindly input proper parameter in datepart period argument [1-" +
                            std::to_string(greatest) + "].");
  }
  part = static_cast<int>(number);
  return true;
}

bool datePart(CScriptEngine& engine, FunctionCall& call, ScriptVariable& result) {
  const Slots<2> slots(engine, call, 2);
  if (slots.surplus()) return reportSurplus(engine, call);
  if (slots[0].empty()) return engine.ReportRequired(call.name, "datepart reference");
  if (slots[1].empty()) return engine.ReportRequired(call.name, "datepart period");
  int part = 0;
  Offset offset;
  if (!notNegative(engine, call, slots) || !bindDatePart(engine, slots[1], 6, part)) return false;
  if (!bindReference(engine, call, slots[0], "source", "DATEPART()", offset)) return false;

  const View dates = engine.dates().view();
  result.values = Series(rowsOfRun(engine), 0.0);
  const Out out = result.values.edit();
  for (Count i = offset.rows; i < static_cast<Count>(out.size()); ++i) {
    const std::size_t row = static_cast<std::size_t>(i);
    const Count from = i - (engine.dryRun ? offset.rows : offset.at(row));
    out[row] = from >= 0 && from < rowsOf(dates) ? DatePartOf(dates[static_cast<std::size_t>(from)], part)
                                                 : NULL_VALUE;
  }
  return true;
}

bool dateDiff(CScriptEngine& engine, FunctionCall& call, ScriptVariable& result) {
  const Slots<3> slots(engine, call, 2);
  if (slots.surplus()) return reportSurplus(engine, call);
  if (slots[0].empty()) return engine.ReportRequired(call.name, "datepart reference 1");
  if (slots[1].empty()) return engine.ReportRequired(call.name, "datepart reference 2");
  if (slots[2].empty()) return engine.ReportRequired(call.name, "datepart periods");
  int unit = 0;
  Offset one, two;
  if (!bindDatePart(engine, slots[2], 4, unit)) return false;
  if (!bindReference(engine, call, slots[0], "date1_source", "DATEPART(d1)", one)) return false;
  if (!bindReference(engine, call, slots[1], "date2_source", "DATEPART(d2)", two)) return false;

  const View dates = engine.dates().view();
  const Count rows = rowsOf(dates);
  result.values = Series(rowsOfRun(engine), NULL_VALUE);
  const Out out = result.values.edit();
  for (Count i = 0; i < static_cast<Count>(out.size()); ++i) {
    const std::size_t row = static_cast<std::size_t>(i);
    const Count first = i - one.at(row), second = i - two.at(row);
    if (first < 0 || second < 0 || first >= rows || second >= rows) continue;
    out[row] =
        DateDifference(dates[static_cast<std::size_t>(first)], dates[static_cast<std::size_t>(second)], unit);
  }
  return true;
}

}  // namespace brindlewort::handlers
