#!/bin/sh
# SPDX-License-Identifier: MIT
# Looks for an input that breaks a claim: builds the targets of fuzz/ with clang, libFuzzer and the
# address and undefined-behaviour sanitizers and runs each for so many seconds (60 by default). What
# was found interesting stays in build/fuzz/corpus, so that the next run goes on from there; an input
# that breaks a claim is left in build/fuzz/found.
#
#   scripts/fuzz.sh [SECONDS [TARGET...]]      TARGET is text, binary, market, csrmat or routines
set -eu
. "$(dirname "$0")/lib/shell.sh"
cd "$root"

seconds=${1:-60}
[ $# -eq 0 ] || shift
[ $# -gt 0 ] || set -- text binary market csrmat routines

need_packages clang cmake ninja-build libclang-rt-14-dev libcli11-dev libgtest-dev librapidcheck-dev

build_preset fuzz

# Inputs are written as files thousands of times a second.
memory=/dev/shm
[ -w "$memory" ] || memory=${TMPDIR:-/tmp}
TMPDIR=$(mktemp -d "$memory/fuzz.XXXXXX")
export TMPDIR
trap 'rm -rf "$TMPDIR"' EXIT
trap 'exit 1' HUP INT TERM

export ASAN_OPTIONS=malloc_context_size=2:quarantine_size_mb=16:allocator_may_return_null=1

mkdir -p build/fuzz/found
status=0
for target; do
  say "Fuzzing $target for $seconds seconds"
  log=build/fuzz/$target.log
  corpus=build/fuzz/corpus/$target
  mkdir -p "$corpus"
  # The tool complains of nearly every input: its lines are dropped, the fuzzer's are not.
  "build/fuzz/fuzz/fuzz_$target" -max_total_time="$seconds" -max_len=400 -timeout=20 \
    -close_fd_mask=2 -print_final_stats=1 -artifact_prefix="build/fuzz/found/$target." \
    "$corpus" "fuzz/corpus/$target" tests/data/valid tests/data/invalid tests/data/permissive \
    >"$log" 2>&1 || {
    status=1
    grep -E 'ERROR|SUMMARY|Test unit written' "$log" || tail -n 5 "$log"
    found=$(sed -n 's/.*Test unit written to //p' "$log" | tail -n 1)
    [ -z "$found" ] || "build/fuzz/fuzz/fuzz_$target" -timeout=20 "$found" 2>&1 | grep 'not so' || true
  }
  awk -v target="$target" '
    /cov: [0-9]/ { for (k = 1; k < NF; ++k) if ($k == "cov:" || $k == "ft:") seen[$k] = $(k + 1) }
    /number_of_executed_units/ { runs = $2 }
    /average_exec_per_sec/ { rate = $2 }
    END {
      printf "%s: %d executions, %d a second, %d branches, %d features\n", target, runs, rate,
        seen["cov:"], seen["ft:"]
    }' "$log"
done
exit "$status"
