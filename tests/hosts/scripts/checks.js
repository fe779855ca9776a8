// What the JScript tests of this folder share: checks that tell what was wrong, and the closing line that the test
// runner looks for. A script that ends early, by an error of its own, never gets to that line.

var checksMade = 0, checksFailed = 0;

function fail(what, value, wanted) {
  checksFailed++;
  host.print("FAILED: " + what + " gives " + typeof value + " [" +
             String(value).replace(/\r/g, "\\r").replace(/\n/g, "\\n") + "], not " + typeof wanted + " [" +
             String(wanted).replace(/\r/g, "\\r").replace(/\n/g, "\\n") + "]");
}

// The value has the very type and content.
function check(what, value, wanted) {
  checksMade++;
  if (value !== wanted) fail(what, value, wanted);
}

// The number is the wanted one within half of the fourth decimal.
function checkNumber(what, value, wanted) {
  checksMade++;
  if (typeof value != "number" || !(Math.abs(value - wanted) < 0.00005)) fail(what, value, wanted);
}

function checkBegin(what, value, wanted) { check(what, value.substr(0, wanted.length), wanted); }

// `wantedChecks` is how many checks the script makes: one that is passed over is a failure too.
function finish(wantedChecks) {
  if (checksMade != wantedChecks)
    host.print("FAILED: " + checksMade + " checks were made, not " + wantedChecks);
  else if (checksFailed == 0)
    host.print("ALL OK");
}

// The date of a day of January 2024: the Julian day 2460310 began at noon before the first.
function january(day) { return 2460309.5 + day; }

// Its text in the locale of the test's system.
function januaryText(day) { return "1/" + day + "/2024 12:00:00 AM"; }
