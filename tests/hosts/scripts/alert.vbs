' The component Alert, late bound, and its events: bars that close at 1, 2, 3 and so on; each was last traded at noon.
Option Explicit

Dim alert, i, heard, first, second, failing, failures
Dim jdate, openPrice, highPrice, lowPrice, closePrice, volume

' A sink that reads its arguments by position gets the price, the date, the symbol and the name.
Function Told(sink, price, jdate, symbol, alertName)
  Told = sink & " " & TypeName(price) & TypeName(jdate) & TypeName(symbol) & TypeName(alertName) & _
    " " & price & " " & (jdate - January(0)) & " " & symbol & " " & alertName & ";"
End Function

Sub first_Alert(price, jdate, symbol, alertName)
  heard = heard & Told("first", price, jdate, symbol, alertName)
End Sub

Sub first_ScriptError(symbol, alertName, description)
  heard = heard & "first " & symbol & " " & alertName & " " & description & ";"
End Sub

Sub second_Alert(price, jdate, symbol, alertName)
  heard = heard & "second " & price & ";"
End Sub

Sub second_ScriptError(symbol, alertName, description)
  heard = heard & "second " & description & ";"
End Sub

Sub failing_Alert(price, jdate, symbol, alertName)
  heard = heard & "failing;"
  Err.Raise 5
End Sub

' What was heard since the last time.
Function TakeHeard()
  TakeHeard = heard
  heard = ""
End Function

Sub Append(number, price)
  alert.AppendRecord January(number), price, price + 1, price - 1, price, 100 * number, January(number) + 0.5
End Sub

heard = ""
Set alert = host.create("Brindlewort.Alert")
first = host.connect(alert, "first_")
alert.Symbol = "XYZ"
alert.AlertName = "High close"
Check "the symbol", alert.Symbol, "XYZ"
Check "the name", alert.AlertName, "High close"
Check "no script", alert.AlertScript, ""

' Four characters are no script, and five bars are the fewest that this one runs on.
alert.AlertScript = "1 = 1"
Append 1, 1
Append 2, 2
Append 3, 3
Append 4, 4
Check "events of too few bars", TakeHeard(), ""
Append 5, 5
Check "the event of the fifth bar", TakeHeard(), "first DoubleDoubleStringString 5 5.5 XYZ High close;"
alert.AlertScript = "NONE"
Append 6, 6
Check "events without a script", TakeHeard(), ""
Check "the script", alert.AlertScript, "NONE"

' A script is run when it is set, and then on each bar.
alert.AlertScript = "CLOSE > 11"
For i = 7 To 11
  Append i, i
Next
Check "events of a script that does not fire", TakeHeard(), ""
Append 12, 12
Check "the event of the bar that fires", TakeHeard(), "first DoubleDoubleStringString 12 12.5 XYZ High close;"
Check "an edit", CInt(alert.EditRecord(January(12), 20, 21, 19, 20.5, 7, January(12) + 0.75)), -1
Check "the event of a changed bar", TakeHeard(), "first DoubleDoubleStringString 20.5 12.75 XYZ High close;"
Check "an edit of no bar", CInt(alert.EditRecord(January(13), 20, 21, 19, 20, 7, January(13))), 0
Check "events of a bar that is not there", TakeHeard(), ""

' Several sinks, in the order of their connection; one that fails keeps nothing from the others.
failing = host.connect(alert, "failing_")
second = host.connect(alert, "second_")
failures = host.sinkFailures()
Append 13, 13
Check "three sinks", TakeHeard(), "first DoubleDoubleStringString 13 13.5 XYZ High close;failing;second 13;"
Check "the failed calls", host.sinkFailures() - failures, CLng(1)
host.disconnect alert, first
Append 14, 14
Check "two sinks", TakeHeard(), "failing;second 14;"
host.disconnect alert, failing
Append 15, 15
Check "one sink", TakeHeard(), "second 15;"
On Error Resume Next
host.disconnect alert, first
Check "a connection that is no more", Err.Number <> 0, True
On Error GoTo 0
first = host.connect(alert, "first_")
Append 16, 16
Check "a sink that comes back", TakeHeard(), "second 16;first DoubleDoubleStringString 16 16.5 XYZ High close;"
host.disconnect alert, second

