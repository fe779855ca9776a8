#pragma once

#include "indicators/frame.hpp"

namespace brindlewort {

/// Which line of the Ichimoku chart is wanted.
enum class IchimokuLine { kTenkan, kKijun, kSpanA, kSpanB, kChikou };

namespace CFeedkit {

/// The lines of the Ichimoku chart: middles of the price range of past windows, and spans that show such
/// middles a number of rows later. Null prices read as 0. Only the periods of the wanted line are read; one
/// of them out of range leaves all rows null.
/// formula: middle(p)[i] = (highest high + lowest low of the p rows ending at i) / 2;
///   TENKAN = middle(tenkan); KIJUN = middle(kijun);
///   SPANA[i] = (nz(TENKAN[j]) + nz(KIJUN[j])) / 2 with j = i - spanA; SPANB[i] = middle(52)[i - spanB];
///   CHIKOU[i] = close[i + chikou]
/// batch: each period 1 <= p < n; TENKAN from row tenkan, KIJUN from row kijun, SPANA from row spanA + kijun,
///   SPANB from row spanB + 52
/// resumable: each period 1 <= p <= n, the rows of the batch form, plus CHIKOU from row 0, whose last rows,
///   with no row so far ahead, hold the last close (null when no row has one); CHIKOU recomputes the
///   chikou + 1 rows before the new ones
///
/// The lagging line (CHIKOU) exists in the resumable form only; asked for here it is answered with span B.
void Ichimoku(const Prices& prices, Count tenkan, Count kijun, Count spanA, Count spanB, IchimokuLine line,
              Out out);

}  // namespace CFeedkit

namespace CTechnicalFunctions {

/// Succeeds for every line there is. A period out of range leaves the output and its slot as they were.
Status Ichimoku(WorkStore& store, const PriceSources& prices, Count tenkan, Count kijun, Count spanA,
                Count spanB, Count chikou, IchimokuLine line, Target out);

}  // namespace CTechnicalFunctions

}  // namespace brindlewort
