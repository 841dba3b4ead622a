// SPDX-License-Identifier: MIT
// Matrix times matrix and graph times graph.
#include "form_product.hpp"
#include "product_size.hpp"

#include <csr_matrix_mod/products.hpp>

namespace csr_matrix_mod {

void csr_matrix_multiply(const csr_matrix& m1, const csr_matrix& m2, csr_matrix& m3,
                         std::optional<std::int32_t> ncol) {
  const std::int32_t n = m1.n;
  const std::int32_t nc = ncol.value_or(m2.m);
  const matrix_type type =
      (m1.type | m2.type) == matrix_structure_only ? matrix_structure_only : matrix_real;

  csr_matrix_initial(n, m3, m2.m, type);
  products::form_product(
      m3, most_product_entries(n, nc, m1.ia, m1.ja, m2.ia), "csr_matrix_multiply",
      [&] { return product_size(n, nc, m1.ia, m1.ja, m2.ia, m2.ja); },
      [&] {
        if (m3.type != matrix_structure_only)
          matmul_normal(n, nc, m1.ia, m1.ja, m1.a, m2.ia, m2.ja, m2.a, m3.ia, m3.ja, m3.a);
        else
          matmul_noval(n, nc, m1.ia, m1.ja, m2.ia, m2.ja, m3.ia, m3.ja);
      });
}

void csr_matrix_multiply_graph(const csr_matrix& g1, const csr_matrix& g2, csr_matrix& g3,
                               std::optional<std::int32_t> ncol,
                               std::optional<array_view<const std::int32_t>> wgt) {
  const std::int32_t n = g1.n;
  const std::int32_t nc = ncol.value_or(g2.m);

  csr_matrix_initial(n, g3, nc, matrix_real);
  products::form_product(
      g3, most_product_entries(n, nc, g1.ia, g1.ja, g2.ia), "csr_matrix_multiply_graph",
      [&] { return product_size_graph(n, nc, g1.ia, g1.ja, g2.ia, g2.ja); },
      [&] {
        if (wgt)
          matmul_wgraph(n, nc, g1.ia, g1.ja, g2.ia, g2.ja, g3.ia, g3.ja, g3.a, *wgt);
        else
          matmul_graph(n, nc, g1.ia, g1.ja, g2.ia, g2.ja, g3.ia, g3.ja, g3.a);
      });
}

}  // namespace csr_matrix_mod
