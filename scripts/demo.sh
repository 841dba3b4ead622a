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

# Shows a command line of csrmat and runs it.
csrmat() {
  say "csrmat $*"
  build/demo/apps/csrmat/csrmat "$@"
}

if [ -z "$matrix" ]; then
  matrix=build/demo/fem.mtx
  csrmat gallery fem "$matrix"
fi
csrmat info "$matrix"
csrmat coarsen "$matrix"
