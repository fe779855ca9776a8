// What is wrong with a script, for an editor.
// Run it with: cscript //nologo validate.js

var validate = new ActiveXObject("Brindlewort.Validate");

function show(script) { WScript.Echo(script + ": " + (validate.Validate(script, -1) || "no fault")); }

show("CLOSE > SMA(CLOSE, 14)");
show("CLOSE>SMA(CLOSE, 14)");
show("CLOSE > NOSUCH");

// The manual page of the function in which a script stopped.
show("CLOSE > RSI(CLOSE, 14, 3)");
WScript.Echo(validate.ScriptHelp.split("\n")[0]);
