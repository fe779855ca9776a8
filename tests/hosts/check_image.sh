#!/bin/bash
# Looks at the library's image: what it imports, exports and carries.
#   check_image.sh <objdump> <Brindlewort.dll>
set -u
objdump=$1
library=$2
faults=0

# expect <what> <expected> <found>
expect() {
  if [ "$2" != "$3" ]; then
    printf '%s\n  expected: %s\n  found:    %s\n' "$1" "${2//$'\n'/ }" "${3//$'\n'/ }"
    faults=$((faults + 1))
  fi
}

headers=$("$objdump" -p "$library") || { echo "not an image: $library"; exit 1; }

# Nothing has to travel with it: libraries of the system only.
foreign=$(sed -n 's/^\s*DLL Name: //p' <<<"$headers" | sort -u |
  grep -viE '^(kernel32|msvcrt|oleaut32|ole32|user32|advapi32)\.dll$')
expect "imports from libraries that are not the system's" "" "$foreign"
imported=$(grep -c 'DLL Name: ' <<<"$headers")
[ "$imported" -gt 0 ] || expect "libraries that it imports from" "some" "none"

# The four entry points, undecorated, and no other.
exported=$(awk '/\[Ordinal\/Name Pointer\] Table/ {names = 1; next} names && NF == 0 {exit} names {print $NF}' \
  <<<"$headers")
expect "exports" $'DllCanUnloadNow\nDllGetClassObject\nDllRegisterServer\nDllUnregisterServer' "$exported"

# 64-bit, a library, found at any address.
expect "machine" "pei-x86-64" "$("$objdump" -f "$library" | sed -n 's/.*file format //p')"
for mark in DLL 'large address aware'; do
  grep -qE "^\s*$mark$" <<<"$headers" || expect "characteristics" "$mark" "without"
done
grep -q DYNAMIC_BASE <<<"$headers" || expect "characteristics" "DYNAMIC_BASE" "without"

# The count of alerts is in a section that all processes share; nothing else is.
sections=$("$objdump" -h "$library")
shared=$(grep -B1 SHARED <<<"$sections" | awk '$1 ~ /^[0-9]+$/ {print $2}')
expect "shared sections" "Alerts" "$shared"
expect "code and data to write in sections" "" \
  "$(grep -A1 'Alerts' <<<"$sections" | grep -E 'CODE|READONLY')"

# Resources, by their kinds: 6 a string table, 16 the version; the others have names.
resources=$(sed -n '/^The .rsrc Resource Directory section/,$p' <<<"$headers")
for kind in 'Entry: name: .*TYPELIB' 'Entry: name: .*REGISTRY' 'Entry: ID: 0x000006' 'Entry: ID: 0x000010'; do
  grep -qE "$kind" <<<"$resources" || expect "resources" "$kind" "without"
done

[ "$faults" -eq 0 ] && echo "the image is as it must be"
exit "$((faults != 0))"
