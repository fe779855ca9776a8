#pragma once

#include <cstdint>
#include <vector>

#include "platform/random15.hpp"
#include "series/series.hpp"

/// The figures of a backtest as functions of plain rows. Each gives 0 for rows too few for it. Sums run from
/// the first row on; several figures differ on purpose from the forms of the textbooks.
namespace brindlewort::PerformanceStats {

/// Adds values up in bins of 30 days, counted from the first date. `tradesPerMonth` becomes the mean count of
/// a bin, rounded down. No dates: no bins, and the count stays. Dates whose last lies before the first: no
/// bins, and the count is 0. Throws std::bad_alloc for dates more than a million years apart.
std::vector<double> BinByMonth(View values, View dates, std::int32_t& tradesPerMonth);

/// What 1000 become when each value is a return; 1000 for no values.
double VAMI(View values);
/// The constant return of a row that gives the same VAMI. Not a number when the VAMI is negative.
double CompoundRate(View values);
double TotalCompound(View values);
/// Of the whole population: divided by n.
double StandardDeviation(View values);
/// Times the square root of the number of values, whatever period these stand for.
double AnnualizedStandardDeviation(View values);
/// Over all values, though only those below `mar` add to it.
double DownsideDeviation(View values, double mar);
double SharpeRatio(View values, double rfr);
double AnnualizedSharpeRatio(View values, double rfr);
/// 0 beyond 1e15 either way.
double SortinoRatio(View values, double mar);
double AnnualizedSortinoRatio(View values, double mar);
/// SortinoRatio without its limit.
double SterlingRatio(View values, double mar);
/// 0 beyond 1e15 either way.
double CalmarRatio(View values);
/// The lowest value of the running sum; never above 0.
double MaximumDrawdown(View values);
/// The lowest MaximumDrawdown of 100 shuffles. The shuffle is not uniform, and rows more than 32,767 in front
/// of the last never move.
double MonteCarloDrawdown(View values, platform::Random15& random);

}  // namespace brindlewort::PerformanceStats
