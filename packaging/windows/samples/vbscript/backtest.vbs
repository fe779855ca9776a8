' What trading on the signals of scripts would have brought.
' Run it with: cscript //nologo backtest.vbs
Option Explicit

Dim backtest, day, price, report
Set backtest = CreateObject("Brindlewort.Backtest")

For day = 1 To 12
  price = 100 + day
  backtest.AppendRecord backtest.ToJulianDate(2024, 1, day, 0, 0, 0, 0), price, price + 1, price - 1, price, 1000
Next

' Scripts for buying, selling short, and the exits from both; slippage in percent; stop loss, trailing stop and profit
' target in percent, and the bars after which a position is closed: 0 switches a rule off.
report = backtest.Backtest("CLOSE = 107", "", "CLOSE = 110", "", 0, "Stop=5;Trail=0;Target=0;Bars=0;")
If report = "" Then
  WScript.Echo "No report: an event tells why."
Else
  WScript.Echo report
End If
