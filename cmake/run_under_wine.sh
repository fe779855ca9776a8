#!/usr/bin/env bash
# Runs a Windows program under Wine, with its output and exit code:
#
#   run_under_wine.sh PREFIX PROGRAM ARGUMENT...
#   run_under_wine.sh PREFIX --make              makes the prefix
#   run_under_wine.sh PREFIX --stop              ends whatever of Wine runs in the prefix
#
# PREFIX is the folder of Wine's registry and drives; it is made when it is not there. Of programs that need it at
# the same moment one makes it and the others wait. A program has SECONDS_UNDER_WINE seconds (300); one that takes
# longer is ended, and the exit code is 124.
set -euo pipefail

[ $# -ge 2 ] || {
  echo "usage: run_under_wine.sh PREFIX PROGRAM ARGUMENT... | PREFIX --make | PREFIX --stop" >&2
  exit 2
}
mkdir -p "$1"
prefix=$(realpath "$1")
shift

find_command() {  # find_command NAME...: Debian keeps Wine's programs out of PATH
  local name
  for name in "$@"; do
    PATH="$PATH:/usr/lib/wine" command -v "$name" && return 0
  done
  echo "run_under_wine: there is no $1; Debian's package is wine64" >&2
  return 127
}

unset DISPLAY WAYLAND_DISPLAY LANGUAGE
# Wine's C library takes the days of summer time from the system's zone, whatever zone a program chooses.
export TZ=EST5EDT,M3.2.0,M11.1.0
export WINEPREFIX=$prefix/root WINEARCH=win64 WINEDEBUG=-all LC_ALL=C.UTF-8
# No .NET, no browser engine, and nothing written into the desktop's menus.
export WINEDLLOVERRIDES='mscoree,mshtml=;winemenubuilder.exe=d'

# Wine's services inherit the open files of the program that starts them. Whoever reads this script's output to its
# end would wait for them, so programs write to files, which are printed afterwards.
quietly() {
  local seconds=$1
  shift
  timeout --kill-after=5 "$seconds" "$@" </dev/null >"$output/stdout" 2>"$output/stderr"
}

make_prefix() {
  [ -e "$prefix/made" ] && return 0
  (
    flock 9
    [ -e "$prefix/made" ] && exit 0
    quietly 120 "$wine" wineboot --init 9>&- || {
      cat "$output/stdout" "$output/stderr" >&2
      echo "run_under_wine: Wine cannot make $WINEPREFIX" >&2
      exit 1
    }
    touch "$prefix/made"
  ) 9>"$prefix/lock"
}

if [ "$1" = --stop ]; then
  server=$(find_command wineserver wineserver64)
  # It fails when none is running.
  "$server" --kill >/dev/null 2>&1 || true
  exit 0
fi

wine=$(find_command wine64 wine)
output=$(mktemp -d "$prefix/output.XXXXXX")
trap 'rm -rf "$output"' EXIT
make_prefix
[ "$1" != --make ] || exit 0

code=0
quietly "${SECONDS_UNDER_WINE:-300}" "$wine" "$@" || code=$?
cat "$output/stdout"
cat "$output/stderr" >&2
exit "$code"
