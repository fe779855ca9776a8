# Reads what llvm-cov exports as lcov, its names made readable, and prints how much of each file was reached and every
# function that was not, with the reason that unreached.txt gives. A function is a place in the source: the instances of a
# template are one. Exit status 1 when one has no reason.
#
#   awk -v root=DIR/ -f coverage.awk unreached.txt coverage.lcov

FNR == NR {
  if ($0 ~ /^[^#]/ && split($0, part, / *\| */) == 3) {
    reasonFile[++reasons] = part[1]
    reasonName[reasons] = part[2]
    reason[reasons] = part[3]
  }
  next
}

/^SF:/ {
  file = substr($0, 4)
  if (index(file, root) == 1) file = substr(file, length(root) + 1)
  files[++fileCount] = file
  next
}
/^FN:/ {
  comma = index($0, ",")
  name = substr($0, comma + 1)
  place = file ":" substr($0, 4, comma - 4)
  placeOf[file, name] = place
  if (!(place in nameOf)) {
    nameOf[place] = name
    fileOf[place] = file
    places[++placeCount] = place
    functionsIn[file]++
  }
  next
}
/^FNDA:/ {
  comma = index($0, ",")
  place = placeOf[file, substr($0, comma + 1)]
  if (substr($0, 6, comma - 6) > 0 && !(place in reached)) {
    reached[place] = 1
    reachedIn[file]++
  }
  next
}
/^LF:/ { linesIn[file] = substr($0, 4); next }
/^LH:/ { linesReached[file] = substr($0, 4); next }

function reasonFor(place,   i) {
  for (i = 1; i <= reasons; ++i) {
    if (index(fileOf[place], reasonFile[i]) == 1 && index(nameOf[place], reasonName[i]) > 0) {
      used[i] = 1
      return reason[i]
    }
  }
  return ""
}

END {
  printf "%-50s %13s %15s\n", "file", "functions", "lines"
  for (i = 1; i <= fileCount; ++i) {
    f = files[i]
    printf "%-50s %6d /%5d %7d /%6d\n", f, reachedIn[f], functionsIn[f], linesReached[f], linesIn[f]
    functionsReached += reachedIn[f]; functions += functionsIn[f]
    allReached += linesReached[f]; allLines += linesIn[f]
  }
  printf "%-50s %6d /%5d %7d /%6d\n\n", "all", functionsReached, functions, allReached, allLines
  for (i = 1; i <= placeCount; ++i) {
    if (places[i] in reached) continue
    why = reasonFor(places[i])
    if (why != "") {
      printf "not reached: %s %s\n  because: %s\n", places[i], nameOf[places[i]], why
    } else {
      printf "FAULT, not reached and no reason in fuzz/unreached.txt: %s %s\n", places[i], nameOf[places[i]]
      ++faults
    }
  }
  for (i = 1; i <= reasons; ++i) {
    if (!(i in used)) printf "no longer needed in fuzz/unreached.txt: %s | %s\n", reasonFile[i], reasonName[i]
  }
  exit faults > 0
}
