#!/bin/sh
# SPDX-License-Identifier: MIT
# Builds everything in release and under the address and undefined-behaviour sanitizers, warnings
# being errors in both, and runs both suites as one, with the tests of threads under the thread
# sanitizer. Ends with the summary of ctest.
#
#   scripts/test.sh
set -eu
. "$(dirname "$0")/lib/shell.sh"
cd "$root"

need_packages g++ cmake ninja-build libcli11-dev libgtest-dev librapidcheck-dev gfortran \
  gnuplot-nox pkg-config python3

build_preset asan-ubsan -D CSR_MATRIX_MOD_WARNINGS_AS_ERRORS=ON
build_preset release -D CSR_MATRIX_MOD_WARNINGS_AS_ERRORS=ON
build_preset tsan -D CSR_MATRIX_MOD_WARNINGS_AS_ERRORS=ON

# One run of ctest over all builds, so that one summary speaks for all. How others build the
# library is no question for a sanitizer.
say "Testing asan-ubsan, release and tsan"
mkdir -p build/all
printf 'subdirs(../asan-ubsan ../release ../tsan/tests/threads)\n' >build/all/CTestTestfile.cmake
exec ctest --test-dir build/all --parallel "$(nproc)" --output-on-failure --no-tests=error \
  --exclude-regex '^sanitized\.consumer\.'
