// Moving averages: the batch form beside the textbook formula written as a plain loop, and the resumable form
// with one more bar.

#include <cmath>

#include "bench_support.hpp"
#include "indicators/moving_averages.hpp"

namespace brindlewort::bench {

namespace {

constexpr int kPeriod = 20;

// ---- The textbook loops ----------------------------------------------------------------------------------

using Column = std::vector<double>;

void plainSimple(const Column& x, int p, Out out) {
  double sum = 0.0;
  for (int i = 0; i < p; ++i) sum += x[i];
  for (std::size_t i = p; i < x.size(); ++i) {
    sum += x[i] - x[i - p];
    out[i] = sum / p;
  }
}

/// A window added afresh for each row: the mean of `term(row, distance)` over p rows.
template <class Term>
void plainWindows(std::size_t n, int p, double divisor, Out out, Term term) {
  for (std::size_t i = p - 1; i < n; ++i) {
    double sum = 0.0;
    for (int j = 0; j < p; ++j) sum += term(i - j, j);
    out[i] = sum / divisor;
  }
}

void plainWeighted(const Column& x, int p, Out out) {
  plainWindows(x.size(), p, p * (p + 1) / 2.0, out, [&](std::size_t i, int j) { return x[i] * (p - j); });
}

void plainTriangular(const Column& x, int p, Out out) {
  const int first = (p + 1) / 2, second = p / 2 + 1;
  Column stage(x.size());
  plainWindows(x.size(), first, first, stage, [&](std::size_t i, int) { return x[i]; });
  plainWindows(x.size(), second, second, out, [&](std::size_t i, int) { return stage[i]; });
}

void plainHull(const Column& x, int p, Out out) {
  Column half(x.size()), whole(x.size());
  plainWeighted(x, p / 2, half);
  plainWeighted(x, p, whole);
  for (std::size_t i = 0; i < x.size(); ++i) half[i] = 2.0 * half[i] - whole[i];
  plainWeighted(half, static_cast<int>(std::sqrt(p)), out);
}

void plainVolumeAdjusted(const Column& x, const Column& weights, int p, Out out) {
  for (std::size_t i = p - 1; i < x.size(); ++i) {
    double sum = 0.0, total = 0.0;
    for (int j = 0; j < p; ++j) {
      sum += x[i - j] * weights[i - j];
      total += weights[i - j];
    }
    out[i] = total != 0.0 ? sum / total : 0.0;
  }
}

void plainCumulative(const Column& x, Out out) {
  double sum = 0.0;
  for (std::size_t i = 0; i < x.size(); ++i) {
    sum += x[i];
    out[i] = sum / static_cast<double>(i + 1);
  }
}

/// Exponential, Wilder and factor averages differ in the weight only.
void plainExponential(const Column& x, double k, Out out) {
  double average = x[0];
  for (std::size_t i = 1; i < x.size(); ++i) out[i] = average = average * (1.0 - k) + x[i] * k;
}

void plainZeroLag(const Column& x, int p, Out out) {
  const double k = 2.0 / (p + 1);
  const std::size_t lag = (p - 1) / 2;
  double average = x[0];
  for (std::size_t i = lag; i < x.size(); ++i) {
    out[i] = average = (2.0 * x[i] - x[i - lag]) * k + average * (1.0 - k);
  }
}

void plainVariable(const Column& x, Out out) {
  constexpr std::size_t kMomentum = 9;
  double average = x[0];
  for (std::size_t i = kMomentum; i < x.size(); ++i) {
    double up = 0.0, down = 0.0;
    for (std::size_t j = i - kMomentum + 1; j <= i; ++j) {
      const double move = x[j] - x[j - 1];
      (move > 0.0 ? up : down) += std::fabs(move);
    }
    const double a = up + down == 0.0 ? 0.0 : std::fabs((up - down) / (up + down));
    out[i] = average = a * x[i] + (1.0 - a) * average;
  }
}

/// The regression over p rows with sliding sums; `use(row, sumX, sumXX, sumY, sumYY, sumXY)`.
template <class Use>
void plainRegression(const Column& x, int p, Use use) {
  const double sx = p * (p + 1) / 2.0, sxx = p * (p + 1) * (2 * p + 1) / 6.0;
  double sy = 0.0, syy = 0.0, sxy = 0.0;
  for (int i = 0; i < p; ++i) {
    sy += x[i];
    syy += x[i] * x[i];
    sxy += (i + 1) * x[i];
  }
  for (std::size_t i = p; i < x.size(); ++i) {
    const double old = x[i - p];
    sxy += p * x[i] - sy;
    sy += x[i] - old;
    syy += x[i] * x[i] - old * old;
    use(i, sx, sxx, sy, syy, sxy);
  }
}

void plainTimeSeries(const Column& x, int p, Out out) {
  plainRegression(x, p, [&](std::size_t i, double sx, double sxx, double sy, double, double sxy) {
    const double slope = (p * sxy - sx * sy) / (p * sxx - sx * sx);
    out[i] = slope * p + (sy - slope * sx) / p;
  });
}

void plainVidya(const Column& x, int p, Out out) {
  plainRegression(x, p, [&](std::size_t i, double sx, double sxx, double sy, double syy, double sxy) {
    const double a = p * sxy - sx * sy, b = (p * sxx - sx * sx) * (p * syy - sy * sy);
    const double weight = b != 0.0 ? a * a / b * 0.65 : 0.0;
    out[i] = x[i] * weight + (1.0 - weight) * x[i - 1];
  });
}

void plainAdaptive(const Column& x, int p, Out out) {
  const double fast = 2.0 / 3, slow = 2.0 / 31;
  double average = x[0];
  for (std::size_t i = p; i < x.size(); ++i) {
    double walked = 0.0;
    for (int j = 0; j < p; ++j) walked += std::fabs(x[i - j] - x[i - j - 1]);
    const double c = (walked != 0.0 ? (x[i] - x[i - p]) / walked : 0.0) * (fast - slow) + slow;
    out[i] = average = average + c * c * (x[i] - average);
  }
}

// ---- The pairs -------------------------------------------------------------------------------------------

template <class Batch, class Plain, class Resumed>
void average(const std::string& name, Batch batch, Plain plain, Resumed resumed) {
  batchRow((name + "/engine").c_str(), batch);
  batchRow((name + "/plain").c_str(), plain);
  resumedRow((name + "/resumed").c_str(), resumed);
}

/// Averages of a period alone.
template <class Batch, class Plain, class Resumed>
void periodAverage(const std::string& name, Batch batch, Plain plain, Resumed resumed) {
  average(
      name, [=](const Bars& b, Out out) { batch(b.close, kPeriod, out); },
      [=](const Bars& b, Out out) { plain(b.close, kPeriod, out); },
      [=](Store& store, const PriceSources& prices, Target out) {
        if constexpr (std::is_invocable_v<Resumed, WorkStore&, Source, Count, Target>) {
          resumed(store, prices.close, kPeriod, out);
        } else {
          static_cast<void>(store);
          resumed(prices.close, kPeriod, out);
        }
      });
}

const bool kRegistered = [] {
  namespace Fast = CTechnicalFunctions;
  periodAverage("SimpleMovingAverage(20)", CFeedkit::SimpleMovingAverage, plainSimple,
                Fast::SimpleMovingAverage);
  periodAverage("WeightedMovingAverage(20)", CFeedkit::WeightedMovingAverage, plainWeighted,
                Fast::WeightedMovingAverage);
  periodAverage("TriangularMovingAverage(20)", CFeedkit::TriangularMovingAverage, plainTriangular,
                Fast::TriangularMovingAverage);
  periodAverage("HA(20)", CFeedkit::HA, plainHull, Fast::HA);
  periodAverage(
      "ExponentialMovingAverage(20)", CFeedkit::ExponentialMovingAverage,
      [](const Column& x, int p, Out out) { plainExponential(x, 2.0 / (p + 1), out); },
      Fast::ExponentialMovingAverage);
  periodAverage(
      "WellesWilderSmoothing(20)", CFeedkit::WellesWilderSmoothing,
      [](const Column& x, int p, Out out) { plainExponential(x, 1.0 / p, out); },
      Fast::WellesWilderSmoothing);
  periodAverage("ZEROLAGEXPONENTIALMOVINGAVERAGE(20)", CFeedkit::ZEROLAGEXPONENTIALMOVINGAVERAGE,
                plainZeroLag, Fast::ZEROLAGEXPONENTIALMOVINGAVERAGE);
  periodAverage("TimeSeriesMovingAverage(20)", CFeedkit::TimeSeriesMovingAverage, plainTimeSeries,
                Fast::TimeSeriesMovingAverage);
  periodAverage(
      "VariableMovingAverage(20)", CFeedkit::VariableMovingAverage,
      [](const Column& x, int, Out out) { plainVariable(x, out); }, Fast::VariableMovingAverage);
  periodAverage(
      "VIDYA(20, 0.65)", [](View in, Count p, Out out) { CFeedkit::VIDYA(in, p, 0.65, out); }, plainVidya,
      [](WorkStore& store, Source in, Count p, Target out) { return Fast::VIDYA(store, in, p, 0.65, out); });
  periodAverage(
      "FACTORAVERAGE(0.1, 20)", [](View in, Count p, Out out) { CFeedkit::FACTORAVERAGE(in, 0.1, p, out); },
      [](const Column& x, int, Out out) { plainExponential(x, 0.1, out); },
      [](Source in, Count p, Target out) { return Fast::FACTORAVERAGE(in, 0.1, p, out); });
  periodAverage(
      "ADAPTIVEMOVINGAVERAGE(20, 2, 30)",
      [](View in, Count p, Out out) { CFeedkit::ADAPTIVEMOVINGAVERAGE(in, p, 2, 30, out); }, plainAdaptive,
      [](WorkStore& store, Source in, Count p, Target out) {
        return Fast::ADAPTIVEMOVINGAVERAGE(store, in, p, 2, 30, out);
      });
  average(
      "VAA(20)", [](const Bars& b, Out out) { CFeedkit::VAA(b.close, b.volume, kPeriod, out); },
      [](const Bars& b, Out out) { plainVolumeAdjusted(b.close, b.volume, kPeriod, out); },
      [](Store&, const PriceSources& prices, Target out) {
        Fast::VAA(prices.close, prices.volume, kPeriod, out);
      });
  average(
      "CUMULATIVEAVERAGE", [](const Bars& b, Out out) { CFeedkit::CUMULATIVEAVERAGE(b.close, out); },
      [](const Bars& b, Out out) { plainCumulative(b.close, out); },
      [](Store&, const PriceSources& prices, Target out) { Fast::CUMULATIVEAVERAGE(prices.close, out); });
  return true;
}();

}  // namespace

}  // namespace brindlewort::bench
