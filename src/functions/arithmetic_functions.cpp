// Single-argument mathematics, rounding, SUM, AVERAGE, MAX, MIN, MAXOF and MINOF over the whole history. A
// null is an ordinary number here.

#include <cmath>
#include <vector>

#include "functions/handler_tools.hpp"
#include "functions/handlers.hpp"
#include "functions/series_operations.hpp"
#include "indicators/ranked_extremes.hpp"
#include "indicators/windows.hpp"
#include "platform/clock.hpp"
#include "platform/random15.hpp"
#include "series/rounding.hpp"

namespace brindlewort::handlers {

namespace {

/// Every row is a new draw times the source's last value. Seeded with the seconds of the clock on each call.
void fillRandom(const ScriptVariable& source, ScriptVariable& result) {
  platform::Random15 random(static_cast<std::uint32_t>(platform::secondsSince1970()));
  const auto draw = [&] { return static_cast<double>(random.next()) / 32767.0 * source.value; };
  result.value = draw();
  for (double& row : result.values.edit()) row = draw();
}

/// Source and period of a window function. A period below 1 is refused (the sentence says otherwise).
bool bindWindow(CScriptEngine& engine, const FunctionCall& call, ScriptVariable& source, Count& period) {
  const Slots<2> slots(engine, call, 2);
  if (slots.surplus()) return reportSurplus(engine, call);
  Offset offset;
  if (!notNegative(engine, call, slots)) return false;
  if (!bindSeries(engine, call, slots[0], "source", source)) return false;
  if (slots[1].empty()) return engine.ReportRequired(call.name, "Argument cannot be blank");
  if (!bindOffset(engine, call, slots[1], "argument 2", offset)) return false;
  if (offset.rows < 1) return reportTooSmall(engine, call.name);
  period = offset.rows;
  return true;
}

/// The head of the series takes the first row that was computed, so that no row is empty.
void fillHead(Out out, Count first) {
  if (first >= static_cast<Count>(out.size())) return;
  const auto value = out.begin() + first;
  std::fill(out.begin(), value, *value);
}

void sumWindow(View in, Count p, Out out) {
  sumWindows<WindowOrder::kOldestFirst>(
      p - 1, rowsOf(in), p, [&](Count row, Count) { return in[static_cast<std::size_t>(row)]; },
      [&](Count i, double sum) { out[static_cast<std::size_t>(i)] = sum; });
  fillHead(out, p - 1);
}

/// The divisor of this way never leaves 0, so only the head is written, with the first window's sum.
void averageWindow(View in, Count p, Out out) {
  if (p > rowsOf(in)) return;
  double sum = 0.0;
  for (Count i = 0; i < p; ++i) sum += in[static_cast<std::size_t>(i)];
  std::fill_n(out.begin(), p, sum);
}

void extremeWindow(View in, Count p, bool greatest, Out out) {
  if (p <= rowsOf(in))
    rankedExtremes(
        in, p, p - 1, rowsOf(in), greatest, [](double) { return true; }, out);
  fillHead(out, p - 1);
}

}  // namespace

RowFunction mathFunctionOf(int output) {
  static constexpr RowFunction kFunctions[] = {
      [](double x) { return std::fabs(x); }, [](double x) { return std::sin(x); },
      [](double x) { return std::cos(x); },  [](double x) { return std::tan(x); },
      [](double x) { return std::atan(x); }, [](double x) { return std::exp(x); },
      [](double x) { return std::log(x); },  [](double x) { return std::log10(x); },
  };
  return kFunctions[output];
}

Rounding roundingOf(int output, std::int32_t digits, double multiple) {
  static constexpr RoundMode kModes[] = {RoundMode::kNearest, RoundMode::kUp, RoundMode::kDown};
  return {kModes[output % 3], output >= kMRound, digits, multiple};
}

bool mathFunction(CScriptEngine& engine, FunctionCall& call, ScriptVariable& result) {
  const Slots<1> slots(engine, call, 1);
  if (slots.surplus()) return reportSurplus(engine, call);
  ScriptVariable source;
  if (!bindSeries(engine, call, slots[0], "source", source)) return false;
  result.values = Series::uninitialized(source.values.size());
  if (call.output == kRnd) {
    fillRandom(source, result);
    return true;
  }
  const RowFunction f = mathFunctionOf(call.output);
  const View in = source.values.view();
  const Out out = result.values.edit();
  for (std::size_t i = 0; i < in.size(); ++i) out[i] = f(in[i]);
  return true;
}

bool roundSeries(CScriptEngine& engine, FunctionCall& call, ScriptVariable& result) {
  const Slots<2> slots(engine, call, 2);
  if (slots.surplus()) return reportSurplus(engine, call);
  ScriptVariable source, unused;
  if (slots[1].empty()) return engine.ReportRequired(call.name, "Argument cannot be blank");
  if (!bindSeries(engine, call, slots[0], "argument 1", source)) return false;
  if (!IsNumberText(slots[1]) && !bindSeries(engine, call, slots[1], "argument 2", unused)) return false;
  const double number = parseDouble(slots[1]);
  if (!(number > 0.0)) return reportTooSmall(engine, call.name);

  const Rounding rounding = roundingOf(call.output, parseInt32(slots[1]), number);
  const View in = source.values.view();
  result.values = Series::uninitialized(in.size());
  const Out out = result.values.edit();
  for (std::size_t i = 0; i < in.size(); ++i) out[i] = rounding(in[i]);
  return true;
}

bool windowFunction(CScriptEngine& engine, FunctionCall& call, ScriptVariable& result) {
  ScriptVariable source;
  Count p = 0;
  if (!bindWindow(engine, call, source, p)) return false;
  const View in = source.values.view();
  result.values = Series(in.size(), 0.0);
  const Out out = result.values.edit();
  switch (call.output) {
    case kSum:
      sumWindow(in, p, out);
      break;
    case kAverage:
      averageWindow(in, p, out);
      break;
    default:
      extremeWindow(in, p, call.output == kMax, out);
      break;
  }
  return true;
}

/// Row by row the greatest or least of two to eight series; equal values keep the earlier one, beginning with
/// vector 2.
bool extremeOfSeries(CScriptEngine& engine, FunctionCall& call, ScriptVariable& result) {
  const Slots<8> slots(engine, call, 2);
  if (slots.surplus()) return reportSurplus(engine, call);
  if (!notNegative(engine, call, slots)) return false;
  std::array<ScriptVariable, 8> vectors;
  if (!bindSeries(engine, call, slots[0], "argument 1", vectors[0])) return false;
  if (!bindSeries(engine, call, slots[1], "argument 2", vectors[1])) return false;
  for (std::size_t i = 2; i < vectors.size(); ++i) engine.GetVector(slots[i], vectors[i]);

  result.values = vectors[1].values;
  const Out out = result.values.edit();
  for (std::size_t v : {0, 2, 3, 4, 5, 6, 7}) {
    const View in = vectors[v].values.view();
    for (std::size_t i = 0; i < std::min(in.size(), out.size()); ++i) {
      const std::int64_t mine = QuantizeForCompare(in[i]), best = QuantizeForCompare(out[i]);
      if (call.output == kMaxOf ? mine > best : mine < best) out[i] = in[i];
    }
  }
  return true;
}

}  // namespace brindlewort::handlers
