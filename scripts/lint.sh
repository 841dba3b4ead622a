#!/bin/sh
# SPDX-License-Identifier: MIT
# Looks at the form of the code: layout (.clang-format), what compilers do not say (.clang-tidy), and
# whether headers, contract table, tests and README agree.
#
#   scripts/lint.sh
set -eu
. "$(dirname "$0")/lib/shell.sh"
cd "$root"

need_packages g++ cmake ninja-build libcli11-dev libgtest-dev librapidcheck-dev gfortran \
  gnuplot-nox pkg-config clang clang-format clang-tidy python3

say "Layout"
git ls-files -z -- '*.cpp' '*.hpp' | xargs -0 clang-format --dry-run --Werror

say "Contracts"
python3 tools/lint/contracts.py

say "The first program of the README is the one that is built and run"
mkdir -p build
awk '/^```cpp/ { shown = 1; next } /^```/ { if (shown) exit } shown' README.md >build/readme_program
sed 1d examples/first_program.cpp | diff build/readme_program -

build_preset tidy
