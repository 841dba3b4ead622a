#!/bin/sh
# SPDX-License-Identifier: MIT
# Counts the instructions of each routine on a small fixed case under callgrind and compares them
# with bench/instructions.txt: no clock, so no machine is too busy for it. Fails if a routine needs
# over 3 % more than recorded, or cannot be counted; what another compiler makes is shown only. With
# --record the counts of today become the record.
#
#   scripts/instructions.sh [--record]
set -eu
. "$(dirname "$0")/lib/shell.sh"
cd "$root"

need_packages g++ cmake ninja-build libbenchmark-dev valgrind
say "Building bench"
cmake --preset bench >/dev/null
cmake --build --preset bench --target instructions

program=build/bench/bench/instructions
cases=$("$program")
record=bench/instructions.txt
counts=build/bench/instructions.txt
compiler=$(sed -n 's/^CMAKE_CXX_COMPILER:[A-Z]*=//p' build/bench/CMakeCache.txt)
{
  printf '# Instructions of one call, release, %s %s, %s\n' "$(basename "$compiler")" \
    "$("$compiler" -dumpfullversion)" "$(uname -m)"
  printf '%s\n' "$cases" | while read -r routine on; do
    instructions=$(valgrind --tool=callgrind --callgrind-out-file=/dev/null \
      --toggle-collect="csr_matrix_mod::$routine(*" "$program" "$routine $on" 2>&1 |
      sed -n 's/.*Collected : //p')
    printf '%-40s %12s\n' "$routine $on" "$instructions"
  done
} >"$counts"

if [ "${1:-}" = --record ]; then
  ! grep -v '^#' "$counts" | grep -qv ' [1-9][0-9]*$' || fail "Not all are counted: $counts"
  cp "$counts" "$record"
  cat "$record"
  exit
fi
same_compiler=1
[ "$(sed 1q "$counts")" = "$(sed 1q "$record")" ] || {
  same_compiler=0
  say "Recorded for another compiler: $(sed 1q "$record")"
}
awk -v same_compiler="$same_compiler" '/^#/ { next }
  NR == FNR { recorded[$1 " " $2] = $3; next }
  {
    name = $1 " " $2
    counted[name] = 1
    if ($3 !~ /^[1-9][0-9]*$/) verdict = "NOT COUNTED"
    else if (!(name in recorded)) verdict = "new"
    else if ($3 > 1.03 * recorded[name]) verdict = same_compiler ? "MORE" : "more"
    else if ($3 < 0.97 * recorded[name]) verdict = "fewer: record it"
    else verdict = "as recorded"
    if (verdict ~ /^(MORE|NOT)/) failed = 1
    printf "%-40s %12d %12d  %s\n", name, $3, recorded[name] + 0, verdict
  }
  END {
    for (name in recorded)
      if (!(name in counted)) {
        failed = 1
        printf "%-40s %12s %12d  NOT COUNTED\n", name, "", recorded[name]
      }
    exit failed
  }' "$record" "$counts"
