' The incremental way: the component keeps its engine alive, and a new bar costs one new row.
' Run it with: cscript //nologo live.vbs
Option Explicit

Const script = "SET AVERAGE = SMA(CLOSE, 3)"
Dim output, day, price
Set output = CreateObject("Brindlewort.ScriptOutput")

Function JDate(day)
  JDate = output.ToJulianDate(2024, 1, day, 0, 0, 0, 0)
End Function

' Set up once, prepare a script once. True is 1 here and -1 elsewhere: compare with False.
output.InitialiseTransientStore 250
If output.ProcessScripData(script & vbCrLf & "CLOSE > AVERAGE") = False Then WScript.Quit 1

For day = 1 To 12
  price = 100 + day
  output.AppendRecord_New JDate(day), price, price + 1, price - 1, price, 1000
Next
WScript.Echo output.GetScriptOutput_New(script, 12, "AVERAGE")

' While the last bar moves, edit it.
output.EditRecord_New JDate(12), 112, 116, 111, 115, 1500
WScript.Echo output.GetScriptOutput_New(script, 12, "AVERAGE")

' Record queries write to the variables that they are given.
Dim found, openPrice, highPrice, lowPrice, closePrice, volume
found = output.GetRecordByJDate(JDate(12), openPrice, highPrice, lowPrice, closePrice, volume)
If found Then WScript.Echo "close " & closePrice & ", volume " & volume
