#!/bin/sh
# SPDX-License-Identifier: MIT
# Runs the suite on a library that counts its lines and branches, and fails unless it has been
# through every line (99 of 100 on a machine without AVX-512) and 95 of 100 branches (gcovr.cfg).
# Each line or branch that is missing is listed; build/coverage/report/index.html shows them in the
# code.
#
#   scripts/coverage.sh
set -eu
. "$(dirname "$0")/lib/shell.sh"
cd "$root"

need_packages g++ cmake ninja-build libgtest-dev librapidcheck-dev gfortran gnuplot-nox python3 \
  gcovr

# What was counted before was another program.
mkdir -p build/coverage
find build/coverage -name '*.gcda' -delete
build_preset coverage

say "Testing"
log=build/coverage/tests.log
ctest --preset coverage --parallel "$(nproc)" >"$log" 2>&1 || {
  tail -n 30 "$log"
  fail "The suite fails, see $log; its coverage says nothing"
}

say "Counting"
counts=build/coverage/counts.json
mkdir -p build/coverage/report
gcovr --json "$counts" --html-details build/coverage/report/index.html
gcovr --add-tracefile "$counts" --txt
# What is written for wider vector registers than this machine has cannot be run here.
lines=100
grep -qw avx512f /proc/cpuinfo || lines=99
gcovr --add-tracefile "$counts" --txt --branches --print-summary --fail-under-line "$lines" \
  --fail-under-branch 95
