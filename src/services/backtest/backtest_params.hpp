#pragma once

#include <string_view>

namespace brindlewort {

/// The protective rules of a backtest. A rule is on when its value is above 0.
struct BacktestParams {
  double StopLossPct = -1.0;   ///< percent of the entry price
  double TrailingStop = -1.0;  ///< a switch alone: the trail keeps the distance of the stop loss
  double ProfitTargetPct = -1.0;
  double NoActivityBars = -1.0;

  bool stops() const { return StopLossPct > 0.0; }
  bool trails() const { return TrailingStop > 0.0 && stops(); }
  bool takesProfit() const { return ProfitTargetPct > 0.0; }
  bool timesOut() const { return NoActivityBars > 0.0; }
};

/// Reads "name=value;" repeated. The values count by position, the names have no meaning; text behind the
/// last ";" is not read. Exactly four values set the rules, in the order of the fields; any other number
/// leaves all of them off. A value that is no number reads as 0, which is off too.
BacktestParams ParseBacktestParams(std::string_view text);

}  // namespace brindlewort
