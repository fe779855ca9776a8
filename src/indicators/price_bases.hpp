#pragma once

#include "indicators/frame.hpp"

/// Plain combinations of series, row by row. Prices are read as they stand (a null price is a number like
/// any other), the two-series combinations read a null row as 0.
namespace brindlewort {

namespace CFeedkit {

/// The middle of each bar's range.
/// formula: (high[i] + low[i]) / 2
/// batch: rows from 1
/// resumable: rows from 0
void MEDIANPRICE(const Prices& prices, Out out);

/// The mean of high, low and close.
/// formula: (high[i] + low[i] + close[i]) / 3
/// batch: rows from 1
/// resumable: rows from 0
void TypicalPrice(const Prices& prices, Out out);

/// The height of each bar.
/// formula: high[i] - low[i]
/// batch: rows from 1
/// resumable: rows from 0
void HIGHMINUSLOW(const Prices& prices, Out out);

/// The typical price with the close counted twice.
/// formula: (close[i] + close[i] + high[i] + low[i]) / 4
/// batch: rows from 1
/// resumable: rows from 0
void WeightedClose(const Prices& prices, Out out);

}  // namespace CFeedkit

namespace CTechnicalFunctions {

Status MEDIANPRICE(const PriceSources& prices, Target out);
Status TypicalPrice(const PriceSources& prices, Target out);
Status HIGHMINUSLOW(const PriceSources& prices, Target out);
Status WeightedClose(const PriceSources& prices, Target out);

/// The difference of two series.
/// formula: nz(a[i]) - nz(b[i])
/// resumable: rows from the higher lead of `a` and `b`
Status SPREAD(Source a, Source b, Target out);

/// A weighted sum of two series.
/// formula: nz(a[i]) * x + nz(b[i]) * y
/// resumable: rows from the higher lead of `a` and `b`
Status COMPOSITE(Source a, Source b, double x, double y, Target out);

}  // namespace CTechnicalFunctions

}  // namespace brindlewort
