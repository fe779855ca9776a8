// The component Alert, late bound, and its events: bars that close at 1, 2, 3 and so on; each was last traded at noon.

var heard = "";
function takeHeard() {
  var taken = heard;
  heard = "";
  return taken;
}

// A sink that reads its arguments by position gets the price, the date, the symbol and the name.
function first_Alert() {
  heard += "first " + arguments.length + ":";
  for (var i = 0; i < arguments.length; i++) {
    heard += " " + (typeof arguments[i]) + " " + (i == 1 ? arguments[i] - january(0) : arguments[i]);
  }
  heard += ";";
}
function first_ScriptError(symbol, alertName, description) {
  heard += "first " + symbol + " " + alertName + " " + description + ";";
}

// A sink that names two arguments gets the first two of the four: the library does not adapt.
function short_Alert(symbol, alertName) { heard += "short " + symbol + " " + (alertName - january(0)) + ";"; }

function failing_Alert() {
  heard += "failing;";
  throw new Error("on purpose");
}

function append(number, price) {
  alert.AppendRecord(january(number), price, price + 1, price - 1, price, 100 * number, january(number) + 0.5);
}

var alert = host.create("Brindlewort.Alert");
var first = host.connect(alert, "first_");
alert.Symbol = "XYZ";
alert.AlertName = "High close";
alert.AlertScript = "CLOSE > 11";
check("the symbol", alert.Symbol, "XYZ");
check("the script", alert.AlertScript, "CLOSE > 11");

var i;
for (i = 1; i <= 11; i++) append(i, i);
check("events of a script that does not fire", takeHeard(), "");
append(12, 12);
check("the event of the bar that fires", takeHeard(), "first 4: number 12 number 12.5 string XYZ string High close;");

// Several sinks, in the order of their connection; one that fails keeps nothing from the others.
var failures = host.sinkFailures();
var failing = host.connect(alert, "failing_");
var shorter = host.connect(alert, "short_");
append(13, 13);
check("three sinks", takeHeard(),
      "first 4: number 13 number 13.5 string XYZ string High close;failing;short 13 13.5;");
check("the failed calls", host.sinkFailures() - failures, 1);
host.disconnect(alert, first);
host.disconnect(alert, failing);
append(14, 14);
check("one sink", takeHeard(), "short 14 14.5;");
host.disconnect(alert, shorter);
append(15, 15);
check("no sink", takeHeard(), "");
var refused = false;
try {
  host.disconnect(alert, shorter);
} catch (e) {
  refused = true;
}
check("a connection that is no more", refused, true);

// A script at fault.
host.connect(alert, "first_");
alert.AlertScript = "CLOSE > NOSUCH";
check("the error of a script", takeHeard(), "first XYZ High close Error: Undefined variable 'NOSUCH';");
alert.AlertScript = "CLOSE > RSI(CLOSE, 2, 3)";
checkBegin("the page of the function at fault", alert.ScriptHelp, "RelativeStrengthIndex(Vector, Periods)");
takeHeard();

check("a script that fires", alert.Evaluate("CLOSE > 14") ? "yes" : "no", "yes");
checkBegin("its event", takeHeard(), "first 4: number");
check("a script that does not fire", alert.Evaluate("CLOSE > 15") ? "yes" : "no", "no");
check("its events", takeHeard(), "");
check("the count", alert.RecordCount, 15);
check("a query", alert.GetRecordByIndex(15, 0, 0, 0, 0, 0, 0), true);
checkNumber("the date of the first bar", alert.GetJDate(1), january(1));
check("an edit of no bar", alert.EditRecord(january(16), 1, 1, 1, 1, 1, 1), false);

// The incremental way: seven bars are the fewest here.
alert = host.create("Brindlewort.Alert", "first_");
alert.Symbol = "XYZ";
alert.AlertName = "Fast";
alert.InitialiseTransientStore(50);
check("a preparation", alert.ProcessScripData("CLOSE > 3") ? "yes" : "no", "yes");
alert.AlertScript = "CLOSE > 3";
for (i = 1; i <= 7; i++) alert.AppendRecord_Opt(january(i), i, i, i, i, 1, january(i) + 0.5);
check("the event of the seventh bar", takeHeard(), "first 4: number 7 number 7.5 string XYZ string Fast;");
check("an edit", alert.EditRecord_Opt(january(7), 3, 3, 3, 3, 1, january(7)), true);
check("events of a bar that fell", takeHeard(), "");

finish(23);
