' What is wrong with a script, for an editor.
' Run it with: cscript //nologo validate.vbs
Option Explicit

Dim validate
Set validate = CreateObject("Brindlewort.Validate")

Sub Show(script)
  Dim answer
  answer = validate.Validate(script, -1)
  If answer = "" Then answer = "no fault"
  WScript.Echo script & ": " & answer
End Sub

Show "CLOSE > SMA(CLOSE, 14)"
Show "CLOSE>SMA(CLOSE, 14)"
Show "CLOSE > NOSUCH"

' The manual page of the function in which a script stopped.
Show "CLOSE > RSI(CLOSE, 14, 3)"
Dim page
page = validate.ScriptHelp
WScript.Echo Left(page, InStr(page, vbLf) - 1)
