#include <cmath>
#include <string>

#include "bench_support.hpp"
#include "indicators/range_count.hpp"
#include "indicators/regression.hpp"

/// Linear regression, statistics, trend classifiers and range counts.
namespace brindlewort::bench {
namespace {

constexpr Count kPeriod = 20, kCount = 10, kBarHistory = 252;

// ---- Textbook loops -----------------------------------------------------------------------------------

/// Calls figure(i, slope, mean of y, r squared) for the sliding least-squares line.
template <class Figure>
void plainLine(View in, Figure figure) {
  const double p = kPeriod;
  const double sx = p * (p + 1) / 2, sxx = p * (p + 1) * (2 * p + 1) / 6;
  double sy = 0.0, syy = 0.0, sxy = 0.0;
  for (Count i = 0; i < rowsOf(in); ++i) {
    const double gone = i >= kPeriod ? in[i - kPeriod] : 0.0;
    sxy += p * in[i] - sy;
    sy += in[i] - gone;
    syy += in[i] * in[i] - gone * gone;
    if (i < kPeriod - 1) continue;
    const double a = p * sxy - sx * sy, b = p * sxx - sx * sx;
    figure(i, a / b, sy / p, [=] { return a * a / (b * (p * syy - sy * sy)); });
  }
}

void plainSlope(View in, Out out) {
  plainLine(in, [=](Count i, double slope, double, auto) { out[i] = slope; });
}
void plainIntercept(View in, Out out) {
  plainLine(in,
            [=](Count i, double slope, double mean, auto) { out[i] = mean - slope * (kPeriod + 1) / 2.0; });
}
void plainForecast(View in, Out out) {
  plainLine(in,
            [=](Count i, double slope, double mean, auto) { out[i] = mean + slope * (kPeriod - 1) / 2.0; });
}
void plainRSquared(View in, Out out) {
  plainLine(in, [=](Count i, double, double, auto rSquared) { out[i] = rSquared(); });
}

double plainCorrelation(View a, View b) {
  double sum = 0.0;
  for (Count i = 2; i < rowsOf(a); ++i) sum += std::fabs(a[i] - a[i - 1]) * std::fabs(b[i] - b[i - 1]);
  return 1.0 - sum / static_cast<double>(rowsOf(a) - 2);
}

void plainVolatility(View in, Out out) {
  const double p = kPeriod, scale = std::sqrt(static_cast<double>(kBarHistory)) * 100.0;
  std::vector<double> returns(in.size());
  double sum = 0.0, squares = 0.0;
  for (Count i = 1; i < rowsOf(in); ++i) {
    returns[i] = std::log10(in[i] / in[i - 1]);
    const double gone = i > kPeriod ? returns[i - kPeriod] : 0.0;
    sum += returns[i] - gone;
    squares += returns[i] * returns[i] - gone * gone;
    if (i >= kPeriod) out[i] = std::sqrt(squares / p - sum / p * (sum / p)) * scale;
  }
}

void plainTrend(View in, Out out) {
  std::vector<double> mean(in.size());
  double sum = 0.0;
  for (Count i = 0; i < rowsOf(in); ++i) {
    sum += in[i];
    if (i >= kPeriod) sum -= in[i - kPeriod];
    mean[i] = sum / kPeriod;
    if (i < 2 * kPeriod) continue;
    const double before = mean[i - kPeriod];
    out[i] = mean[i] > before * 1.005 ? 1.0 : mean[i] < before * 0.995 ? 2.0 : 3.0;
  }
}

void plainScore(View in, Out out) {
  std::vector<double> state(in.size());
  double sum = 0.0;
  for (Count i = kPeriod; i < rowsOf(in); ++i) {
    state[i] = in[i] > in[i - kPeriod] ? 1.0 : in[i] < in[i - kPeriod] ? -1.0 : state[i - 1];
    sum += state[i] - (i >= kPeriod + kCount ? state[i - kCount] : 0.0);
    out[i] = sum;
  }
}

template <bool up>
void plainCount(View in, Out out) {
  double count = 0.0;
  const auto flag = [in](Count i) { return (up ? in[i] > in[i - 1] : in[i] < in[i - 1]) ? 1.0 : 0.0; };
  for (Count i = 1; i < rowsOf(in); ++i) {
    count += flag(i) - (i > kPeriod ? flag(i - kPeriod) : 0.0);
    out[i] = count;
  }
}

// ---- Rows ---------------------------------------------------------------------------------------------

using SeriesLoop = void (*)(View, Out);

/// The three rows of an operation over the close.
template <class Batch, class Resumable>
void addSeries(const std::string& name, Batch batch, SeriesLoop plain, Resumable resumable) {
  batchRow((name + "/engine").c_str(), [=](const Bars& b, Out o) { batch(View(b.close), o); });
  batchRow((name + "/plain").c_str(), [=](const Bars& b, Out o) { plain(b.close, o); });
  resumedRow((name + "/resumed").c_str(),
             [=](WorkStore& s, const PriceSources& p, Target o) { resumable(s, p.close, o); });
}

void addLine(const std::string& name, RegressionLine line, SeriesLoop plain) {
  addSeries(
      name, [=](View in, Out o) { CFeedkit::LinearRegression(in, kPeriod, line, o); }, plain,
      [=](WorkStore&, Source in, Target o) { CTechnicalFunctions::LinearRegression(in, kPeriod, line, o); });
}

void addRegression() {
  addLine("SLOPE", RegressionLine::kSlope, plainSlope);
  addLine("INTERCEPT", RegressionLine::kIntercept, plainIntercept);
  addLine("FORECAST", RegressionLine::kForecast, plainForecast);
  addLine("RSQUARED", RegressionLine::kRSquared, plainRSquared);
  addSeries(
      "TIMESERIESFORECAST", [](View in, Out o) { CFeedkit::TIMESERIESFORECAST(in, kPeriod, o); },
      plainForecast,
      [](WorkStore&, Source in, Target o) { CTechnicalFunctions::TIMESERIESFORECAST(in, kPeriod, o); });
}

void addStatistics() {
  batchRow("CORRELATIONANALYSIS/engine",
           [](const Bars& b, Out o) { o[0] = CFeedkit::CORRELATIONANALYSIS(b.close, b.volume); });
  batchRow("CORRELATIONANALYSIS/plain",
           [](const Bars& b, Out o) { o[0] = plainCorrelation(b.close, b.volume); });
  resumedRow("CORRELATIONANALYSIS/resumed", [](WorkStore&, const PriceSources& p, Target o) {
    CTechnicalFunctions::CORRELATIONANALYSIS(p.close, p.volume, o);
  });
  addSeries(
      "HistoricalVolatilityIndex",
      [](View in, Out o) { CFeedkit::HistoricalVolatilityIndex(in, kPeriod, kBarHistory, 1.0, o); },
      plainVolatility,
      [](WorkStore& s, Source in, Target o) {
        CTechnicalFunctions::HistoricalVolatilityIndex(s, in, kPeriod, kBarHistory, 1.0, o);
      });
  addSeries(
      "TREND", [](View in, Out o) { CFeedkit::TREND(in, kPeriod, o); }, plainTrend,
      [](WorkStore& s, Source in, Target o) { CTechnicalFunctions::TREND(s, in, kPeriod, o); });
  addSeries(
      "TRENDSCORE", [](View in, Out o) { CFeedkit::TRENDSCORE(in, kPeriod, kCount, o); }, plainScore,
      [](WorkStore& s, Source in, Target o) { CTechnicalFunctions::TRENDSCORE(s, in, kPeriod, kCount, o); });
}

void addRangeCounts() {
  addSeries(
      "RANGEUPCOUNT", [](View in, Out o) { CFeedkit::RANGEUPCOUNT(in, kPeriod, o); }, plainCount<true>,
      [](WorkStore& s, Source in, Target o) { CTechnicalFunctions::RANGEUPCOUNT(s, in, kPeriod, o); });
  addSeries(
      "RANGEDOWNCOUNT", [](View in, Out o) { CFeedkit::RANGEDOWNCOUNT(in, kPeriod, o); }, plainCount<false>,
      [](WorkStore& s, Source in, Target o) { CTechnicalFunctions::RANGEDOWNCOUNT(s, in, kPeriod, o); });
}

[[maybe_unused]] const bool kRegistered = (addRegression(), addStatistics(), addRangeCounts(), true);

}  // namespace
}  // namespace brindlewort::bench
