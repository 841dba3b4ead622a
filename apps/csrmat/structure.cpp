// SPDX-License-Identifier: MIT
#include "structure.hpp"

#include <csr_matrix_mod/csr_matrix_mod.hpp>

#include <algorithm>
#include <new>

namespace csrmat {

using namespace csr_matrix_mod;

namespace {

// The next column of a sorted row after those equal to the one at position k.
std::int32_t skip_repeats(const csr_matrix& mat, std::int32_t k, std::int32_t end) {
  const std::int32_t j = mat.ja(k);
  while (k < end && mat.ja(k) == j) ++k;
  return k;
}

// The first column that only one of the two sorted rows i holds; first: is it the left one's?
std::optional<std::pair<bool, std::int32_t>> lone_column(const csr_matrix& left,
                                                         const csr_matrix& right, std::int32_t i) {
  std::int32_t k = left.ia(i);
  std::int32_t l = right.ia(i);
  const std::int32_t k_end = left.ia(i + 1);
  const std::int32_t l_end = right.ia(i + 1);
  while (k < k_end || l < l_end) {
    if (l == l_end || (k < k_end && left.ja(k) < right.ja(l))) return {{true, left.ja(k)}};
    if (k == k_end || right.ja(l) < left.ja(k)) return {{false, right.ja(l)}};
    k = skip_repeats(left, k, k_end);
    l = skip_repeats(right, l, l_end);
  }
  return {};
}

}  // namespace

csr_matrix pattern_of(const csr_matrix& mat) {
  csr_matrix pattern;
  csr_matrix_transfer(pattern, mat);
  pattern.a.release();
  csr_matrix_set_type(pattern, matrix_structure_only);
  return pattern;
}

csr_matrix with_values(const csr_matrix& mat) {
  csr_matrix real;
  csr_matrix_transfer(real, mat);
  if (mat.type == matrix_real) return real;
  if (!real.a.allocate(real.ja.length())) throw std::bad_alloc();
  csr_matrix_set_type(real, matrix_real);
  csr_matrix_setval(real, 1.0);
  return real;
}

std::optional<std::pair<std::int32_t, std::int32_t>> unpaired_entry(const csr_matrix& mat) {
  csr_matrix transposed;
  csr_matrix_transpose(pattern_of(mat), transposed);
  csr_matrix sorted;  // a transpose has sorted rows: twice transposed is sorted
  csr_matrix_transpose(transposed, sorted);
  for (std::int64_t row = 1; row <= mat.n; ++row) {
    const auto i = static_cast<std::int32_t>(row);
    if (const auto lone = lone_column(sorted, transposed, i)) {
      const auto [stored_in_row_i, j] = *lone;
      return stored_in_row_i ? std::pair(i, j) : std::pair(j, i);
    }
  }
  return {};
}

}  // namespace csrmat
