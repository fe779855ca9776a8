#pragma once

#include "indicators/frame.hpp"

namespace brindlewort {

/// Which series of the rolling regression is wanted.
enum class RegressionLine { kSlope, kIntercept, kForecast, kRSquared };

namespace CFeedkit {
/// Straight line through the last p rows by least squares, the oldest row at x = 1 and the newest at x = p;
/// one of its slope, its intercept, its value at x = p and its coefficient of determination. There is no such
/// series, and the result is false, when the period is out of range.
/// formula: a = Sxy - Sx * Sy / p, b = Sxx - Sx * Sx / p, c = Syy - Sy * Sy / p; slope = a / b;
///   forecast = p * slope + intercept; rsquared = a * a / (b * c), 0 where b * c is 0. With p = 1 the slope
///   is not a number.
/// batch: 1 <= p <= n, else no series; rows from p; the window is summed once and slides from there;
///   intercept = (1 / p) * Sy - trunc(p / 2) * slope.
/// resumable: 1 <= p <= n; rows from lead + p - 1; the window is summed afresh at the first row of a call and
///   slides from there; intercept = Sy / p - p * slope / 2.
bool LinearRegression(View in, Count p, RegressionLine line, Out out);

/// Value of the regression line at the newest row of each window.
/// formula: p * slope + intercept, of the linear regression over p
/// batch: 1 <= p <= n; rows from p.
/// resumable: 1 <= p <= n; rows from lead + p - 1; the window is summed afresh at the first row of a call.
void TIMESERIESFORECAST(View in, Count p, Out out);

/// One figure for the whole of two series: how much their steps, taken without sign, grow and shrink
/// together. No correlation coefficient.
/// formula: 1 - sum / (n - 2), sum = |a[i] - a[i - 1]| * |b[i] - b[i - 1]| over the rows from 2.
/// batch: 0 unless both series have the same number of rows, and at least one; not a number for two rows.
/// resumable: from the higher lead + 1; writes no row, as a figure is no series.
double CORRELATIONANALYSIS(View a, View b);

/// Standard deviation of the logarithmic returns, scaled to a span of barHistory bars.
/// formula: StandardDeviations(log(in[i] / in[i - 1]), p, deviations, SIMPLE) * sqrt(barHistory) * 100
/// batch: barHistory >= 0, 1 <= p <= n, 0 <= deviations <= 100; logarithm to base 10, of any ratio;
///   rows from 2, 0 where the deviation has no value yet.
/// resumable: the same ranges; natural logarithm, 0 where the previous row is not positive; rows from the
///   lead of the deviation.
void HistoricalVolatilityIndex(View in, Count p, Count barHistory, double deviations, Out out);

/// Direction of a series: 1 up, 2 down, 3 sideways.
/// formula: of value v against base b: 1 if b * 1.005 < v, else 3 if b * 0.995 <= v, else 2
/// batch: rows 1 to p compare in[i] with in[1]; later rows compare the simple moving average over p with
///   itself p rows back.
/// resumable: 1 <= p <= n; rows from lead + p - 1; another method: 1 where each of the p - 1 steps of the
///   window rises, 2 where each falls, else 3.
void TREND(View in, Count p, Out out);

/// Sum of the last `count` comparisons of a series with itself p rows back.
/// formula: sum of s[i - count + 1] to s[i]; s[i] = 1 if in[i] > in[i - p], -1 if less, else s[i - 1]
/// batch: as a first call of the resumable form; all null where that does nothing.
/// resumable: 1 <= p <= n, 2 <= count <= n, a first call needs lead + p + count < n; s from lead + p, where
///   equal values give 1; rows from lead + p + count - 1.
void TRENDSCORE(View in, Count p, Count count, Out out);
}  // namespace CFeedkit

namespace CTechnicalFunctions {
Status LinearRegression(Source in, Count p, RegressionLine line, Target out);
Status TIMESERIESFORECAST(Source in, Count p, Target out);
Status CORRELATIONANALYSIS(Source a, Source b, Target out);
Status HistoricalVolatilityIndex(WorkStore& store, Source in, Count p, Count barHistory, double deviations,
                                 Target out);
Status TREND(WorkStore& store, Source in, Count p, Target out);
Status TRENDSCORE(WorkStore& store, Source in, Count p, Count count, Target out);
}  // namespace CTechnicalFunctions

}  // namespace brindlewort
