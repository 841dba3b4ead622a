#!/bin/sh
# SPDX-License-Identifier: MIT
# Is this program built so that a mistake in it ends it? One line for each thing that is missing.
#
#   tools/lint/hardened.sh PROGRAM
set -eu
program=$1
missing=0

# What is asked for, where readelf shows it, and how.
require() {
  if ! readelf --wide "$2" "$program" | grep -Eq "$3"; then
    printf '%s: no %s\n' "$program" "$1"
    missing=1
  fi
}

require "address that differs from run to run (PIE)" --file-header 'Type: +DYN'
require "read-only relocations" --program-headers 'GNU_RELRO'
require "binding of all symbols at the start" --dynamic 'BIND_NOW|FLAGS.*NOW'
require "stack without code" --program-headers 'GNU_STACK .* RW '
require "guarded stack" --symbols '__stack_chk_fail'
require "checked containers (_GLIBCXX_ASSERTIONS)" --symbols '__glibcxx_assert_fail'
require "checked calls of the C library (_FORTIFY_SOURCE)" --symbols '__[a-z]+_chk(@|$)'
exit "$missing"
