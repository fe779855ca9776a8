' The component Validate, late bound.
Option Explicit

Dim validate
Set validate = CreateObject("Brindlewort.Validate")

Check "no symbol before a run", validate.Constant("SYMBOL"), ""
Check "no page before a run", validate.ScriptHelp, ""
Check "a script without fault", validate.Validate("CLOSE > OPEN", -1), ""
' Five prices, and the expression.
Check "its series", validate.Validate("CLOSE > OPEN", 1), "NO Error:6"
Check "a short script", validate.Validate("ABCD", -1), "Error: Script too short."
Check "a missing blank", validate.Validate("CLOSE>SMA(CLOSE, 14)", -1), "Error: No space before '>'"
Check "a missing bracket", _
  validate.Validate("SMA(CLOSE, 5", -1), "Error: Script not nested with proper "" ) "" bracket"
Check "a number as a name", validate.Validate("SET 5 = 3" & vbCrLf & "CLOSE > 1", -1), _
  "Error: '5' variable cannot be numeric"
Check "an unknown word", validate.Validate("CLOSE > NOSUCH", -1), "Error: 'NOSUCH' is not a valid script"
Check "where a script belongs", validate.Validate("SET SYMBOL = Q" & vbCrLf & "CLOSE > 1", -1), ""
Check "its symbol", validate.Constant("symbol"), "Q"
Check "its exchange", validate.Constant("EXCHANGE"), ""
Check "no constant", validate.Constant("CLOSE"), ""
CheckBegin "a fault in a call", validate.Validate("CLOSE > RSI(CLOSE, 2, 3)", -1), "Error: "
CheckBegin "the page of the function at fault", validate.ScriptHelp, "RelativeStrengthIndex(Vector, Periods)"

Finish 15
