#include "indicators/directional.hpp"

#include <cmath>
#include <string>

#include "indicators/compute_rows.hpp"
#include "indicators/moving_averages.hpp"
#include "indicators/seeded_recursion.hpp"
#include "indicators/source_rows.hpp"
#include "indicators/true_range.hpp"

namespace brindlewort {
namespace {

/// The periods that smooth the true range and the two sides of the movement.
struct Smoothing {
  Count range, up, down;
  bool within(Count n) const { return inRange(range, n) && inRange(up, n) && inRange(down, n); }

 private:
  static bool inRange(Count p, Count n) { return 1 <= p && p <= n; }
};

/// An absent period takes the first one.
Count orElse(Count given, Count p) {
  return given == 0 ? p : given;
}

double adxStep(double before, double dx, double p) {
  return (before * (p - 1.0) + nz(dx)) / p;
}

double adxr(double adx, double before) {
  return (nz(adx) + nz(before)) / 2.0;
}

}  // namespace

namespace CFeedkit {
namespace {

double positivePart(double move) {
  return move < 0.0 ? 0.0 : move;
}

/// DI of one side; null where the smoothed range is 0.
double directionalIndex(double sideSum, double rangeSum) {
  const double range = nz(rangeSum);
  return range == 0.0 ? NULL_VALUE : nz(sideSum) * 100.0 / range;
}

/// DX; null where the indexes are null (they share their divisor, so both are) or cancel out.
double directionalSpread(double plus, double minus) {
  const double sum = plus + minus;
  return isNull(plus) || sum == 0.0 ? NULL_VALUE : std::fabs(plus - minus) / sum * 100.0;
}

void smoothedRange(const Prices& prices, Count p, Out out) {
  std::vector<double> range = nullRows(out.size());
  TrueRange(prices, range);
  WellesWilderSmoothing(range, p, out);
}

/// DI+ or DI-: the moves of one side, smoothed and set against the range. `move` picks the side; other rows
/// stay null.
template <class Move>
void sideIndex(const Prices& prices, Count periods, View rangeSum, Move move, Out out) {
  const Count n = prices.rows();
  std::vector<double> moves = nullRows(out.size());
  for (Count i = 2; i < n; ++i) {
    moves[i] = move(positivePart(prices.high[i] - prices.high[i - 1]),
                    positivePart(prices.low[i - 1] - prices.low[i]));
  }
  WellesWilderSmoothing(moves, periods, out);
  for (Count i = 2; i < n; ++i) out[i] = directionalIndex(out[i], rangeSum[i]);
}

void plusIndex(const Prices& prices, const Smoothing& periods, View rangeSum, Out out) {
  const auto upMove = [](double up, double down) { return up > down ? up : NULL_VALUE; };
  sideIndex(prices, periods.up, rangeSum, upMove, out);
}
void minusIndex(const Prices& prices, const Smoothing& periods, View rangeSum, Out out) {
  const auto downMove = [](double up, double down) { return down > up ? down : NULL_VALUE; };
  sideIndex(prices, periods.down, rangeSum, downMove, out);
}

void directionalSpreads(const Prices& prices, const Smoothing& periods, View rangeSum, Out out) {
  const Count n = prices.rows();
  plusIndex(prices, periods, rangeSum, out);
  std::vector<double> minus = nullRows(out.size());
  minusIndex(prices, periods, rangeSum, minus);
  for (Count i = 2; i < n; ++i) out[i] = directionalSpread(out[i], minus[i]);
}

/// ADX without a seed: it rises from 0 at row p + 1.
void averageSpread(View dx, Count p, Out out) {
  runRecursion(out, p + 1, rowsOf(dx),
               [=](Count i, double before) { return adxStep(before, dx[i], static_cast<double>(p)); });
}

/// ADXR in the place of the ADX, which starts at row p + 1.
void rateAverage(Count p, Out adx) {
  double before = NULL_VALUE;
  for (Count i = p + 1; i < rowsOf(adx); ++i) {
    const double now = adx[i];
    adx[i] = adxr(now, before);
    before = now;
  }
}

}  // namespace

void DirectionalMovement(const Prices& prices, Count p, Count secondPeriods, Count thirdPeriods,
                         DirectionalLine line, Out out) {
  const Count n = prices.rows();
  const Smoothing periods{.range = p, .up = orElse(thirdPeriods, p), .down = orElse(secondPeriods, p)};
  if (!periods.within(n)) return;
  if (line == DirectionalLine::kTrSum) return smoothedRange(prices, p, out);

  std::vector<double> rangeSum = nullRows(out.size());
  smoothedRange(prices, p, rangeSum);
  if (line == DirectionalLine::kDiPlus) return plusIndex(prices, periods, rangeSum, out);
  if (line == DirectionalLine::kDiMinus) return minusIndex(prices, periods, rangeSum, out);

  if (line == DirectionalLine::kDx) return directionalSpreads(prices, periods, rangeSum, out);

  std::vector<double> dx = nullRows(out.size());
  directionalSpreads(prices, periods, rangeSum, dx);
  averageSpread(dx, p, out);
  if (line == DirectionalLine::kAdxr) rateAverage(p, out);
}

}  // namespace CFeedkit

namespace CTechnicalFunctions {
namespace {

/// DI of one side; 0 where the smoothed range is 0.
double directionalIndex(double sideSum, double rangeSum) {
  const double range = nz(rangeSum);
  return range == 0.0 ? 0.0 : nz(sideSum) * 100.0 / range;
}

double directionalSpread(double plus, double minus) {
  const double sum = plus + minus;
  return sum == 0.0 ? 0.0 : std::fabs(plus - minus) * 100.0 / sum;
}

double upMove(double up, double down) {
  return up > 0.0 && up > down ? up : 0.0;
}
double downMove(double up, double down) {
  return down > 0.0 && down > up ? down : 0.0;
}
double greaterOr0(double x, double other) {
  return x > other ? x : 0.0;
}

/// What stands behind the first "(" of a call, without any ")".
std::string argumentsOf(std::string_view callText) {
  const std::size_t bracket = callText.find('(');
  std::string arguments(bracket == std::string_view::npos ? callText : callText.substr(bracket + 1));
  std::erase(arguments, ')');
  return arguments;
}

/// The work series of one list of arguments.
struct WorkFields {
  WorkStore& store;
  std::string arguments;
  WorkField operator[](std::string_view name) const {
    return store.field(name, {KeyPart(std::string_view(arguments))});
  }
};

/// A work series for each side of the movement.
struct Sides {
  WorkField up, down;
};

WorkField smoothedRange(const WorkFields& work, const PriceSources& prices, Count p) {
  const WorkField range = work.store.field("TR", {prices.high, prices.low, prices.close});
  TrueRange(prices, range);
  const WorkField sum = work["WWS"];
  WellesWilderSmoothing(range, p, sum);
  return sum;
}

Sides smoothedMoves(const WorkFields& work, const PriceSources& prices, const Smoothing& periods, Count n) {
  const View high = prices.high.rows, low = prices.low.rows;
  const Sides raw{work["DMRAW+"], work["DMRAW-"]};
  computeRows(raw.up, 1, n, [=](Count i) { return upMove(high[i] - high[i - 1], low[i - 1] - low[i]); });
  computeRows(raw.down, 1, n, [=](Count i) { return downMove(high[i] - high[i - 1], low[i - 1] - low[i]); });
  const Sides moves{work["UPDMI"], work["DNDMI"]};
  computeRows(moves.up, 1, n, [=](Count i) { return greaterOr0(raw.up.rows[i], raw.down.rows[i]); });
  computeRows(moves.down, 1, n, [=](Count i) { return greaterOr0(raw.down.rows[i], raw.up.rows[i]); });
  const Sides sums{work["DM+SUM"], work["DM-SUM"]};
  WellesWilderSmoothing(moves.up, periods.up, sums.up);
  WellesWilderSmoothing(moves.down, periods.down, sums.down);
  return sums;
}

/// ADX from the mean of the first p rows of DX, which start at `first`.
WorkField averageSpread(const WorkFields& work, View dx, Count p, Count first, Count n) {
  const WorkField adx = work["ADX"];
  const double periods = static_cast<double>(p);
  resumeRecursion(
      adx, n, first + p - 1, [=] { return sumOfRows(dx, first, first + p) / periods; },
      [=](Count i, double before) { return adxStep(before, dx[i], periods); });
  return adx;
}

}  // namespace

Status DirectionalMovement(WorkStore& store, const PriceSources& prices, Count p, Count secondPeriods,
                           Count thirdPeriods, DirectionalLine line, std::string_view callText, Target out) {
  const Count n = commonRows(out.rows, {prices.high.rows, prices.low.rows, prices.close.rows});
  const Smoothing periods{.range = p, .up = orElse(secondPeriods, p), .down = orElse(thirdPeriods, p)};
  if (!periods.within(n)) return kNothingDone;
  const WorkFields work{store, argumentsOf(callText)};

  const WorkField rangeSum = smoothedRange(work, prices, p);
  const auto copied = [&](const WorkField& field, Count first) {
    return copyRows(field.rows, first, n, out);
  };
  if (line == DirectionalLine::kTrSum) return copied(rangeSum, firstValueIndex(rangeSum.rows));

  const Sides sums = smoothedMoves(work, prices, periods, n);
  const Count first = higherLead(sums.up.rows, sums.down.rows);
  const Sides index{work["DIP"], work["DIN"]};
  computeRows(index.up, first, n,
              [=](Count i) { return directionalIndex(sums.up.rows[i], rangeSum.rows[i]); });
  computeRows(index.down, first, n,
              [=](Count i) { return directionalIndex(sums.down.rows[i], rangeSum.rows[i]); });
  if (line == DirectionalLine::kDiPlus) return copied(index.up, first);
  if (line == DirectionalLine::kDiMinus) return copied(index.down, first);

  const WorkField dx = work["DX"];
  computeRows(dx, first, n, [=](Count i) { return directionalSpread(index.up.rows[i], index.down.rows[i]); });
  if (line == DirectionalLine::kDx) return copied(dx, first);

  const Count adxFirst = first + p - 1;
  const WorkField adx = averageSpread(work, dx.rows, p, first, n);
  if (line == DirectionalLine::kAdx) return copied(adx, adxFirst);

  const WorkField rating = work["ADXR"];
  computeRows(rating, adxFirst, n, [=](Count i) { return adxr(adx.rows[i], adx.rows[i - 1]); });
  return copied(rating, adxFirst);
}

}  // namespace CTechnicalFunctions
}  // namespace brindlewort
