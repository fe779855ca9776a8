' The component ScriptOutput, late bound: bars that close at 1, 2, 3 and so on, from the first of January 2024.
Option Explicit

Dim output, script, i, row, wanted, heard
Dim jdate, openPrice, highPrice, lowPrice, closePrice, volume

Sub output_ScriptError(description)
  heard = heard & description & ";"
End Sub

heard = ""
script = "SET A = SMA(CLOSE, 2)" & vbCrLf & "A > 7"
Set output = host.create("Brindlewort.ScriptOutput", "output_")

' Dates: the millisecond does not count.
CheckNumber "the start of 1980", output.ToJulianDate(1980, 1, 1, 0, 0, 0, 0), 2444239.5
CheckNumber "six o'clock", output.ToJulianDate(2024, 1, 1, 6, 0, 0, 999), 2460310.75
Check "a date's type", TypeName(output.ToJulianDate(1980, 1, 1, 0, 0, 0, 0)), "Double"
Check "a text of midnight", output.FromJulianDate(2444239.5), "1/1/1980 12:00:00 AM"
Check "a text of a time", output.FromJulianDate(output.ToJulianDate(2024, 1, 1, 13, 5, 9, 0)), "1/1/2024 1:05:09 PM"
Check "no date", output.FromJulianDate(0), "No Date Time"

' Without a run there is no page of the manual, and without bars no output.
Check "help before a run", output.ScriptHelp, ""
Check "output without bars", output.GetScriptOutput(script, 0, "A"), ""

' Bars of the plain way are not seen by the record queries.
For i = 1 To 10
  output.AppendRecord January(i), i, i + 1, i - 1, i, 100 * i
Next
Check "the count beside plain bars", output.RecordCount, CLng(0)
Check "a query beside plain bars", _
  output.GetRecordByIndex(1, jdate, openPrice, highPrice, lowPrice, closePrice, volume), False

' An average of two rows begins on row 3 of the series, whose row 0 is a filler: at the third bar.
wanted = "Date,""A""" & vbCrLf
For i = 1 To 10
  If i < 3 Then
    wanted = wanted & JanuaryText(i) & ",-987654321" & vbCrLf
  Else
    wanted = wanted & JanuaryText(i) & "," & (i - 1) & ".5000" & vbCrLf
  End If
Next
Check "all rows", output.GetScriptOutput(script, 0, "A"), wanted
wanted = Replace(wanted, """A""", """SMA(CLOSE, 2)"",""A""")
For i = 1 To 10
  row = ",-987654321"
  If i >= 3 Then row = "," & (i - 1) & ".5000"
  wanted = Replace(wanted, JanuaryText(i) & row, JanuaryText(i) & row & row)
Next
Check "all columns, the call of a function among them", output.GetScriptOutput(script, 0, ""), wanted

' Without the fillers the average begins two bars later.
wanted = "Date,""A""" & vbCrLf & JanuaryText(3) & ",-987654321" & vbCrLf & JanuaryText(4) & ",-987654321" & vbCrLf
For i = 5 To 10
  wanted = wanted & JanuaryText(i) & "," & (i - 1) & ".5000" & vbCrLf
Next
Check "rows from the third bar", output.GetScriptOutput(script, 3, "A"), wanted
Check "the bars on which the script fires", output.GetScriptOutput(script, -1, ""), "8,9,10,"
Check "the heading", output.GetCustomIndFromCondition(script), _
  "Date,Open,High,Low,Close,Volume,""SMA(CLOSE, 2)"",""A""" & vbCrLf
Check "errors so far", heard, ""

' A changed bar: the last average becomes that of 9 and 21.
Check "an edit", CInt(output.EditRecord(January(10), 21, 22, 20, 21, 5)), -1
Check "an edit of no bar", CInt(output.EditRecord(January(11), 1, 1, 1, 1, 1)), 0
Check "a changed date", CInt(output.EditJDate(January(10), January(20))), -1
Check "a changed date of no bar", CInt(output.EditJDate(January(10), January(20))), 0
Check "the changed row", output.GetScriptOutput(script, 10, "A"), _
  "Date,""A""" & vbCrLf & JanuaryText(20) & ",15.0000" & vbCrLf

' A script at fault: no text, and the event.
Check "a script with an unknown name", output.GetScriptOutput("CLOSE > NOSUCH", 0, ""), ""
Check "its error", heard, "Error: Undefined variable 'NOSUCH';"
heard = ""
output.GetScriptOutput "CLOSE > RSI(CLOSE, 2, 3)", 0, ""
CheckBegin "the error of a function", heard, "Error: "
CheckBegin "the page of the function at fault", output.ScriptHelp, "RelativeStrengthIndex(Vector, Periods)"

