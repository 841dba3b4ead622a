#!/bin/sh
# SPDX-License-Identifier: MIT
# Measures the library against every peer that Debian packages, one thread each, and ends with the
# table of ratios. What --quick shows in minutes is no measurement; the whole takes hours. The
# results are left in build/bench-results: CSV, tables, plots.
#
#   scripts/bench.sh [--quick] [option of bench...]      (bench --help tells them)
#   scripts/bench.sh --check [option of bench...]        times nothing and installs no peer: is every
#                                                        result the plain one, on small matrices?
set -eu
. "$(dirname "$0")/lib/shell.sh"
cd "$root"

if [ "${1:-}" = --check ]; then
  need_packages g++ cmake ninja-build libbenchmark-dev
  build_preset bench
  shift
  exec build/bench/bench/bench --check --scale=0.001 "$@"
fi

need_packages g++ cmake ninja-build libbenchmark-dev gnuplot-nox
# A peer that cannot be had is left out.
peers='pkg-config gfortran libeigen3-dev libsuitesparse-dev libgraphblas-dev libsparskit-dev
  libarmadillo-dev librsb-dev libhypre-dev libpetsc-real-dev python3-scipy'
(need_packages $peers) || for package in $peers; do
  (need_packages "$package") || say "Going on without $package"
done

build_preset bench

# One thread for everybody.
export OMP_NUM_THREADS=1 OPENBLAS_NUM_THREADS=1 MKL_NUM_THREADS=1

results=build/bench-results
mkdir -p "$results"
say "Measuring"
build/bench/bench/bench --curve --output="$results" "$@"

say "Plotting into $results"
for memory in fresh recycled; do
  [ ! -s "$results/ratios-$memory.dat" ] ||
    gnuplot -e "results='$results'; memory='$memory'" bench/plots/ratios.gp
done
for cost in "$results"/cost-*.dat; do
  [ ! -s "$cost" ] || gnuplot -e "data='$cost'" bench/plots/cost.gp
done
ls "$results"
