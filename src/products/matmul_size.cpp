// SPDX-License-Identifier: MIT
// The first pass of a product: how many entries it has.
#include "../csr_matrix/row_starts.hpp"
#include "../support/entry_count.hpp"
#include "product_size.hpp"
#include "product_walk.hpp"

#include <csr_matrix_mod/products.hpp>

#include <algorithm>

namespace csr_matrix_mod {

using products::count_entries;
using products::diagonal;

std::int64_t product_size(std::int32_t n, std::int32_t ncol, array_view<const std::int32_t> ia,
                          array_view<const std::int32_t> ja, array_view<const std::int32_t> ib,
                          array_view<const std::int32_t> jb) {
  return count_entries<diagonal::kept>({n, ncol, ia, ja, ib, jb}, "matmul_size");
}

std::int64_t product_size_graph(std::int32_t n, std::int32_t ncol,
                                array_view<const std::int32_t> ia,
                                array_view<const std::int32_t> ja,
                                array_view<const std::int32_t> ib,
                                array_view<const std::int32_t> jb) {
  return count_entries<diagonal::skipped>({n, ncol, ia, ja, ib, jb}, "matmul_size_graph");
}

std::int64_t most_product_entries(const csr_matrix& m1, const csr_matrix& m2, std::int32_t ncol) {
  if (m1.n < 1 || m2.n < 1) return 0;
  const std::int32_t* const left_starts = m1.ia.data();
  const std::int32_t* const left_columns = m1.ja.data();
  const std::int32_t* const right_starts = m2.ia.data();

  const std::int64_t left_entries = left_starts[m1.n] - 1;
  const std::int64_t right_entries = right_starts[m2.n] - 1;
  const std::int64_t longest = longest_row(m2);
  if (longest * m2.n <= 2 * right_entries)
    return std::min(left_entries * longest, std::int64_t{m1.n} * ncol);

  std::int64_t most = 0;
  for (std::int64_t i = 1; i <= m1.n; ++i) {
    std::int64_t paths = 0;
    const std::int32_t left_end = left_starts[i];
    for (std::int32_t k = left_starts[i - 1]; k < left_end; ++k) {
      const std::int32_t j = left_columns[k - 1];
      paths += right_starts[j] - right_starts[j - 1];
    }
    most += std::min<std::int64_t>(paths, ncol);
  }
  return most;
}

void matmul_size(std::int32_t n, std::int32_t ncol, array_view<const std::int32_t> ia,
                 array_view<const std::int32_t> ja, array_view<const std::int32_t> ib,
                 array_view<const std::int32_t> jb, std::int32_t& nz) {
  nz = entry_count(product_size(n, ncol, ia, ja, ib, jb), "matmul_size");
}

void matmul_size_graph(std::int32_t n, std::int32_t ncol, array_view<const std::int32_t> ia,
                       array_view<const std::int32_t> ja, array_view<const std::int32_t> ib,
                       array_view<const std::int32_t> jb, std::int32_t& nz) {
  nz = entry_count(product_size_graph(n, ncol, ia, ja, ib, jb), "matmul_size_graph");
}

}  // namespace csr_matrix_mod
