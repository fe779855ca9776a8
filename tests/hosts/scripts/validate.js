// The component Validate, late bound.

var validate = new ActiveXObject("Brindlewort.Validate");

check("no symbol before a run", validate.Constant("SYMBOL"), "");
check("no page before a run", validate.ScriptHelp, "");
check("a script without fault", validate.Validate("CLOSE > OPEN", -1), "");
// Five prices, and the expression.
check("its series", validate.Validate("CLOSE > OPEN", 1), "NO Error:6");
check("a short script", validate.Validate("ABCD", -1), "Error: Script too short.");
check("a missing blank", validate.Validate("CLOSE>SMA(CLOSE, 14)", -1), "Error: No space before '>'");
check("a missing bracket",
      validate.Validate("SMA(CLOSE, 5", -1), "Error: Script not nested with proper \" ) \" bracket");
check("an unknown word", validate.Validate("CLOSE > NOSUCH", -1), "Error: 'NOSUCH' is not a valid script");
check("where a script belongs", validate.Validate("SET EXCHANGE = 7\r\nCLOSE > 1", -1), "");
check("its exchange", validate.Constant("exchange"), "7");
check("its symbol", validate.Constant("SYMBOL"), "");
checkBegin("a fault in a call", validate.Validate("CLOSE > RSI(CLOSE, 2, 3)", -1), "Error: ");
checkBegin("the page of the function at fault", validate.ScriptHelp, "RelativeStrengthIndex(Vector, Periods)");

finish(13);
