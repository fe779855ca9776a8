// IF, COUNTIF, SUMIF, LASTIF, REPEATIF, CROSSOVER, REF and LOOP over the whole history. A row of a condition
// is true when it is not exactly 0.0, so a null is true.

#include <cmath>

#include "functions/handler_tools.hpp"
#include "functions/handlers.hpp"

namespace brindlewort::handlers {

namespace {

/// The rule of one comparison is about the text: an AND written without blanks slips through.
bool joinsConditions(std::string_view text) {
  return contains(text, " AND ") || contains(text, " OR ");
}

bool oneConditionOnly(CScriptEngine& engine, const FunctionCall& call) {
  if (!joinsConditions(call.argumentText)) return true;
  return engine.ReportInvalid(call.name, std::string(call.name) +
                                             " function must contain only one condition, "
                                             "without the 'AND' or 'OR' operators");
}

/// Evaluates the condition's text, put in brackets, as an expression of its own. False, with nothing
/// evaluated, once an error stands.
bool evaluateCondition(CScriptEngine& engine, std::string_view text, ScriptVariable& condition) {
  if (!engine.errorText.empty()) return false;
  condition = engine.EvaluateExpression("(" + std::string(text) + ")");
  return true;
}

}  // namespace

bool ifThenElse(CScriptEngine& engine, FunctionCall& call, ScriptVariable& result) {
  const Slots<3> slots(engine, call, 3);
  if (slots.surplus()) return reportSurplus(engine, call);
  ScriptVariable truePart, falsePart;
  if (!bindSeries(engine, call, slots[1], "argument 2", truePart)) return false;
  if (!bindSeries(engine, call, slots[2], "argument 3", falsePart)) return false;
  if (!oneConditionOnly(engine, call) || !notNegative(engine, call, slots)) return false;

  ScriptVariable condition;
  if (!evaluateCondition(engine, slots[0], condition)) return false;
  if (condition.values.empty()) {
    result.value = condition.value != 0.0 ? truePart.value : falsePart.value;
    return true;
  }
  result.values = Series::uninitialized(condition.values.size());
  const Out out = result.values.edit();
  for (std::size_t i = 0; i < out.size(); ++i) {
    out[i] = condition.values[i] != 0.0 ? truePart.values[i] : falsePart.values[i];
  }
  return true;
}

bool countIf(CScriptEngine& engine, FunctionCall& call, ScriptVariable& result) {
  const Slots<1> slots(engine, call, 1);
  if (slots.surplus()) return reportSurplus(engine, call);
  if (!notNegative(engine, call, slots) || !oneConditionOnly(engine, call)) return false;

  ScriptVariable condition;
  if (!evaluateCondition(engine, slots[0], condition)) return false;
  if (condition.values.empty()) {
    result.value = condition.value != 0.0 ? 1.0 : 0.0;
    return true;
  }
  result.values = Series::uninitialized(condition.values.size());
  const Out out = result.values.edit();
  double count = 0.0;
  for (std::size_t i = 0; i < out.size(); ++i) {
    if (condition.values[i] != 0.0) count += 1.0;
    out[i] = count;
  }
  return true;
}

bool sumIf(CScriptEngine& engine, FunctionCall& call, ScriptVariable& result) {
  const Slots<2> slots(engine, call, 1);
  if (slots.surplus()) return reportSurplus(engine, call);
  ScriptVariable vector;
  if (!notNegative(engine, call, slots)) return false;
  if (!bindSeries(engine, call, slots[1], "vector", vector) || !oneConditionOnly(engine, call)) return false;

  ScriptVariable condition;
  if (!evaluateCondition(engine, slots[0], condition)) return false;
  if (condition.values.empty()) {
    result.value = condition.value != 0.0 ? vector.value : 0.0;
    return true;
  }
  result.values = Series::uninitialized(condition.values.size());
  const Out out = result.values.edit();
  double sum = 0.0;
  for (std::size_t i = 0; i < out.size(); ++i) {
    if (condition.values[i] != 0.0) sum += vector.values[i];
    out[i] = sum;
  }
  return true;
}

/// LASTIF counts the rows since the condition was true, REPEATIF those in which it has been true in a row.
/// Rows 0 and 1 never depend on the data, and a scalar condition is answered the other way round by REPEATIF.
bool runCount(CScriptEngine& engine, FunctionCall& call, ScriptVariable& result) {
  const Slots<1> slots(engine, call, 1);
  if (slots.surplus()) return reportSurplus(engine, call);
  if (!notNegative(engine, call, slots) || !oneConditionOnly(engine, call)) return false;

  const bool repeat = call.output == kRepeatIf;
  ScriptVariable condition;
  if (!evaluateCondition(engine, slots[0], condition)) return false;
  if (condition.values.empty()) {
    result.value = (condition.value != 0.0) != repeat ? 1.0 : 0.0;
    return true;
  }
  result.values = Series::uninitialized(condition.values.size());
  const Out out = result.values.edit();
  double count = 0.0;
  for (std::size_t i = 0; i < out.size(); ++i) {
    const bool holds = i < 2 ? !repeat : condition.values[i] != 0.0;
    count = holds == repeat ? count + 1.0 : 0.0;
    out[i] = count;
  }
  return true;
}

/// 1 where vector 1 rises above vector 2 from at or below it. Row 0 is vector 2's.
bool crossOver(CScriptEngine& engine, FunctionCall& call, ScriptVariable& result) {
  const Slots<2> slots(engine, call, 2);
  if (slots.surplus()) return reportSurplus(engine, call);
  ScriptVariable one, two;
  if (!notNegative(engine, call, slots)) return false;
  if (!bindSeries(engine, call, slots[0], "vector 1", one)) return false;
  if (!bindSeries(engine, call, slots[1], "vector 2", two)) return false;

  const View a = one.values.view(), b = two.values.view();
  result.values = Series(b);
  const Out out = result.values.edit();
  std::int64_t lastA = a.empty() ? 0 : QuantizeForCompare(a[0]);
  std::int64_t lastB = b.empty() ? 0 : QuantizeForCompare(b[0]);
  for (std::size_t i = 1; i < std::min(a.size(), b.size()); ++i) {
    const std::int64_t nowA = QuantizeForCompare(a[i]), nowB = QuantizeForCompare(b[i]);
    const bool unknown = isNull(a[i - 1]) || isNull(b[i - 1]) || (i == 1 && (a[0] == 0.0 || b[0] == 0.0));
    out[i] = unknown ? NULL_VALUE : lastA <= lastB && nowA > nowB ? 1.0 : 0.0;
    lastA = nowA;
    lastB = nowB;
  }
  return true;
}

/// The source some rows earlier. A series of offsets drops the fraction of what it finds.
bool reference(CScriptEngine& engine, FunctionCall& call, ScriptVariable& result) {
  const Slots<2> slots(engine, call, 2);
  if (slots.surplus()) return reportSurplus(engine, call);
  ScriptVariable source;
  Offset offset;
  if (!notNegative(engine, call, slots)) return false;
  if (!bindSeries(engine, call, slots[0], "source", source)) return false;
  if (slots[1].empty()) return engine.ReportRequired(call.name, "reference periods");
  if (!bindOffset(engine, call, slots[1], "argument 1", offset)) return false;
  if (offset.rows > engine.windowLength - 2) {
    return engine.ReportRaw("REF() function reference periods outside of allowed range");
  }
  if (offset.rows == 0 && !offset.isSeries) {
    result.values = source.values;
    return true;
  }
  const Count rows = engine.windowLength;
  const View in = source.values.view();
  result.values = Series(rowsOfRun(engine), 0.0);
  const Out out = result.values.edit();
  for (Count i = offset.rows; i < rows; ++i) {
    const std::size_t row = static_cast<std::size_t>(i);
    const Count from = i - offset.at(row);
    const bool inside = from >= 0 && from < rowsOf(in);
    if (!offset.isSeries) {
      out[row] = in[static_cast<std::size_t>(from)];
    } else {
      out[row] = inside ? std::trunc(in[static_cast<std::size_t>(from)]) : NULL_VALUE;
    }
  }
  return true;
}

/// A recursion: each row is made of an earlier row of the result and an earlier row of vector 2. The result
/// starts as vector 1, and a row that the operator does not write keeps it.
bool loopSeries(CScriptEngine& engine, FunctionCall& call, ScriptVariable& result) {
  const Slots<5> slots(engine, call, 5);
  if (slots.surplus()) return reportSurplus(engine, call);
  ScriptVariable one, two, unused;
  Offset first, second;
  double number = 0.0;
  if (!notNegative(engine, call, slots)) return false;
  if (!bindSeries(engine, call, slots[0], "vector1", one)) return false;
  if (!bindSeries(engine, call, slots[1], "vector2", two)) return false;
  if (!bindSeries(engine, call, slots[2], "vector3", unused)) return false;
  if (!bindSeries(engine, call, slots[3], "vector4", unused)) return false;
  if (!engine.GetNumber(call.name, slots[4], number, false, false)) {
    return engine.ReportRequired(call.name, "operator");
  }
  if (!bindOffset(engine, call, slots[2], "argument 3", first)) return false;
  if (!bindOffset(engine, call, slots[3], "argument 4", second)) return false;
  if (joinsConditions(slots[0])) {
    return engine.ReportInvalid(call.name,
                                "LOOP function may not contain a condition with 'AND' or 'OR' operators");
  }
  const View a = one.values.view(), b = two.values.view();
  result.values = Series(a);
  const Out out = result.values.edit();
  const Count start = std::max(first.rows, second.rows);
  if (start > rowsOf(a)) {
    return engine.ReportInvalid(call.name,
                                std::string(slots[0]) + " Cannot be accessed by" + std::string(slots[2]));
  }
  enum { kAdd = 1, kSubtract = 2, kMultiply = 3, kDivide = 4 };
  const std::int32_t op = toInt32(number);
  for (Count i = start; i < std::min(rowsOf(a), rowsOf(b)); ++i) {
    const std::size_t row = static_cast<std::size_t>(i);
    const std::size_t from = static_cast<std::size_t>(i - first.rows);
    const double y = b[static_cast<std::size_t>(i - second.rows)];
    switch (op) {
      case kAdd:
        out[row] = out[from] + y;
        break;
      case kSubtract:
        out[row] = out[from] - y;
        break;
      case kMultiply:
        out[row] = out[from] * y;
        break;
      case kDivide:
        // The guard looks at vector 1, while the numerator comes from the result.
        if (a[from] != 0.0 && y != 0.0) out[row] = out[from] / y;
        break;
      default:
        break;
    }
  }
  return true;
}

}  // namespace brindlewort::handlers
