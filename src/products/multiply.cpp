// SPDX-License-Identifier: MIT
// Matrix times matrix and graph times graph.
#include "fill_product.hpp"
#include "form_product.hpp"
#include "product_size.hpp"

#include <csr_matrix_mod/products.hpp>

namespace csr_matrix_mod {

using products::diagonal;
using products::fill_product;
using products::middle_vertex;
using products::no_values;
using products::paths_counted;
using products::sums;
using products::values_multiplied;

void csr_matrix_multiply(const csr_matrix& m1, const csr_matrix& m2, csr_matrix& m3,
                         std::optional<std::int32_t> ncol) {
  const std::int32_t n = m1.n;
  const std::int32_t nc = ncol.value_or(m2.m);
  const matrix_type type =
      (m1.type | m2.type) == matrix_structure_only ? matrix_structure_only : matrix_real;

  csr_matrix_initial(n, m3, m2.m, type);
  const std::int64_t most = most_product_entries(m1, m2, nc, diagonal::kept);
  products::form_product(
      m3, nc, most, "csr_matrix_multiply",
      type == matrix_structure_only ? "matmul_noval" : "matmul_normal",
      [&] { return product_size(n, nc, m1.ia, m1.ja, m2.ia, m2.ja); },
      [&](std::int32_t* mark) {
        if (type != matrix_structure_only)
          fill_product<diagonal::kept>(m1, m2, nc, m3, sums{m3.a.data()},
                                       values_multiplied{m1.a.data(), m2.a.data()}, mark, most);
        else
          fill_product<diagonal::kept>(m1, m2, nc, m3, no_values{}, paths_counted{}, mark, most);
      });
}

void csr_matrix_multiply_graph(const csr_matrix& g1, const csr_matrix& g2, csr_matrix& g3,
                               std::optional<std::int32_t> ncol,
                               std::optional<array_view<const std::int32_t>> wgt) {
  const std::int32_t n = g1.n;
  const std::int32_t nc = ncol.value_or(g2.m);

  csr_matrix_initial(n, g3, nc, matrix_real);
  const std::int64_t most = most_product_entries(g1, g2, nc, diagonal::skipped);
  products::form_product(
      g3, nc, most, "csr_matrix_multiply_graph", wgt ? "matmul_wgraph" : "matmul_graph",
      [&] { return product_size_graph(n, nc, g1.ia, g1.ja, g2.ia, g2.ja); },
      [&](std::int32_t* mark) {
        if (wgt)
          fill_product<diagonal::skipped>(g1, g2, nc, g3, sums{g3.a.data()},
                                          middle_vertex{wgt->data()}, mark, most);
        else
          fill_product<diagonal::skipped>(g1, g2, nc, g3, sums{g3.a.data()}, paths_counted{}, mark,
                                          most);
      });
}

}  // namespace csr_matrix_mod
