' The series that a script computes, over bars that the host has.
' Run it with: cscript //nologo output.vbs
Option Explicit

Dim output, day, price
Set output = CreateObject("Brindlewort.ScriptOutput")

For day = 1 To 12
  price = 100 + day
  output.AppendRecord output.ToJulianDate(2024, 1, day, 0, 0, 0, 0), price, price + 1, price - 1, price, 1000
Next

' A line break in a script is carriage return and line feed; 0 asks for all bars, AVERAGE for one column.
WScript.Echo output.GetScriptOutput("SET AVERAGE = SMA(CLOSE, 3)" & vbCrLf & "CLOSE > AVERAGE", 0, "AVERAGE")

' The numbers of the bars on which the last expression holds.
WScript.Echo "fires on " & output.GetScriptOutput("CLOSE > SMA(CLOSE, 3)", -1, "")