' A script at fault.
alert.AlertScript = "CLOSE > NOSUCH"
Check "the error of a script", TakeHeard(), "first XYZ High close Error: Undefined variable 'NOSUCH';"
alert.AlertScript = "CLOSE > RSI(CLOSE, 2, 3)"
CheckBegin "the error of a function", TakeHeard(), "first XYZ High close Error: "
CheckBegin "the page of the function at fault", alert.ScriptHelp, "RelativeStrengthIndex(Vector, Periods)"

' A script that is tried stays.
Check "a script that fires", CInt(alert.Evaluate("CLOSE > 15")), 1
CheckBegin "its event", TakeHeard(), "first Double"
Check "a script that does not fire", CInt(alert.Evaluate("CLOSE > 16")), 0
Check "its events", TakeHeard(), ""
Check "the script in force", alert.AlertScript, "CLOSE > 16"

' Records.
Check "the count", alert.RecordCount, CLng(16)
Check "the second bar", alert.GetRecordByIndex(2, jdate, openPrice, highPrice, lowPrice, closePrice, volume), True
Check "its date", jdate, CDbl(January(2))
Check "its open", openPrice, CDbl(2)
Check "its high", highPrice, CDbl(3)
Check "its low", lowPrice, CDbl(1)
Check "its close", closePrice, CDbl(2)
Check "its volume", volume, CLng(200)
Check "a bar by its date", alert.GetRecordByJDate(January(12), openPrice, highPrice, lowPrice, closePrice, volume), _
  True
Check "its close", closePrice, CDbl(20.5)
CheckNumber "the date of the first bar", alert.GetJDate(1), January(1)
CheckNumber "a date behind the last", alert.GetJDate(17), 0
Check "a changed date", CInt(alert.EditJDate(January(16), January(30))), -1
CheckNumber "the changed date", alert.GetJDate(16), January(30)
CheckNumber "a date", alert.ToJulianDate(2024, 1, 2, 0, 0, 0, 0), January(2)
Check "the text of a date", alert.FromJulianDate(January(2)), JanuaryText(2)
alert.ClearRecords
Check "the count of a cleared component", alert.RecordCount, CLng(0)

' The incremental way: seven bars are the fewest here.
Set alert = host.create("Brindlewort.Alert", "first_")
alert.Symbol = "XYZ"
alert.AlertName = "Fast"
alert.InitialiseTransientStore 50
Check "a preparation", CInt(alert.ProcessScripData("CLOSE > 3")), 1
Check "a preparation of nothing", CInt(alert.ProcessScripData("")), 0
Check "a preparation", CInt(alert.ProcessScripData("CLOSE > 3")), 1
alert.AlertScript = "CLOSE > 3"
For i = 1 To 6
  alert.AppendRecord_Opt January(i), i, i, i, i, 1, January(i) + 0.5
Next
Check "events of too few bars", TakeHeard(), ""
alert.AppendRecord_Opt January(7), 7, 7, 7, 7, 1, January(7) + 0.5
Check "the event of the seventh bar", TakeHeard(), "first DoubleDoubleStringString 7 7.5 XYZ Fast;"
Check "an edit", CInt(alert.EditRecord_Opt(January(7), 3, 3, 3, 3, 1, January(7) + 0.5)), -1
Check "events of a bar that fell", TakeHeard(), ""
Check "an edit", CInt(alert.EditRecord_Opt(January(7), 4, 4, 4, 4, 1, January(7) + 0.25)), -1
Check "the event of a bar that rose", TakeHeard(), "first DoubleDoubleStringString 4 7.25 XYZ Fast;"
alert.GetVariableValuesLog "nowhere.txt"

Finish 53
