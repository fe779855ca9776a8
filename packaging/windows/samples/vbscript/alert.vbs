' A script that watches one symbol. This host asks by itself, without events; ..\cpp\alert.cpp is told by events.
' Run it with: cscript //nologo alert.vbs
Option Explicit

Dim alert, day, price, jdate
Set alert = CreateObject("Brindlewort.Alert")
alert.Symbol = "XYZ"
alert.AlertName = "High close"

For day = 1 To 12
  price = 100 + day
  jdate = alert.ToJulianDate(2024, 1, day, 0, 0, 0, 0)
  alert.AppendRecord jdate, price, price + 1, price - 1, price, 1000, jdate
Next

' True is 1 here and -1 elsewhere: compare with False.
If alert.Evaluate("CLOSE > 111") <> False Then
  WScript.Echo alert.Symbol & ": " & alert.AlertName & " on " & alert.FromJulianDate(alert.GetJDate(alert.RecordCount))
End If
If alert.Evaluate("CLOSE > 112") = False Then WScript.Echo "not above 112"
