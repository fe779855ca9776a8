// The component Backtest, late bound: twelve bars that close at 1, 2, 3 and so on; a long position from 7 to 10.

var heard = "";
function backtest_ScriptError(description) { heard += description + ";"; }

var backtest = host.create("Brindlewort.Backtest", "backtest_");
for (var i = 1; i <= 12; i++) backtest.AppendRecord(january(i), i, i + 1, i - 1, i, 100 * i);

function linesOf(report) { return report.replace("Trade Log:\n", "Trade Log:\r\n").split("\r\n"); }

var lines = linesOf(backtest.Backtest("CLOSE = 7", "", "CLOSE = 10", "", 0, ""));
check("the count of lines", lines.length, 28);
check("the bars", lines[0], "Back tested from " + januaryText(1) + " to " + januaryText(12));
check("the profit", lines[5], "Total profit: 3.0000");
check("the index", lines[16], "Value Added Monthly Index (VAMI): 1428.57142857");
check("the log", lines[24], "Trade Log:");
check("the entry", lines[25], januaryText(7) + ",LONG,7.0000,7");
check("the exit", lines[26], januaryText(10) + ",EXIT LONG,10.0000,10");
check("the incremental way", linesOf(backtest.Backtest_New("CLOSE = 7", "", "CLOSE = 10", "", 0, "")).join("|"),
      lines.join("|"));
lines = linesOf(backtest.Backtest("CLOSE = 7", "", "CLOSE = 10", "", 0, "Stop=0;Trail=0;Target=25;Bars=0;"));
check("a profit target", lines[26], januaryText(8) + ",PROFIT,8.7500,8");

check("scripts that never trade", String(backtest.Backtest("CLOSE = 70", "", "CLOSE = 10", "", 0, "")), "");
check("their error", heard, "Error: Scripts generated no trades.;");
backtest.Backtest("CLOSE > RSI(CLOSE, 2, 3)", "", "", "", 0, "");
checkBegin("the page of the function at fault", backtest.ScriptHelp, "RelativeStrengthIndex(Vector, Periods)");
check("the count", backtest.RecordCount, 12);
check("a query", backtest.GetRecordByJDate(january(12), 0, 0, 0, 0, 0), true);
check("an edit of no bar", backtest.EditRecord(january(13), 1, 1, 1, 1, 1), false);

finish(15);
