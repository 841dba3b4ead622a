// SPDX-License-Identifier: MIT
// Is the pattern of a matrix that of its transpose?
#include "../support/scratch.hpp"
#include "../support/stop.hpp"

#include <csr_matrix_mod/convert.hpp>
#include <csr_matrix_mod/ordering.hpp>

namespace csr_matrix_mod {

bool matrix_is_struct_symmetric(const csr_matrix& mat) {
  if (mat.n != mat.m) {
    print_free("nonsymmetric: n,m = ", mat.n, mat.m);
    return false;
  }
  csr_matrix mat_t;
  csr_matrix_transpose(mat, mat_t);
  scratch<std::int32_t> mark;  // 1 for the columns of the row at hand
  if (!mark.allocate(mat.n, contents::zero)) stop("fail to allocate in is_symmetric");

  const std::int32_t* const starts = mat.ia.data();
  const std::int32_t* const starts_t = mat_t.ia.data();
  const std::int32_t* const columns = mat.ja.data();
  std::int32_t* const marked = mark.data();
  const auto mark_row = [=](std::int32_t i, std::int32_t value) {
    const std::int32_t next_row = starts[i];
    for (std::int32_t k = starts[i - 1]; k < next_row; ++k) marked[columns[k - 1] - 1] = value;
  };
  for (std::int64_t row = 1; row <= mat.n; ++row) {
    const auto i = static_cast<std::int32_t>(row);
    mark_row(i, 1);
    // The transpose of a symmetric pattern has the same row starts, so the positions of its row i
    // are those of row i of the matrix. The columns are the matrix's own: a pattern that only
    // has the row starts of its transpose passes too, and callers rely on this answer.
    for (std::int32_t k = starts_t[i - 1]; k < starts_t[i]; ++k) {
      const std::int32_t j = columns[k - 1];
      if (marked[j - 1] != 0) continue;
      print_line(short_text()
                     .append("non-symmetric entry ")
                     .append(int2str(i, 10))
                     .append(int2str(j, 10))
                     .view());
      return false;
    }
    mark_row(i, 0);
  }
  return true;
}

}  // namespace csr_matrix_mod
