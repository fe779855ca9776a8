// What trading on the signals of scripts would have brought.
// Run it with: cscript //nologo backtest.js

var backtest = new ActiveXObject("Brindlewort.Backtest");

for (var day = 1; day <= 12; day++) {
  var price = 100 + day;
  backtest.AppendRecord(backtest.ToJulianDate(2024, 1, day, 0, 0, 0, 0), price, price + 1, price - 1, price, 1000);
}

// Scripts for buying, selling short, and the exits from both; slippage in percent; stop loss, trailing stop and profit
// target in percent, and the bars after which a position is closed: 0 switches a rule off.
var report = backtest.Backtest("CLOSE = 107", "", "CLOSE = 110", "", 0, "Stop=5;Trail=0;Target=0;Bars=0;");
WScript.Echo(report ? report : "No report: an event tells why.");
