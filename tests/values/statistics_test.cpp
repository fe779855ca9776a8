// Value cases of the regression and of statistics.

#include "values/average_twins.hpp"
#include "values/value_case.hpp"

namespace brindlewort::testing {
namespace {

using B = const Bars&;

double comovement(const Rows& a, const Rows& b) {
  double sum = 0;
  for (int i = 2; i < countOf(a); ++i)
    sum += std::fabs(nz(a[i]) - nz(a[i - 1])) * std::fabs(nz(b[i]) - nz(b[i - 1]));
  return 1 - sum / (countOf(a) - 2);
}

/// Common logarithms, then the mean square less the squared mean.
Rows wholeHvi(const Rows& in, int p, int history, double d) {
  Rows change = nulls(in), out = nulls(in);
  for (int i = 2; i < countOf(in); ++i) change[i] = std::log10(nz(in[i]) / nz(in[i - 1]));
  const Rows m = whole::sma(change, p);
  for (int i = 0; i < countOf(in); ++i) {
    if (i < p + 1) {
      if (i >= 2) out[i] = 0;  // no deviation yet
      continue;
    }
    double squares = 0;
    for (int j = i - p + 1; j <= i; ++j) squares += nz(change[j]) * nz(change[j]);
    out[i] = std::sqrt(squares / p - nz(m[i]) * nz(m[i])) * d * std::sqrt(history) * 100;
  }
  return out;
}
/// Natural logarithms, then the mean square distance from the mean.
Rows livingHvi(const Rows& in, int p, int history, double d) {
  Rows change = nulls(in), out = nulls(in);
  for (int i = 1; i < countOf(in); ++i) change[i] = in[i - 1] > 0 ? std::log(nz(in[i]) / nz(in[i - 1])) : 0;
  const Rows m = living::sma(change, p);
  for (int i = std::max(leadOf(change), leadOf(m)); i < countOf(in); ++i) {
    double squares = 0;
    for (int j = i - p + 1; j <= i; ++j) squares += (nz(change[j]) - nz(m[i])) * (nz(change[j]) - nz(m[i]));
    out[i] = std::sqrt(squares / p) * d * std::sqrt(history) * 100;
  }
  return out;
}

double trendOf(double v, double base) {
  return base * 1.005 < v ? 1 : base * 0.995 <= v ? 3 : 2;
}
Rows wholeTrend(const Rows& in, int p) {
  const Rows m = whole::sma(in, p);
  Rows out = nulls(in);
  for (int i = 1; i <= p; ++i) out[i] = trendOf(nz(in[i]), nz(in[1]));
  for (int i = p + 1; i < countOf(in); ++i) out[i] = trendOf(nz(m[i]), nz(m[i - p]));
  return out;
}
/// Up or down when every step of the window goes that way.
Rows livingTrend(const Rows& in, int p) {
  Rows out = nulls(in);
  for (int i = leadOf(in) + p - 1; i < countOf(in); ++i) {
    bool up = true, down = true;
    for (int j = i - p + 2; j <= i; ++j) up = up && in[j] > in[j - 1], down = down && in[j] < in[j - 1];
    out[i] = up ? 1 : down ? 2 : 3;
  }
  return out;
}

Rows trendScore(const Rows& in, int p, int count) {
  const int first = leadOf(in) + p;
  Rows state = nulls(in), out = nulls(in);
  for (int i = first; i < countOf(in); ++i) {
    const double now = nz(in[i]), before = nz(in[i - p]);
    state[i] = now > before ? 1 : now < before ? -1 : i == first ? 1 : state[i - 1];
  }
  for (int i = first + count - 1; i < countOf(in); ++i) out[i] = sumOf(state, i - count + 1, i);
  return out;
}

const Family kStatistics{{
    {{"R2", "RSQUARED"},
     "HIGH, 5",
     [](B b) { return whole::regression(b.high, 5, Fit::kRSquared); },
     [](B b) { return living::regression(b.high, 5, Fit::kRSquared); }},
    {{"SLOPE"},
     "LOW, 5",
     [](B b) { return whole::regression(b.low, 5, Fit::kSlope); },
     [](B b) { return living::regression(b.low, 5, Fit::kSlope); }},
    {{"INTERCEPT"},
     "OPEN, 5",
     [](B b) { return whole::regression(b.open, 5, Fit::kIntercept); },
     [](B b) { return living::regression(b.open, 5, Fit::kIntercept); }},
    {{"FORECAST"},
     "VOLUME, 4",
     [](B b) { return whole::regression(b.volume, 4, Fit::kForecast); },
     [](B b) { return living::regression(b.volume, 4, Fit::kForecast); }},
    {{"TSF", "TIMESERIESFORECAST"},
     "HIGH, 6",
     [](B b) { return whole::tsma(b.high, 6); },
     [](B b) { return living::tsma(b.high, 6); }},
    {{"HVI", "HISTORICALVOLATILITYINDEX", "HISTORICALVOLATILITY", "HISTORICVOLATILITY",
      "HISTORICVOLATILITYINDEX"},
     "HIGH, 5, 30, 2",
     [](B b) { return wholeHvi(b.high, 5, 30, 2); },
     [](B b) { return livingHvi(b.high, 5, 30, 2); }},
    {{"TREND"},
     "LOW, 3",
     [](B b) { return wholeTrend(b.low, 3); },
     [](B b) { return livingTrend(b.low, 3); }},
    {{"TS", "TRENDSCORE"},
     "HIGH, 3, 5",
     [](B b) { return trendScore(b.high, 3, 5); },
     [](B b) { return trendScore(b.high, 3, 5); }},
    // Over the whole history a number, which is the last row, and the others are 0; on the incremental way no
    // row is written.
    {{"CA", "CORRELATIONANALYSIS"},
     "HIGH, VOLUME",
     [](B b) {
       Rows out(b.close.size(), 0.0);
       out.back() = comovement(b.high, b.volume);
       return out;
     },
     [](B b) { return nulls(b.close); }},
}};

}  // namespace
}  // namespace brindlewort::testing
