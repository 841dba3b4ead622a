#!/bin/sh
# SPDX-License-Identifier: MIT
# Builds csrmat and coarsens a real matrix with it: MATRIX, a file that csrmat reads, or else a
# finite element matrix that it makes itself.
#
#   scripts/demo.sh [MATRIX]
set -eu
matrix=${1:-}
case $matrix in
  '' | /*) ;;
  *) matrix=$PWD/$matrix ;;
esac
. "$(dirname "$0")/lib/shell.sh"
cd "$root"

[ -z "$matrix" ] || [ -r "$matrix" ] || fail "$matrix: cannot be read"

need_packages g++ cmake ninja-build libcli11-dev
build_preset demo

csrmat=build/demo/apps/csrmat/csrmat
if [ -z "$matrix" ]; then
  matrix=build/demo/fem.mtx
  say "csrmat gallery fem --out $matrix"
  "$csrmat" gallery fem --out "$matrix"
fi
say "csrmat info $matrix"
"$csrmat" info "$matrix"
say "csrmat coarsen $matrix"
"$csrmat" coarsen "$matrix"
