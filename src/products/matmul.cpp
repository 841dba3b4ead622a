// SPDX-License-Identifier: MIT
// The second pass of a product. One walk serves all: what differs is whether the diagonal is
// skipped, whether there are values, and what a path is worth.
#include "product_walk.hpp"

#include <csr_matrix_mod/products.hpp>

namespace csr_matrix_mod {

namespace {

using products::diagonal;
using products::store_entries;

struct no_values {
  void set(std::int32_t, double) const {}
  void add(std::int32_t, double) const {}
};

struct sums {
  double* ac;

  void set(std::int32_t at, double value) const { ac[at - 1] = value; }
  void add(std::int32_t at, double value) const { ac[at - 1] = value + ac[at - 1]; }
};

// A path is worth the product of the values on it.
struct values_multiplied {
  const double* a;
  const double* b;

  [[nodiscard]] double over(std::int32_t k, std::int32_t) const { return a[k - 1]; }
  [[nodiscard]] double along(double left, std::int32_t l) const { return left * b[l - 1]; }
};

// A path is worth 1, so that paths are counted.
struct paths_counted {
  [[nodiscard]] double over(std::int32_t, std::int32_t) const { return 1.0; }
  [[nodiscard]] double along(double one, std::int32_t) const { return one; }
};

// A path is worth the weight of the vertex that it leads over.
struct middle_vertex {
  const std::int32_t* wgt;

  [[nodiscard]] double over(std::int32_t, std::int32_t j) const { return wgt[j - 1]; }
  [[nodiscard]] double along(double weight, std::int32_t) const { return weight; }
};

}  // namespace

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
