#!/bin/sh
# SPDX-License-Identifier: MIT
# Looks at the form of the code: layout (.clang-format), what compilers do not say (.clang-tidy), and
# whether headers, contract table and tests agree.
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

build_preset tidy
