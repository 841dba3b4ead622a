// SPDX-License-Identifier: MIT
// The two passes of a product, count and fill, which are the definition of what a faster way gives.
#pragma once

#include <csr_matrix_mod/products.hpp>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <optional>
#include <vector>

namespace tests {

struct passes {
  std::vector<std::int32_t> ia, ja;
  std::optional<std::vector<double>> a;

  passes(std::int32_t n, std::int32_t nnz)
      : ia(static_cast<std::size_t>(n) + 1),
        ja(static_cast<std::size_t>(nnz)),
        a(static_cast<std::size_t>(nnz)) {}
};

inline passes passes_of_product(const csr_matrix_mod::csr_matrix& l,
                                const csr_matrix_mod::csr_matrix& r) {
  std::int32_t nz = 0;
  matmul_size(l.n, r.m, l.ia, l.ja, r.ia, r.ja, nz);
  passes of(l.n, nz);
  matmul_normal(l.n, r.m, l.ia, l.ja, l.a, r.ia, r.ja, r.a, of.ia, of.ja, *of.a);
  return of;
}

inline passes passes_of_pattern(const csr_matrix_mod::csr_matrix& l,
                                const csr_matrix_mod::csr_matrix& r) {
  std::int32_t nz = 0;
  matmul_size(l.n, r.m, l.ia, l.ja, r.ia, r.ja, nz);
  passes of(l.n, nz);
  matmul_noval(l.n, r.m, l.ia, l.ja, r.ia, r.ja, of.ia, of.ja);
  of.a.reset();
  return of;
}

// The paths are counted where there are no weights.
inline passes passes_of_graph(const csr_matrix_mod::csr_matrix& l,
                              const csr_matrix_mod::csr_matrix& r,
                              const std::vector<std::int32_t>* weights = nullptr) {
  std::int32_t nz = 0;
  matmul_size_graph(l.n, r.m, l.ia, l.ja, r.ia, r.ja, nz);
  passes of(l.n, nz);
  if (weights == nullptr) {
    matmul_graph(l.n, r.m, l.ia, l.ja, r.ia, r.ja, of.ia, of.ja, *of.a);
  } else {
    matmul_wgraph(l.n, r.m, l.ia, l.ja, r.ia, r.ja, of.ia, of.ja, *of.a, *weights);
  }
  return of;
}

// Does `got` hold the same to the last bit, and has room for it and no more?
inline bool are_same(const csr_matrix_mod::csr_matrix& got, const passes& expected) {
  const std::int64_t room = std::max<std::int64_t>(1, std::ssize(expected.ja));
  if (got.ia.length() != std::ssize(expected.ia) || got.ja.length() != room) return false;
  if (!std::equal(expected.ia.begin(), expected.ia.end(), got.ia.data())) return false;
  if (!std::equal(expected.ja.begin(), expected.ja.end(), got.ja.data())) return false;
  if (!expected.a) return !got.a.allocated();
  return got.a.length() == room &&
         std::equal(expected.a->begin(), expected.a->end(), got.a.data(), [](double x, double y) {
           return std::bit_cast<std::uint64_t>(x) == std::bit_cast<std::uint64_t>(y);
         });
}

}  // namespace tests
