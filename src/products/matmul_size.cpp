// SPDX-License-Identifier: MIT
// The first pass of a product: how many entries it has.
#include "../csr_matrix/row_starts.hpp"
#include "../support/entry_count.hpp"
#include "../support/memory.hpp"
#include "../support/scratch.hpp"
#include "product_size.hpp"
#include "product_walk.hpp"
#include "row_repeats.hpp"

#include <csr_matrix_mod/products.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace csr_matrix_mod {

using products::count_entries;
using products::count_row;
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

namespace {

// The number of entries, where a bound takes room that the system would map pages for while the
// entries may not, and rows repeat, so that few have to be counted. Pages that are mapped are
// cleared first: A A of 5 points and 1000 rows 2 times as fast in fresh memory.
template <diagonal Diagonal>
std::int64_t exact_if_it_spares_pages(const csr_matrix& m1, const csr_matrix& m2, std::int32_t ncol,
                                      std::int64_t most) {
  constexpr std::int64_t least = 1 << 14;  // values in 128 KiB, from which on pages are mapped
  if (most < least || most > 4 * least) return most;
  if (!detail::maps_pages_for(static_cast<std::size_t>(most) * sizeof(double))) return most;
  const products::operands of{m1.n, ncol, m1.ia, m1.ja, m2.ia, m2.ja};
  const products::row_repeats repeats(of, m2.n);
  scratch<std::int32_t> marker;
  if (!repeats.worthwhile() || !marker.allocate(ncol, contents::zero)) return most;
  std::int64_t count = 0;
  for (std::int64_t i = 1; i <= of.n; ++i) {
    const std::int64_t entries = count_row<Diagonal>(of, i, marker.data());
    count += entries;
    while (const std::int32_t repeated = repeats.after(i)) {
      count += repeated * entries;
      i += repeated;
    }
  }
  return count;
}

// The left rows follow each other.
std::int64_t most_entries(const csr_matrix& m1, const csr_matrix& m2, std::int32_t ncol) {
  const row_lengths right = lengths_of_rows(m2);
  if (!right.follow) return 0;
  const std::int32_t* const left_starts = m1.ia.data();
  const std::int32_t* const left_columns = m1.ja.data();
  const std::int32_t* const right_starts = m2.ia.data();

  const std::int64_t left_entries = left_starts[m1.n] - 1;
  const std::int64_t right_entries = right_starts[m2.n] - 1;
  const std::int64_t longest = right.longest;
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

}  // namespace

std::int64_t most_product_entries(const csr_matrix& m1, const csr_matrix& m2, std::int32_t ncol,
                                  products::diagonal which) {
  if (m1.n < 1 || m2.n < 1 || csr_matrix_num_nz(m1) < 1) return 0;
  const bool left_is_right = m1.ia.data() == m2.ia.data() && m1.n <= m2.n;
  if (!left_is_right && !rows_follow(m1)) return 0;
  const std::int64_t most = most_entries(m1, m2, ncol);
  return which == diagonal::kept ? exact_if_it_spares_pages<diagonal::kept>(m1, m2, ncol, most)
                                 : exact_if_it_spares_pages<diagonal::skipped>(m1, m2, ncol, most);
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
