#!/bin/sh
# SPDX-License-Identifier: MIT
# Looks at the form of the code: layout (.clang-format), what compilers do not say (.clang-tidy,
# tools/lint/cppcheck.txt), whether headers, contract table and tests agree, and whether the README
# shows the program that is run.
#
#   scripts/lint.sh             everything; clang-tidy takes its time over the tests
#   scripts/lint.sh --library   of clang-tidy, what concerns the library alone, as continuous
#                               integration does
set -eu
. "$(dirname "$0")/lib/shell.sh"
cd "$root"

only_library=
[ "${1:-}" != --library ] || only_library=yes

need_packages cmake ninja-build clang clang-format clang-tidy cppcheck python3
[ "$only_library" ] || need_packages g++ libcli11-dev libgtest-dev librapidcheck-dev gfortran \
  gnuplot-nox pkg-config

say "Layout"
find apps bench examples fuzz include src tests -name '*.[ch]pp' -print0 |
  xargs -0 clang-format --dry-run --Werror

say "Contracts"
python3 tools/lint/contracts.py

say "The first program of the README is the one that is built and run"
mkdir -p build
awk '/^```cpp/ { shown = 1; next } /^```/ { if (shown) exit } shown' README.md >build/readme_program
sed 1d examples/first_program.cpp | diff build/readme_program -

# What Linux has is defined, so that one configuration is looked at and not all that could be.
say "cppcheck"
cppcheck --quiet --error-exitcode=1 --std=c++20 --language=c++ --platform=unix64 --inconclusive \
  --enable=warning,style,performance,portability --suppressions-list=tools/lint/cppcheck.txt \
  -D__linux__ -D__GNUC__=12 -DMADV_HUGEPAGE=14 -DMFD_CLOEXEC=1 -I include -I apps/csrmat \
  src include apps

if [ "$only_library" ]; then
  say "clang-tidy, the library"
  cmake --preset tidy -B build/tidy-library -D CSR_MATRIX_MOD_BUILD_APPS=OFF \
    -D CSR_MATRIX_MOD_BUILD_EXAMPLES=OFF -D CSR_MATRIX_MOD_BUILD_TESTS=OFF
  cmake --build build/tidy-library
else
  build_preset tidy
fi
