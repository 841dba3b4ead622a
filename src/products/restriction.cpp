// SPDX-License-Identifier: MIT
// Coarse operators r (m1 p), with and without their diagonal.
#include "../support/stop.hpp"
#include "fill_product.hpp"
#include "form_product.hpp"
#include "product_size.hpp"

#include <csr_matrix_mod/products.hpp>

#include <string_view>

namespace csr_matrix_mod {

using products::diagonal;
using products::fill_product;
using products::sums;
using products::values_multiplied;

namespace {

// What the twins do not share: their words, and the passes of the second product.
struct twin {
  std::string_view routine;
  std::string_view not_square;
  std::string_view p_differs;
  std::string_view r_differs;
  decltype(product_size)* size;
  std::string_view kernel;
  void (*fill)(const csr_matrix& r, const csr_matrix& mp, csr_matrix& mc, std::int32_t* mark,
               std::int64_t most);
};

// The third line shows the rows of r although its columns are compared; logs are searched for it.
void require_shapes(const csr_matrix& m1, const csr_matrix& p, const csr_matrix& r,
                    const twin& form) {
  if (m1.m != m1.n) {
    print_free("n,m = ", m1.n, m1.m);
    stop(form.not_square);
  }
  if (p.n != m1.n) {
    print_free("n = ", m1.n, " p%size = ", p.n);
    stop(form.p_differs);
  }
  if (r.m != m1.n) {
    print_free("m = ", m1.m, " r%size = ", r.n);
    stop(form.r_differs);
  }
}

void restriction(const csr_matrix& m1, const csr_matrix& p, const csr_matrix& r, csr_matrix& mc,
                 const twin& form) {
  require_shapes(m1, p, r, form);
  csr_matrix mp;
  csr_matrix_multiply(m1, p, mp);
  csr_matrix_initial(r.n, mc, mp.m, matrix_real);
  const std::int64_t most = most_product_entries(r, mp, mp.m, diagonal::kept);
  products::form_product(
      mc, mp.m, most, form.routine, form.kernel,
      [&] { return form.size(r.n, mp.m, r.ia, r.ja, mp.ia, mp.ja); },
      [&](std::int32_t* mark) { form.fill(r, mp, mc, mark, most); });
}

}  // namespace

void csr_matrix_restriction(const csr_matrix& m1, const csr_matrix& p, const csr_matrix& r,
                            csr_matrix& mc) {
  restriction(m1, p, r, mc,
              {.routine = "csr_matrix_restriction",
               .not_square = "m1 not a square matrix in matrix_restriction",
               .p_differs = "p not same size as size of m1",
               .r_differs = "r not same size as size of m1",
               .size = product_size,
               .kernel = "matmul_normal",
               .fill = [](const csr_matrix& left, const csr_matrix& mp, csr_matrix& result,
                          std::int32_t* mark, std::int64_t most) {
                 fill_product<diagonal::kept>(left, mp, mp.m, result, sums{result.a.data()},
                                              values_multiplied{left.a.data(), mp.a.data()}, mark,
                                              most);
               }});
}

void csr_matrix_graph_restriction(const csr_matrix& g1, const csr_matrix& p, const csr_matrix& r,
                                  csr_matrix& gc) {
  restriction(g1, p, r, gc,
              {.routine = "csr_matrix_graph_restriction",
               .not_square = "g1 not a graph in matrix_graph_restriction",
               .p_differs = "p not same size as size of g1",
               .r_differs = "r not same size as size of g1",
               .size = product_size_graph,
               .kernel = "matmul_formgraph",
               .fill = [](const csr_matrix& left, const csr_matrix& mp, csr_matrix& result,
                          std::int32_t* mark, std::int64_t most) {
                 fill_product<diagonal::skipped>(left, mp, mp.m, result, sums{result.a.data()},
                                                 values_multiplied{left.a.data(), mp.a.data()},
                                                 mark, most);
               }});
}

}  // namespace csr_matrix_mod
