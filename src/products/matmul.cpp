// SPDX-License-Identifier: MIT
// The second pass of a product. One walk serves all: what differs is whether the diagonal is
// skipped, whether there are values, and what a path is worth.
#include "path_values.hpp"
#include "product_walk.hpp"

#include <csr_matrix_mod/products.hpp>

namespace csr_matrix_mod {

using products::diagonal;
using products::middle_vertex;
using products::no_values;
using products::paths_counted;
using products::store_entries;
using products::sums;
using products::values_multiplied;

void matmul_normal(std::int32_t n, std::int32_t ncol, array_view<const std::int32_t> ia,
                   array_view<const std::int32_t> ja, array_view<const double> a,
                   array_view<const std::int32_t> ib, array_view<const std::int32_t> jb,
                   array_view<const double> b, array_view<std::int32_t> ic,
                   array_view<std::int32_t> jc, array_view<double> ac) {
  store_entries<diagonal::kept, sums>({n, ncol, ia, ja, ib, jb}, {ic, jc, {ac.data()}},
                                      values_multiplied{a.data(), b.data()}, "matmul_normal");
}

void matmul_noval(std::int32_t n, std::int32_t ncol, array_view<const std::int32_t> ia,
                  array_view<const std::int32_t> ja, array_view<const std::int32_t> ib,
                  array_view<const std::int32_t> jb, array_view<std::int32_t> ic,
                  array_view<std::int32_t> jc) {
  store_entries<diagonal::kept, no_values>({n, ncol, ia, ja, ib, jb}, {ic, jc, {}}, paths_counted{},
                                           "matmul_noval");
}

void matmul_graph(std::int32_t n, std::int32_t ncol, array_view<const std::int32_t> ia,
                  array_view<const std::int32_t> ja, array_view<const std::int32_t> ib,
                  array_view<const std::int32_t> jb, array_view<std::int32_t> ic,
                  array_view<std::int32_t> jc, array_view<double> ac) {
  store_entries<diagonal::skipped, sums>({n, ncol, ia, ja, ib, jb}, {ic, jc, {ac.data()}},
                                         paths_counted{}, "matmul_graph");
}

void matmul_wgraph(std::int32_t n, std::int32_t ncol, array_view<const std::int32_t> ia,
                   array_view<const std::int32_t> ja, array_view<const std::int32_t> ib,
                   array_view<const std::int32_t> jb, array_view<std::int32_t> ic,
                   array_view<std::int32_t> jc, array_view<double> ac,
                   array_view<const std::int32_t> wgt) {
  store_entries<diagonal::skipped, sums>({n, ncol, ia, ja, ib, jb}, {ic, jc, {ac.data()}},
                                         middle_vertex{wgt.data()}, "matmul_wgraph");
}

void matmul_formgraph(std::int32_t n, std::int32_t ncol, array_view<const double> a,
                      array_view<const std::int32_t> ia, array_view<const std::int32_t> ja,
                      array_view<const double> b, array_view<const std::int32_t> ib,
                      array_view<const std::int32_t> jb, array_view<double> ac,
                      array_view<std::int32_t> ic, array_view<std::int32_t> jc) {
  store_entries<diagonal::skipped, sums>({n, ncol, ia, ja, ib, jb}, {ic, jc, {ac.data()}},
                                         values_multiplied{a.data(), b.data()}, "matmul_formgraph");
}

}  // namespace csr_matrix_mod
