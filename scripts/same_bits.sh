#!/bin/sh
# SPDX-License-Identifier: MIT
# Builds the program that runs every routine (tests/same_bits) in many ways and for other machines,
# and requires the recorded digests, and the same files, of all. What runs on another processor is
# emulated; AArch64 and s390x multiply and add in one rounding where they are let, and s390x keeps
# the highest byte of a word first.
#
#   scripts/same_bits.sh
set -eu
. "$(dirname "$0")/lib/shell.sh"
cd "$root"

need_packages g++ clang cmake ninja-build g++-aarch64-linux-gnu g++-s390x-linux-gnu qemu-user

folder=$root/build/same_bits
expected=$root/tests/same_bits/expected.txt
reference=
failed=
mkdir -p "$folder"

# What the readers of this machine and of that one say to a binary file of the other.
refused() {
  line="$1: record 1: expected 4 bytes, found them in the other byte order"
  shift
  said=$("$@" 2>&1) && return 1
  [ "$said" = "$line" ]
}

# build NAME FLAGS [more for cmake]: the program, in a folder of its own.
build() {
  name=$1
  flags=$2
  shift 2
  cmake -S tests/same_bits -B "$folder/$name" -G Ninja -DCMAKE_CXX_FLAGS="$flags" "$@" \
    >"$folder/$name.log" 2>&1 && cmake --build "$folder/$name" >>"$folder/$name.log" 2>&1 || {
    cat "$folder/$name.log"
    fail "$name does not build"
  }
}

# check NAME COMMAND...: the digests, and the files. Binary files are those of the first build, or
# each refuses those of the other.
check() {
  name=$1
  shift
  rm -rf "$folder/$name/files"
  verdict='as recorded'
  "$@" "$folder/$name/files" "$expected" >"$folder/$name.txt" 2>&1 || verdict='NOT AS RECORDED'
  : "${reference:=$folder/$name}"
  if cmp -s "$reference/files/2.csrb" "$folder/$name/files/2.csrb"; then
    diff -rq "$reference/files" "$folder/$name/files" || verdict='FILES DIFFER'
  else
    diff -rq -x '*.csrb' "$reference/files" "$folder/$name/files" || verdict='FILES DIFFER'
    refused "$reference/files/2.csrb" "$@" --load "$reference/files/2.csrb" &&
      refused "$folder/$name/files/2.csrb" "$reference/same_bits" --load \
        "$folder/$name/files/2.csrb" || verdict='OTHER BYTE ORDER NOT REFUSED'
    verdict="$verdict, the other byte order refused"
  fi
  [ "${verdict#as recorded}" != "$verdict" ] || failed="$failed $name"
  printf '%-24s %s  %s\n' "$name" "$(sed -n 's/^ALL *//p' "$folder/$name.txt" | sed 1q)" "$verdict"
}

here() {
  build "$@"
  check "$1" "$folder/$1/same_bits"
}

# there NAME FLAGS MACHINE COMPILER
there() {
  build "$1" "$2" -DCMAKE_SYSTEM_NAME=Linux -DCMAKE_SYSTEM_PROCESSOR="$3" \
    -DCMAKE_CXX_COMPILER="$4" -DCMAKE_EXE_LINKER_FLAGS=-static
  check "$1" "qemu-$3" "$folder/$1/same_bits"
}

say "One program, many builds"
for compiler in g++ clang++; do
  for optimisation in -O0 -O2 -O3; do
    here "$compiler$optimisation" "$optimisation" -DCMAKE_CXX_COMPILER=$compiler
  done
  here "$compiler-sanitized" "-O1 -fsanitize=address,undefined -fno-sanitize-recover=all" \
    -DCMAKE_CXX_COMPILER=$compiler
  if grep -qw avx2 /proc/cpuinfo; then
    here "$compiler-x86-64-v3" "-O3 -march=x86-64-v3 -ffp-contract=fast" \
      -DCMAKE_CXX_COMPILER=$compiler
  else
    say "Left out: x86-64-v3, this processor has no AVX2"
  fi
done
for machine in aarch64 s390x; do
  for optimisation in -O0 -O2 -O3; do
    there "$machine$optimisation" "$optimisation -ffp-contract=fast" $machine \
      $machine-linux-gnu-g++
  done
done

[ -z "$failed" ] || fail "Not the same bits:$failed"
say "The same bits everywhere"
