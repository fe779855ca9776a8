' The component Backtest, late bound: twelve bars that close at 1, 2, 3 and so on; a long position from 7 to 10.
Option Explicit

Dim backtest, report, i, heard
Dim jdate, openPrice, highPrice, lowPrice, closePrice, volume

Sub backtest_ScriptError(description)
  heard = heard & description & ";"
End Sub

heard = ""
Set backtest = host.create("Brindlewort.Backtest", "backtest_")
Check "a backtest without bars", backtest.Backtest("CLOSE = 7", "", "CLOSE = 10", "", 0, ""), ""
For i = 1 To 12
  backtest.AppendRecord January(i), i, i + 1, i - 1, i, 100 * i
Next
heard = ""

' The statistics of one trade: it gains 3 on 7, which is the whole month, and has no deviation and no drawdown.
Function ReportOf(profit, rate, vami, firstLine, secondLine)
  ReportOf = "Back tested from " & JanuaryText(1) & " to " & JanuaryText(12) & vbCrLf & _
    "Total number of trades: 2" & vbCrLf & _
    "Average number of trades per month: 1" & vbCrLf & _
    "Number of profitable trades: 1" & vbCrLf & _
    "Number of losing trades: 0" & vbCrLf & _
    "Total profit: " & profit & vbCrLf & _
    "Total loss: 0.0000" & vbCrLf & _
    "Percent profit: 100.000%" & vbCrLf & _
    "Largest profit: " & profit & vbCrLf & _
    "Largest loss: 0.0000" & vbCrLf & _
    "Maximum Drawdown: 0.0000" & vbCrLf & _
    "Maximum Drawdown (Monte Carlo): 0.0000" & vbCrLf & _
    "Compound Monthly ROR: " & rate & vbCrLf & _
    "Standard deviation: 0.00000000" & vbCrLf & _
    "Annualized standard deviation: 0.00000000" & vbCrLf & _
    "Downside deviation (MAR = 10%): 0.00000000" & vbCrLf & _
    "Value Added Monthly Index (VAMI): " & vami & vbCrLf & _
    "Sharpe ratio (RFR = 5%): 0.00000000" & vbCrLf & _
    "Annualized Sharpe ratio (RFR = 5%): 0.00000000" & vbCrLf & _
    "Sortino ratio (MAR = 5%): 0.00000000" & vbCrLf & _
    "Annualized Sortino ratio (MAR = 5%): 0.00000000" & vbCrLf & _
    "Sterling ratio (MAR = 5%): 0.00000000" & vbCrLf & _
    "Calmar ratio: 0.00000000" & vbCrLf & _
    "Risk to reward ratio: 0.000" & vbCrLf & _
    "Trade Log:" & vbLf & firstLine & vbCrLf & secondLine & vbCrLf
End Function

report = ReportOf("3.0000", "0.4286", "1428.57142857", JanuaryText(7) & ",LONG,7.0000,7", _
                  JanuaryText(10) & ",EXIT LONG,10.0000,10")
Check "the report", backtest.Backtest("CLOSE = 7", "", "CLOSE = 10", "", 0, ""), report
Check "the report of the incremental way", backtest.Backtest_New("CLOSE = 7", "", "CLOSE = 10", "", 0, ""), report

' A target of 25 percent lies at 8.75; the bar after the entry goes up to 9.
Check "a profit target", _
  backtest.Backtest("CLOSE = 7", "", "CLOSE = 10", "", 0, "Stop=0;Trail=0;Target=25;Bars=0;"), _
  ReportOf("1.7500", _
  "0.2500", "1250.00000000", JanuaryText(7) & ",LONG,7.0000,7", JanuaryText(8) & ",PROFIT,8.7500,8")

' One percent of slippage: in at 7.07, out at 9.90, which is 2.83 on 7.07.
Check "slippage", backtest.Backtest("CLOSE = 7", "", "CLOSE = 10", "", 1, ""), _
  ReportOf("2.8300", _
  "0.4003", "1400.28288543", JanuaryText(7) & ",LONG,7.0700,7", JanuaryText(10) & ",EXIT LONG,9.9000,10")

' A short position from 7 to 10 loses 3, and nothing is gained.
report = backtest.Backtest("", "CLOSE = 7", "", "CLOSE = 10", 0, "")
CheckLine report, "Number of losing trades: 1"
CheckLine report, "Total loss: -3.0000"
CheckLine report, "Maximum Drawdown: -3.0000"
CheckLine report, "Maximum Drawdown (Monte Carlo): -3.0000"
CheckLine report, "Risk to reward ratio: 0%"
CheckLine report, JanuaryText(10) & ",EXIT SHORT,10.0000,10"
Check "errors so far", heard, ""

' Failures: no text, and the event.
Check "scripts that never trade", backtest.Backtest("CLOSE = 70", "", "CLOSE = 10", "", 0, ""), ""
Check "their error", heard, "Error: Scripts generated no trades.;"
heard = ""
Check "a script with an unknown name", backtest.Backtest("CLOSE = NOSUCH", "", "CLOSE = 10", "", 0, ""), ""
Check "its error", heard, "Error: Undefined variable 'NOSUCH';"
backtest.Backtest "CLOSE > RSI(CLOSE, 2, 3)", "", "", "", 0, ""
CheckBegin "the page of the function at fault", backtest.ScriptHelp, "RelativeStrengthIndex(Vector, Periods)"

' Records. The milliseconds of a date count here..
Check "the count", backtest.RecordCount, CLng(12)
Check "the second bar", backtest.GetRecordByIndex(2, jdate, openPrice, highPrice, lowPrice, closePrice, volume), True
Check "its date", jdate, CDbl(January(2))
Check "its volume", volume, CLng(200)
Check "an edit", CInt(backtest.EditRecord(January(2), 5, 6, 4, 5.5, 9)), -1
Check "an edit of no bar", CInt(backtest.EditRecord(January(30), 5, 6, 4, 5, 9)), 0
Check "the changed bar", backtest.GetRecordByJDate(January(2), openPrice, highPrice, lowPrice, closePrice, volume), _
  True
Check "its close", closePrice, CDbl(5.5)
Check "the text of a date", backtest.FromJulianDate(January(31)), "1/31/2024 12:00:00 AM"
CheckNumber "half a second, in thousands of seconds", _
  (backtest.ToJulianDate(2024, 1, 1, 0, 0, 0, 500) - backtest.ToJulianDate(2024, 1, 1, 0, 0, 0, 0)) * 86.4, 0.0005
backtest.ClearRecords
Check "the count of a cleared component", backtest.RecordCount, CLng(0)

Finish 28