' The incremental way.
heard = ""
output.ClearRecords
output.InitialiseTransientStore 50
Check "a preparation", CInt(output.ProcessScripData(script)), 1
Check "a preparation of nothing", CInt(output.ProcessScripData("")), 0
For i = 1 To 6
  output.AppendRecord_New January(i), i, i + 1, i - 1, i, 100 * i
Next
Check "too few bars", output.GetScriptOutput_New(script, 0, "A"), ""
For i = 7 To 10
  output.AppendRecord_New January(i), i, i + 1, i - 1, i, 100 * i
Next
wanted = "Date,""A""" & vbCrLf & JanuaryText(1) & ",-987654321" & vbCrLf
For i = 2 To 10
  wanted = wanted & JanuaryText(i) & "," & (i - 1) & ".5000" & vbCrLf
Next
Check "all rows of the incremental way", output.GetScriptOutput_New(script, 0, "A"), wanted
Check "the heading of the incremental way", output.GetCustomIndFromCondition_NEW(script), _
  "Date,Open,High,Low,Close,Volume,""SMA(CLOSE, 2)"",""A""" & vbCrLf
Check "the bars on which it fires", output.GetScriptOutput_New(script, -1, "A"), "8,9,10,"

' Queries write to the variables that they are given, whatever these held.
Check "the count", output.RecordCount, CLng(10)
closePrice = "text"
Check "the third bar", output.GetRecordByIndex(3, jdate, openPrice, highPrice, lowPrice, closePrice, volume), True
Check "its date", jdate, CDbl(January(3))
Check "its open", openPrice, CDbl(3)
Check "its high", highPrice, CDbl(4)
Check "its low", lowPrice, CDbl(2)
Check "its close", closePrice, CDbl(3)
Check "its volume", volume, CLng(300)
Check "a bar by its date", output.GetRecordByJDate(January(4), openPrice, highPrice, lowPrice, closePrice, volume), _
  True
Check "its close", closePrice, CDbl(4)
Check "its volume", volume, CLng(400)
Check "no such date", output.GetRecordByJDate(January(11), openPrice, highPrice, lowPrice, closePrice, volume), False
CheckNumber "the close that no bar changed", closePrice, 4
Check "bar 0", output.GetRecordByIndex(0, jdate, openPrice, highPrice, lowPrice, closePrice, volume), False
Check "the bar behind the last", _
  output.GetRecordByIndex(11, jdate, openPrice, highPrice, lowPrice, closePrice, volume), False
CheckNumber "a date by number", output.GetJDate(1), January(2)
CheckNumber "a date behind the last", output.GetJDate(10), 0
Check "the last bar before a date", output.GetRecordNumberByJDate(January(3)), CLng(1)

' The last bar moves: the mean of 9 and 20.
Check "an edit", CInt(output.EditRecord_New(January(10), 20, 21, 19, 20, 5)), -1
Check "an edit of no bar", CInt(output.EditRecord_New(January(11), 1, 1, 1, 1, 1)), 0
Check "the changed row", output.GetScriptOutput_New(script, 10, "A"), _
  "Date,""A""" & vbCrLf & JanuaryText(10) & ",14.5000" & vbCrLf
Check "a changed date", CInt(output.EditJDate_New(January(10), January(20))), -1
CheckNumber "the changed date", output.GetJDate(9), January(20)
i = output.GetScriptOutput_PTR(script, 0, "A")
Check "the type of a list's handle", TypeName(i), "Long"
Check "a list", i <> -1 And i <> 0, True
output.SetDataRetrieveMode 102
Check "rows without dates", output.GetScriptOutput_New(script, 10, "A"), """A""" & vbCrLf & "14.5000" & vbCrLf
output.GetVariableValuesLog "nowhere.txt"
output.ClearRecords
Check "the count of a cleared component", output.RecordCount, CLng(0)
Check "errors of the incremental way", heard, ""

' A series that the host feeds, at 22 times the price.
Set output = host.create("Brindlewort.ScriptOutput", "output_")
output.InitialiseTransientStore 50
output.AddOrRemoveBasicVectorSeries "X", 50
Check "a preparation with it", CInt(output.ProcessScripData("SET B = X * 2" & vbCrLf & "B > 0")), 1
wanted = "Date,""B""" & vbCrLf
For i = 1 To 8
  output.AppendRecord_New January(i), i, i, i, i, 1
  output.UpdateBasicVectorData "X", 22 * i, 22
  wanted = wanted & JanuaryText(i) & "," & (44 * i) & ".0000" & vbCrLf
Next
Check "what is made of it", output.GetScriptOutput_New("B > 0", 0, "B"), wanted

Finish 61
