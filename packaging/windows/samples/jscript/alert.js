// A script that watches one symbol. This host asks by itself, without events; ..\cpp\alert.cpp is told by events.
// Run it with: cscript //nologo alert.js

var alert = new ActiveXObject("Brindlewort.Alert");
alert.Symbol = "XYZ";
alert.AlertName = "High close";

for (var day = 1; day <= 12; day++) {
  var price = 100 + day, jdate = alert.ToJulianDate(2024, 1, day, 0, 0, 0, 0);
  alert.AppendRecord(jdate, price, price + 1, price - 1, price, 1000, jdate);
}

if (alert.Evaluate("CLOSE > 111")) {
  WScript.Echo(alert.Symbol + ": " + alert.AlertName + " on " + alert.FromJulianDate(alert.GetJDate(alert.RecordCount)));
}
if (!alert.Evaluate("CLOSE > 112")) WScript.Echo("not above 112");
