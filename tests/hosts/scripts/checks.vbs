' What the VBScript tests of this folder share: checks that tell what was wrong, and the closing line that the test
' runner looks for. A script that ends early, by an error of its own, never gets to that line.
Option Explicit

Dim checksMade, checksFailed
checksMade = 0
checksFailed = 0

Function Shown(value)
  Shown = TypeName(value) & " [" & Replace(Replace(CStr(value), vbCr, "\r"), vbLf, "\n") & "]"
End Function

' The value has the very type and content.
Sub Check(what, value, wanted)
  checksMade = checksMade + 1
  If TypeName(value) = TypeName(wanted) Then
    If value = wanted Then Exit Sub
  End If
  checksFailed = checksFailed + 1
  host.print "FAILED: " & what & " gives " & Shown(value) & ", not " & Shown(wanted)
End Sub

' The number, of whatever type, is the wanted one within half of the fourth decimal.
Sub CheckNumber(what, value, wanted)
  checksMade = checksMade + 1
  If IsNumeric(value) Then
    If Abs(value - wanted) < 0.00005 Then Exit Sub
  End If
  checksFailed = checksFailed + 1
  host.print "FAILED: " & what & " gives " & Shown(value) & ", not the number " & wanted
End Sub

Sub CheckBegin(what, value, wanted)
  Check what, Left(CStr(value), Len(wanted)), wanted
End Sub

' The report, or other text of lines, has a line.
Sub CheckLine(text, wanted)
  checksMade = checksMade + 1
  If InStr(vbLf & text, vbLf & wanted & vbCrLf) > 0 Then Exit Sub
  checksFailed = checksFailed + 1
  host.print "FAILED: no line [" & wanted & "] in " & Shown(text)
End Sub

' `wantedChecks` is how many checks the script makes: one that is passed over is a failure too.
Sub Finish(wantedChecks)
  If checksMade <> wantedChecks Then
    host.print "FAILED: " & checksMade & " checks were made, not " & wantedChecks
  ElseIf checksFailed = 0 Then
    host.print "ALL OK"
  End If
End Sub

' The date of a day of January 2024: the Julian day 2460310 began at noon before the first.
Function January(day)
  January = 2460309.5 + day
End Function

' Its text in the locale of the test's system.
Function JanuaryText(day)
  JanuaryText = "1/" & day & "/2024 12:00:00 AM"
End Function
