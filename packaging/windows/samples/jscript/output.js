// The series that a script computes, over bars that the host has.
// Run it with: cscript //nologo output.js

var output = new ActiveXObject("Brindlewort.ScriptOutput");

for (var day = 1; day <= 12; day++) {
  var price = 100 + day;
  output.AppendRecord(output.ToJulianDate(2024, 1, day, 0, 0, 0, 0), price, price + 1, price - 1, price, 1000);
}

// A line break in a script is carriage return and line feed; 0 asks for all bars, AVERAGE for one column.
WScript.Echo(output.GetScriptOutput("SET AVERAGE = SMA(CLOSE, 3)\r\nCLOSE > AVERAGE", 0, "AVERAGE"));

// The incremental way: set up once, prepare a script once, and each new bar costs one new row.
var script = "SET AVERAGE = SMA(CLOSE, 3)\r\nCLOSE > AVERAGE";
output.ClearRecords();
output.InitialiseTransientStore(250);
if (!output.ProcessScripData(script)) WScript.Quit(1);
for (day = 1; day <= 12; day++) {
  price = 100 + day;
  output.AppendRecord_New(output.ToJulianDate(2024, 1, day, 0, 0, 0, 0), price, price + 1, price - 1, price, 1000);
}
output.EditRecord_New(output.ToJulianDate(2024, 1, 12, 0, 0, 0, 0), 112, 116, 111, 115, 1500);
WScript.Echo(output.GetScriptOutput_New(script, 12, "AVERAGE"));
