#!/bin/sh
# SPDX-License-Identifier: MIT
# Plants small bugs in a copy of src/, one at a time, and sees whether a test notices. Fails if less
# than 98 of 100 are noticed. tools/mutate/mutate.py says how; another seed draws other bugs.
#
#   scripts/mutate.sh [COUNT [SEED]]
set -eu
. "$(dirname "$0")/lib/shell.sh"
cd "$root"

need_packages g++ cmake ninja-build libcli11-dev libgtest-dev librapidcheck-dev gfortran \
  gnuplot-nox pkg-config python3 git
exec nice -n 10 python3 tools/mutate/mutate.py --count "${1:-200}" --seed "${2:-1}"
