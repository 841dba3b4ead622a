// SPDX-License-Identifier: MIT
// Patterns that are symmetric: the transpose has the row starts and the columns of the matrix
// itself.
#pragma once

#include "../csr_matrix/row_starts.hpp"

#include <csr_matrix_mod/csr_matrix.hpp>

#include <cstdint>

namespace csr_matrix_mod {

// Could the pattern be symmetric: as many columns as rows, which follow each other, and entries?
[[nodiscard]] inline bool may_be_its_own_mirror_image(const csr_matrix& mat, std::int32_t columns) {
  if (mat.n < 1 || mat.n != columns || csr_matrix_num_nz(mat) < 1) return false;
  return mat.ia(1) == 1 && rows_follow(mat);
}

// Is the pattern symmetric, with rows that ascend?
//
// Rows are visited in order, so the partner (j, i) of entry (i, j) below the diagonal is the first
// entry of row j behind its diagonal that has met none, which is what the cursor of row j points
// at. `meet` is told the positions of both, diagonal entries meet themselves. The first entry
// without a partner ends the walk; an entry behind the diagonal that was left without is looked for
// now and then. All have met theirs if there are as many behind the diagonal as before it; then the
// rows ascend behind it too, because row j meets rows i in ascending order.
//
// The matrix may be its own mirror image, and `cursor` has room for each of its rows.
template <class Meet>
[[nodiscard]] bool pairs_up(const csr_matrix& mat, std::int32_t* const cursor, const Meet meet) {
  const std::int32_t* const starts = mat.ia.data();
  const std::int32_t* const columns = mat.ja.data();
  const std::int64_t n = mat.n;
  std::int64_t behind_without_partner = 0;
  for (std::int64_t row = 1; row <= n; ++row) {
    const auto i = static_cast<std::int32_t>(row);
    const std::int32_t next_row = starts[i];
    std::int32_t k = starts[i - 1];
    for (std::int32_t before = 0; k < next_row && columns[k - 1] < i; ++k) {
      const std::int32_t j = columns[k - 1];
      if (j <= before) return false;
      before = j;
      const std::int32_t partner = cursor[j - 1];
      if (partner >= starts[j] || columns[partner - 1] != i) return false;
      cursor[j - 1] = partner + 1;
      meet(k, partner);
    }
    behind_without_partner -= k - starts[i - 1];
    if (i % 16 == 0 && cursor[i - 2] < starts[i - 1] && columns[cursor[i - 2] - 1] <= i)
      return false;
    if (k < next_row && columns[k - 1] == i) {
      meet(k, k);
      ++k;
    }
    cursor[i - 1] = k;
    behind_without_partner += next_row - k;
  }
  return behind_without_partner == 0;
}

}  // namespace csr_matrix_mod
