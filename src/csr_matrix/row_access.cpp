// SPDX-License-Identifier: MIT
// One row of a matrix as a view, and rows that are filled entry by entry.
#include "../support/stop.hpp"

#include <csr_matrix_mod/csr_matrix.hpp>

#include <algorithm>
#include <cstdint>
#include <limits>

namespace csr_matrix_mod {

namespace {

// Only the upper bound is looked at: callers run i from 1 to n.
void require_row(const csr_matrix& mat, std::int32_t i) {
  if (i <= mat.n) return;
  print_free("try to access the ", i, " th row of a matrix of ", mat.n, " rows!");
  stop(blank_message);
}

void require_values(const csr_matrix& mat) {
  if (mat.type == matrix_structure_only) stop("getrowval in a structure only matrix!");
}

// The part of `entries` that row i occupies.
template <class T>
array_view<T> row_of(const csr_matrix& mat, std::int32_t i, T* entries) {
  return {entries + (mat.ia(i) - 1), std::max(csr_matrix_num_row_entries(mat, i), 0)};
}

}  // namespace

array_view<std::int32_t> csr_matrix_getrow(csr_matrix& mat, std::int32_t i) {
  require_row(mat, i);
  return row_of(mat, i, mat.ja.data());
}

array_view<const std::int32_t> csr_matrix_getrow(const csr_matrix& mat, std::int32_t i) {
  require_row(mat, i);
  return row_of(mat, i, mat.ja.data());
}

array_view<double> csr_matrix_getrowval(csr_matrix& mat, std::int32_t i) {
  require_row(mat, i);
  require_values(mat);
  return row_of(mat, i, mat.a.data());
}

array_view<const double> csr_matrix_getrowval(const csr_matrix& mat, std::int32_t i) {
  require_row(mat, i);
  require_values(mat);
  return row_of(mat, i, mat.a.data());
}

void csr_matrix_fill(csr_matrix& mat, std::int32_t i, array_view<std::int32_t> pos, std::int32_t j,
                     std::optional<double> v) {
  std::int32_t* const columns = csr_matrix_getrow(mat, i).data();
  pos(i) += 1;
  columns[pos(i) - 1] = j;
  if (v) csr_matrix_getrowval(mat, i).data()[pos(i) - 1] = *v;
}

void csr_matrix_extrow(csr_row& row, std::int32_t j, double v) {
  constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
  const std::int64_t count = std::int64_t{row.count} + 1;
  if (count > most) return;
  if (std::min(row.ja.length(), row.a.length()) < count) {
    const auto capacity =
        static_cast<std::int32_t>(std::min(count + std::max<std::int64_t>(count / 10, 10), most));
    if (iexpand1(row.ja, capacity) != 0 || expand1(row.a, capacity) != 0) return;
  }
  row.count = static_cast<std::int32_t>(count);
  row.ja(count) = j;
  row.a(count) = v;
}

void csr_matrix_setval(csr_matrix& mat, double v) {
  if (mat.type == matrix_structure_only) stop("try to set value of a structure only matrix");
  std::fill(mat.a.begin(), mat.a.end(), v);
}

}  // namespace csr_matrix_mod
