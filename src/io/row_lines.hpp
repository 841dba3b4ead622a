// SPDX-License-Identifier: MIT
// Rows as lines: each row is one transfer, a line an entry, and a row without entries is one empty
// line.
#pragma once

#include "stream.hpp"

#include <csr_matrix_mod/csr_matrix.hpp>

#include <cstddef>
#include <cstdint>

namespace csr_matrix_mod {

// A line of up to `columns` columns; put(to) writes it and returns its end.
template <class Put>
void write_line(byte_sink& out, int columns, const Put& put) {
  char* const first = out.room(static_cast<std::size_t>(columns) + 1);
  char* end = put(first);
  *end++ = '\n';
  out.advance(static_cast<std::size_t>(end - first));
}

// The positions of the entries, in order: run(first, end) for those of rows without an empty row
// between them, whose lines stand one below the other, and empty_row(i) in the place of a row
// without entries.
template <class Run, class Empty>
void for_each_run(const csr_matrix& mat, const Run& run, const Empty& empty_row) {
  if (mat.n <= 0) return;
  const std::int32_t* const starts = mat.ia.data();
  std::int32_t first = starts[0];
  for (std::int64_t i = 1; i <= mat.n; ++i) {
    if (starts[i] > starts[i - 1]) continue;
    if (first < starts[i - 1]) run(first, starts[i - 1]);
    empty_row(i);
    first = starts[i];
  }
  if (first < starts[mat.n]) run(first, starts[mat.n]);
}

// put(to, i, k) writes the line of the entry at position k in row i.
template <class Put>
void write_row_lines(byte_sink& out, const csr_matrix& mat, int columns, const Put& put) {
  const std::int32_t* const starts = mat.ia.data();
  for (std::int64_t i = 1; i <= mat.n; ++i) {
    const std::int32_t first = starts[i - 1];
    const std::int32_t end = starts[i];
    for (std::int32_t k = first; k < end; ++k)
      write_line(out, columns, [&](char* to) { return put(to, static_cast<std::int32_t>(i), k); });
    if (first >= end) out.write("\n");
  }
}

}  // namespace csr_matrix_mod
