' A script whose faults must be told: a check that fails, checks that are left out, and an error.
Option Explicit

Check "one", 1, 2
Finish 2
Err.Raise 5
