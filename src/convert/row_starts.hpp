// SPDX-License-Identifier: MIT
// Row starts: whether rows follow each other, and the second step of a counting sort, from the
// number of entries of each row to the row starts.
#pragma once

#include "../support/scratch.hpp"

#include <csr_matrix_mod/csr_matrix.hpp>

#include <cstdint>

namespace csr_matrix_mod {

// Does each row start where the one before it ends, or behind? Then its entries are those from the
// first row start to the last, whatever the rows. Rows that share storage do not follow.
[[nodiscard]] inline bool rows_follow(const csr_matrix& mat) {
  const std::int32_t* const starts = mat.ia.data();
  std::int32_t falls = 0;
  for (std::int64_t i = 1; i <= mat.n; ++i) falls |= starts[i] < starts[i - 1] ? 1 : 0;
  return falls == 0;
}

// `count` holds the entries of each row of `mat` and becomes the position of the row's first entry,
// ready to be the cursor of a fill. A record of fewer than 0 rows has no row start to write.
inline void row_starts_from_counts(csr_matrix& mat, scratch<std::int32_t>& count) {
  if (mat.n < 0) return;
  std::int32_t* const starts = mat.ia.data();
  std::int32_t* const cursor = count.data();
  starts[0] = 1;
  for (std::int64_t i = 1; i <= mat.n; ++i) {
    starts[i] = starts[i - 1] + cursor[i - 1];
    cursor[i - 1] = starts[i - 1];
  }
}

}  // namespace csr_matrix_mod
