#include "indicators/regression.hpp"

#include <cmath>

namespace brindlewort {
namespace {

/// The sums of one window of p rows: x runs from 1 at the oldest row to p at the newest, null rows count as
/// 0.
class RegressionWindow {
 public:
  /// The window that ends at `row`, summed afresh.
  RegressionWindow(View in, Count p, Count row) : in_(in), rows_(p), p_(static_cast<double>(p)) {
    for (Count k = 1; k <= p; ++k) {
      const double x = static_cast<double>(k);
      const double y = nz(in[row - p + k]);
      sx_ += x;
      sxx_ += x * x;
      sy_ += y;
      syy_ += y * y;
      sxy_ += x * y;
    }
  }

  /// Moves on by one row, to end at `row`. The steps are sums that round: their order matters.
  void slideTo(Count row) {
    const double oldest = nz(in_[row - rows_]);
    const double newest = nz(in_[row]);
    sy_ -= oldest;
    syy_ -= oldest * oldest;
    sxy_ -= oldest * 1.0 + sy_;  // the x of each remaining row falls by 1
    sy_ += newest;
    syy_ += newest * newest;
    sxy_ += p_ * newest;
  }

  double slope() const { return a() / b(); }
  double rSquared() const {
    const double scale = b() * c();
    return scale != 0.0 ? a() * a() / scale : 0.0;
  }
  double p() const { return p_; }
  double sumOfY() const { return sy_; }

 private:
  double a() const { return sxy_ - sx_ * sy_ / p_; }
  double b() const { return sxx_ - sx_ * sx_ / p_; }
  double c() const { return syy_ - sy_ * sy_ / p_; }

  View in_;
  Count rows_;
  double p_;
  double sx_ = 0.0, sxx_ = 0.0, sy_ = 0.0, syy_ = 0.0, sxy_ = 0.0;
};

/// The intercept is the one rule in which the forms differ: the batch form halves an odd p downwards.
constexpr auto kBatchIntercept = [](const RegressionWindow& w) {
  return (1.0 / w.p()) * w.sumOfY() - std::trunc(w.p() / 2.0) * w.slope();
};
constexpr auto kResumableIntercept = [](const RegressionWindow& w) {
  return w.sumOfY() / w.p() - w.p() * w.slope() / 2.0;
};

template <class Figure>
void slideOver(View in, Count p, Count first, Count last, Out out, Figure figure) {
  if (first >= last) return;
  RegressionWindow window(in, p, first);
  out[first] = figure(window);
  for (Count i = first + 1; i < last; ++i) {
    window.slideTo(i);
    out[i] = figure(window);
  }
}

/// The wanted line for the rows of [first, last).
template <class Intercept>
void writeLine(View in, Count p, Count first, Count last, RegressionLine line, Intercept intercept, Out out) {
  using Window = const RegressionWindow&;
  switch (line) {
    case RegressionLine::kSlope:
      return slideOver(in, p, first, last, out, [](Window w) { return w.slope(); });
    case RegressionLine::kIntercept:
      return slideOver(in, p, first, last, out, intercept);
    case RegressionLine::kForecast:
      return slideOver(in, p, first, last, out, [&](Window w) { return w.p() * w.slope() + intercept(w); });
    case RegressionLine::kRSquared:
      return slideOver(in, p, first, last, out, [](Window w) { return w.rSquared(); });
  }
}

}  // namespace

namespace CFeedkit {

bool LinearRegression(View in, Count p, RegressionLine line, Out out) {
  const Count n = rowsOf(in);
  if (p < 1 || p > n) return false;
  writeLine(in, p, p, n, line, kBatchIntercept, out);
  return true;
}

void TIMESERIESFORECAST(View in, Count p, Out out) {
  LinearRegression(in, p, RegressionLine::kForecast, out);
}

}  // namespace CFeedkit

namespace CTechnicalFunctions {

Status LinearRegression(Source in, Count p, RegressionLine line, Target out) {
  const Count n = rowsOf(in, out);
  if (!resumableRange(p, n)) return kNothingDone;
  const Count start = startRow(out, firstValueIndex(in.rows) + p - 1);
  if (start >= n) return kNothingDone;
  writeLine(in.rows, p, start, n, line, kResumableIntercept, out.rows);
  return finish(out, n);
}

Status TIMESERIESFORECAST(Source in, Count p, Target out) {
  return LinearRegression(in, p, RegressionLine::kForecast, out);
}

}  // namespace CTechnicalFunctions
}  // namespace brindlewort
