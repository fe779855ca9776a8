#include <cmath>

#include "indicators/bands.hpp"
#include "indicators/compute_rows.hpp"
#include "indicators/flag_sums.hpp"
#include "indicators/moving_averages.hpp"
#include "indicators/regression.hpp"
#include "indicators/row_pairs.hpp"
#include "indicators/source_rows.hpp"

// Correlation, historical volatility and the trend classifiers.
namespace brindlewort {
namespace {

constexpr double kUp = 1.0;
constexpr double kDown = 2.0;
constexpr double kSideways = 3.0;

bool volatilityRange(Count p, Count barHistory, double deviations, Count n) {
  return barHistory >= 0 && 1 <= p && p <= n && deviations >= 0.0 && deviations <= 100.0;
}

/// A deviation of one-bar returns, scaled to the span of `barHistory` bars.
double scaledVolatility(double deviation, Count barHistory) {
  return nz(deviation) * std::sqrt(static_cast<double>(barHistory)) * 100.0;
}

/// Direction of a value against a base; within half a percent is sideways, a non-number is down.
double direction(double value, double base) {
  if (base * 1.005 < value) return kUp;
  return base * 0.995 <= value ? kSideways : kDown;
}

/// The states of TRENDSCORE over rows [start, n). Equal values repeat the state of the row before, and give 1
/// on the first row.
void trendStates(View in, Count p, Count start, Count n, Count firstRow, Out states) {
  constexpr double kEqual = 0.0;
  fillRows(start, n, states, [=]<class X>(RowReader<X> at) {
    const X now = nz(at(in)), before = nz(at(in, p));
    const X downOrEqual = now < before ? spread<X>(-1.0) : spread<X>(kEqual);
    return now > before ? spread<X>(1.0) : downOrEqual;
  });
  for (Count i = start; i < n; ++i) {
    if (states[i] == kEqual) [[unlikely]]
      states[i] = i == firstRow ? 1.0 : states[i - 1];
  }
}

/// Flags each row from `first` on whose last `steps` steps all satisfy `step(before, now)`.
template <class Step>
void flagRuns(View in, Count steps, Count first, Count n, const Target& flags, Step step) {
  const Count start = startRow(flags, first);
  Count run = 0;  // steps in a row, up to the present one
  for (Count j = start - steps + 1; j < start && start < n; ++j) run = step(in[j - 1], in[j]) ? run + 1 : 0;
  computeRows(flags, first, n, [&](Count i) {
    run = i > 0 && step(in[i - 1], in[i]) ? run + 1 : 0;
    return run >= steps ? 1.0 : 0.0;
  });
}

}  // namespace

namespace CFeedkit {

double CORRELATIONANALYSIS(View a, View b) {
  if (a.size() != b.size() || a.empty()) return 0.0;
  const Count n = rowsOf(a);
  double sum = 0.0;
  double aBefore = n > 1 ? nz(a[1]) : 0.0;
  double bBefore = n > 1 ? nz(b[1]) : 0.0;
  for (Count i = 2; i < n; ++i) {
    const double aNow = nz(a[i]), bNow = nz(b[i]);
    sum += std::fabs(aNow - aBefore) * std::fabs(bNow - bBefore);
    aBefore = aNow;
    bBefore = bNow;
  }
  return 1.0 - sum / static_cast<double>(n - 2);
}

void HistoricalVolatilityIndex(View in, Count p, Count barHistory, double deviations, Out out) {
  const Count n = rowsOf(in);
  if (!volatilityRange(p, barHistory, deviations, n)) return;
  std::vector<double> returns = nullRows(in.size());
  for (Count i = 2; i < n; ++i) returns[i] = std::log10(nz(in[i]) / nz(in[i - 1]));
  std::vector<double> deviation = nullRows(in.size());
  StandardDeviations(returns, p, deviations, kSimple, deviation);
  for (Count i = 2; i < n; ++i) out[i] = scaledVolatility(deviation[i], barHistory);
}

void TREND(View in, Count p, Out out) {
  const Count n = rowsOf(in);
  if (p < 0) return;  // the average is never compared with a row ahead of it
  for (Count i = 1; i <= p && i < n; ++i) out[i] = direction(nz(in[i]), nz(in[1]));
  if (p + 1 >= n) return;
  std::vector<double> average = nullRows(in.size());
  SimpleMovingAverage(in, p, average);
  for (Count i = p + 1; i < n; ++i) out[i] = direction(nz(average[i]), nz(average[i - p]));
}

void TRENDSCORE(View in, Count p, Count count, Out out) {
  const Count n = rowsOf(in);
  if (p < 1 || p > n || count < 2 || count > n) return;
  const Count firstRow = firstValueIndex(in) + p;
  if (firstRow + count >= n) return;
  std::vector<double> states = nullRows(in.size());
  trendStates(in, p, firstRow, n, firstRow, states);
  sumFlags(states, count, firstRow + count - 1, n, out);
}

}  // namespace CFeedkit

namespace CTechnicalFunctions {

Status CORRELATIONANALYSIS(Source a, Source b, Target out) {
  // The figure of the batch form has no row to go to, so it is not formed: the call is only booked.
  const Count n = commonRows(out.rows, {a.rows, b.rows});
  if (startRow(out, higherLead(a.rows, b.rows) + 1) >= n) return kNothingDone;
  return finish(out, n);
}

Status HistoricalVolatilityIndex(WorkStore& store, Source in, Count p, Count barHistory, double deviations,
                                 Target out) {
  const Count n = rowsOf(in, out);
  if (!volatilityRange(p, barHistory, deviations, n)) return kNothingDone;
  const View rows = in.rows;
  const WorkField returns = store.field("HV_FIELD1", {in, p, barHistory, deviations});
  computeRows(returns, 1, n, [=](Count i) {
    const double before = nz(rows[i - 1]);
    return before > 0.0 ? std::log(nz(rows[i]) / before) : 0.0;
  });
  const WorkField deviation = store.field("STDEV", {in, p, barHistory, deviations});
  StandardDeviations(store, returns, p, deviations, kSimple, deviation);
  return computeRows(out, firstValueIndex(deviation.rows), n,
                     [=](Count i) { return scaledVolatility(deviation.rows[i], barHistory); });
}

Status TREND(WorkStore& store, Source in, Count p, Target out) {
  const Count n = rowsOf(in, out);
  if (!resumableRange(p, n)) return kNothingDone;
  const Count first = firstValueIndex(in.rows) + p - 1;
  const WorkField rising = store.field("Trend_temp1", {in, p});
  const WorkField falling = store.field("Trend_temp2", {in, p});
  flagRuns(in.rows, p - 1, first, n, rising, [](double before, double now) { return now > before; });
  flagRuns(in.rows, p - 1, first, n, falling, [](double before, double now) { return now < before; });
  return computeRows(out, first, n, [=](Count i) {
    return rising.rows[i] == 1.0 ? kUp : falling.rows[i] == 1.0 ? kDown : kSideways;
  });
}

Status TRENDSCORE(WorkStore& store, Source in, Count p, Count count, Target out) {
  const Count n = rowsOf(in, out);
  if (!resumableRange(p, n) || count < 2 || count > n) return kNothingDone;
  const Count firstRow = firstValueIndex(in.rows) + p;
  if (*out.slot == -1 && firstRow + count >= n) return kNothingDone;
  const WorkField states = store.field("TrendScore", {in, p, count});
  trendStates(in.rows, p, startRow(states, firstRow), n, firstRow, states.rows);
  if (startRow(states, firstRow) < n) finish(states, n);
  const Count start = startRow(out, firstRow + count - 1);
  if (start >= n) return kNothingDone;
  sumFlags(states.rows, count, start, n, out.rows);
  return finish(out, n);
}

}  // namespace CTechnicalFunctions
}  // namespace brindlewort
