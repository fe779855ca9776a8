// The component ScriptOutput, late bound: bars that close at 1, 2, 3 and so on, from the first of January 2024.

var heard = "";
function output_ScriptError(description) { heard += description + ";"; }

var script = "SET A = SMA(CLOSE, 2)\r\nA > 7";
var output = host.create("Brindlewort.ScriptOutput", "output_");
var i, wanted;

checkNumber("the start of 1980", output.ToJulianDate(1980, 1, 1, 0, 0, 0, 0), 2444239.5);
check("a text of a time", output.FromJulianDate(output.ToJulianDate(2024, 1, 1, 13, 5, 9, 0)), "1/1/2024 1:05:09 PM");
check("no date", output.FromJulianDate(0), "No Date Time");
check("help before a run", output.ScriptHelp, "");

// An average of two rows begins on row 3 of the series, whose row 0 is a filler: at the third bar.
wanted = "Date,\"A\"\r\n";
for (i = 1; i <= 10; i++) {
  output.AppendRecord(january(i), i, i + 1, i - 1, i, 100 * i);
  wanted += januaryText(i) + (i < 3 ? ",-987654321\r\n" : "," + (i - 1) + ".5000\r\n");
}
check("the count beside plain bars", output.RecordCount, 0);
check("all rows", output.GetScriptOutput(script, 0, "A"), wanted);
check("the bars on which the script fires", output.GetScriptOutput(script, -1, ""), "8,9,10,");
check("an edit", output.EditRecord(january(10), 21, 22, 20, 21, 5), true);
check("an edit of no bar", output.EditRecord(january(11), 1, 1, 1, 1, 1), false);
check("the changed row", output.GetScriptOutput(script, 10, "A"),
      "Date,\"A\"\r\n" + januaryText(10) + ",15.0000\r\n");

// A script at fault: no text, and the event.
check("a script with an unknown name", String(output.GetScriptOutput("CLOSE > NOSUCH", 0, "")), "");
check("its error", heard, "Error: Undefined variable 'NOSUCH';");
output.GetScriptOutput("CLOSE > RSI(CLOSE, 2, 3)", 0, "");
checkBegin("the page of the function at fault", output.ScriptHelp, "RelativeStrengthIndex(Vector, Periods)");

// The incremental way.
heard = "";
output.ClearRecords();
output.InitialiseTransientStore(50);
check("a preparation", output.ProcessScripData(script) ? "yes" : "no", "yes");
wanted = "Date,\"A\"\r\n";
for (i = 1; i <= 10; i++) {
  output.AppendRecord_New(january(i), i, i + 1, i - 1, i, 100 * i);
  wanted += januaryText(i) + (i < 2 ? ",-987654321\r\n" : "," + (i - 1) + ".5000\r\n");
}
check("all rows of the incremental way", output.GetScriptOutput_New(script, 0, "A"), wanted);
check("the count", output.RecordCount, 10);
checkNumber("a date by number", output.GetJDate(1), january(2));
check("the last bar before a date", output.GetRecordNumberByJDate(january(3)), 1);

// The language has no places to write to: a query only tells whether there is such a bar.
var closePrice = 5;
check("a query", output.GetRecordByIndex(3, 0, 0, 0, 0, closePrice, 0), true);
check("a query of no bar", output.GetRecordByIndex(11, 0, 0, 0, 0, closePrice, 0), false);
check("a query by date", output.GetRecordByJDate(january(4), 0, 0, 0, closePrice, 0), true);
check("what it was given", closePrice, 5);

check("a list", typeof output.GetScriptOutput_PTR(script, 0, "A"), "number");
check("an edit", output.EditRecord_New(january(10), 20, 21, 19, 20, 5), true);
check("a changed date", output.EditJDate_New(january(10), january(20)), true);
check("the changed row", output.GetScriptOutput_New(script, 10, "A"),
      "Date,\"A\"\r\n" + januaryText(20) + ",14.5000\r\n");
check("errors of the incremental way", heard, "");

finish(27);
