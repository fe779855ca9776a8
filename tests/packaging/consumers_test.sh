#!/usr/bin/env bash
# Whether hosts can use the library as it is installed, under any prefix, and as a folder of their own project.
#
#   consumers_test.sh SOURCES BUILD
#
# The hosts are those of examples/, compiled with each of the compilers below that is here.
set -euo pipefail
readonly sources=$1 build=$2
readonly here="$sources/tests/packaging"
work=$(mktemp -d)
readonly work
trap 'rm -rf "$work"' EXIT

fail() {
  printf 'consumers_test: %s\n' "$*" >&2
  exit 1
}

# quietly COMMAND...: its output is shown only when it fails.
quietly() {
  "$@" >"$work/log" 2>&1 || {
    cat "$work/log" >&2
    fail "failed: $*"
  }
}

# check_hosts FOLDER PREFIX: the hosts run, and print what the examples print.
check_hosts() {
  local folder=$1 host out
  for host in embed_c embed_cpp watch_c; do
    [ -x "$folder/$host" ] || continue
    out=$(LD_LIBRARY_PATH="$2/lib" "$folder/$host") || fail "$folder/$host ends with $?"
    case "$host:$out" in
      embed_*:*'2024-01-12 00:00:00,110.5000'* | watch_c:'XYZ turn 2460322.5 13.00') ;;
      *) fail "$folder/$host prints: $out" ;;
    esac
  done
}

# by_pkg_config PREFIX CC CXX
by_pkg_config() {
  local prefix=$1 cc=$2 cxx=$3 folder="$work/pkg-config" flags file
  mkdir -p "$folder"
  export PKG_CONFIG_PATH="$prefix/lib/pkgconfig"
  [ "$(realpath "$(pkg-config --variable=includedir brindlewort)")" = "$prefix/include" ] ||
    fail "pkg-config names the headers of another prefix: $(pkg-config --cflags brindlewort)"
  [ "$(realpath "$(pkg-config --variable=prefix brindlewort)")" = "$prefix" ] || fail "pkg-config names another prefix"
  read -ra flags <<<"$(pkg-config --cflags --libs brindlewort)"
  for file in embed watch; do
    quietly "$cc" "$sources/examples/$file.c" "${flags[@]}" -o "$folder/${file}_c"
  done
  quietly "$cxx" -std=c++17 "$sources/examples/embed.cpp" "${flags[@]}" -o "$folder/embed_cpp"
  check_hosts "$folder" "$prefix"
  rm -r "$folder"
}

# by_find_package PREFIX CC CXX LANGUAGES: a project in these languages.
by_find_package() {
  local prefix=$1 folder="$work/package"
  quietly env CC="$2" CXX="$3" cmake -G Ninja -S "$here/consumer" -B "$folder" -DWAY=package "-DHOSTS=$4" \
    -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_FIND_USE_PACKAGE_REGISTRY=OFF
  quietly cmake --build "$folder"
  check_hosts "$folder" "$prefix"
  rm -r "$folder"
}

# as_a_folder CC CXX: configured only, since building would compile the library again. What would be built is the
# library and the hosts, nothing that they do not need is looked for, and nothing of the library is installed with them.
as_a_folder() {
  local folder="$work/folder" targets
  quietly env CC="$1" CXX="$2" cmake -G Ninja -S "$here/consumer" -B "$folder" -DWAY=folder -DHOSTS='C;CXX' \
    -DBRINDLEWORT="$sources" -DCMAKE_DISABLE_FIND_PACKAGE_GTest=ON -DCMAKE_DISABLE_FIND_PACKAGE_CLI11=ON \
    -DCMAKE_DISABLE_FIND_PACKAGE_nlohmann_json=ON
  targets=$(ninja -C "$folder" -t targets all)
  grep -q '^embed_cpp: ' <<<"$targets" || fail "the folder's targets lack the host"
  grep -q 'libbrindlewort\.so' <<<"$targets" || fail "the folder's targets lack the library"
  if grep -E '_test(:|\.)|tools/|Nightly|Experimental|lib(gtest|csv)' <<<"$targets"; then
    fail "as a folder the project brings the targets above along"
  fi
  [ -z "$(DESTDIR="$work/installed" cmake --install "$folder" | grep -i brindlewort)" ] ||
    fail "as a folder the project installs itself"
  rm -r "$folder"
}

# The library gives out what the header declares, and nothing else.
check_exports() {
  nm -D --defined-only "$1/lib/libbrindlewort.so" | sed -n 's/.* [A-Z] //p' | sort >"$work/exported"
  sed 's|/\*.*\*/||' "$1/include/brindlewort/brindlewort.h" | grep -A1 '^BW_API' | grep -oE '\bbw_[a-z0-9_]+\(' |
    tr -d '(' | sort >"$work/declared"
  diff "$work/declared" "$work/exported" || fail "the header (<) and the library (>) differ in their functions"
}

for prefix in "$work/one" "$work/the other"; do
  quietly cmake --install "$build" --prefix "$prefix"
done
[ -f "$work/one/share/doc/Brindlewort/LICENSE" ] || fail "the licence is not installed"
if grep -rlF "$work" "$work/one" "$work/the other"; then fail "the files above hold the prefix"; fi
check_exports "$work/one"

pairs=()
for pair in gcc:g++ clang:clang++; do
  if command -v "${pair%:*}" >/dev/null && command -v "${pair#*:}" >/dev/null; then pairs+=("$pair"); fi
done
[ "${#pairs[@]}" -gt 0 ] || fail "there is neither gcc nor clang"
for pair in "${pairs[@]}"; do
  cc=${pair%:*} cxx=${pair#*:}
  by_pkg_config "$work/one" "$cc" "$cxx"
  by_find_package "$work/one" "$cc" "$cxx" C
  by_find_package "$work/the other" "$cc" "$cxx" 'C;CXX'
  as_a_folder "$cc" "$cxx"
  echo "hosts in C and C++ by $cxx: pkg-config, find_package, add_subdirectory"
done
mv "$work/one" "$work/third"
by_pkg_config "$work/third" "$cc" "$cxx"
