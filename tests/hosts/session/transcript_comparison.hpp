#pragma once

#include <string_view>

namespace brindlewort::session {

/// Whether two systems said the same: equal texts, in which
///
/// - a number, with the same count of decimals, may differ by one unit of the fourth decimal, or by the last
/// bits of
///   a double where it is great;
/// - a date in the fixed format (2024-02-29 18:05:09) equals the same date in the format of the other
/// system's locale
///   (2/29/2024 6:05:09 PM);
/// - the drawdown of random runs in a backtest's report is any number, since the clock seeds it.
bool isSame(std::string_view one, std::string_view other);

}  // namespace brindlewort::session
