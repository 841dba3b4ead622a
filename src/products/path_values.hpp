// SPDX-License-Identifier: MIT
// What a path of a product is worth, and what becomes of the worths of the paths to one entry.
#pragma once

#include "../support/prefetch.hpp"

#include <cstdint>

namespace csr_matrix_mod::products {

struct no_values {
  static constexpr bool stored = false;

  void set(std::int32_t, double) const {}
  void add(std::int32_t, double) const {}
};

struct sums {
  static constexpr bool stored = true;
  double* ac;

  void set(std::int32_t at, double value) const { ac[at - 1] = value; }
  void add(std::int32_t at, double value) const { ac[at - 1] = value + ac[at - 1]; }
};

// A path is worth `left` times `right`. Here the values on it are multiplied.
struct values_multiplied {
  static constexpr bool multiplies_values = true;
  const double* a;
  const double* b;

  [[nodiscard]] double left(std::int32_t k, std::int32_t) const { return a[k - 1]; }
  [[nodiscard]] double right(std::int64_t l) const { return b[l - 1]; }
  [[gnu::always_inline]] inline void prefetch_right(std::int64_t first, std::int64_t number) const {
    prefetch_row(b + (first - 1), number);
  }
};

// A path is worth 1, so that paths are counted.
struct paths_counted {
  static constexpr bool multiplies_values = false;

  [[nodiscard]] double left(std::int32_t, std::int32_t) const { return 1.0; }
  [[nodiscard]] double right(std::int64_t) const { return 1.0; }
  void prefetch_right(std::int64_t, std::int64_t) const {}
};

// A path is worth the weight of the vertex that it leads over.
struct middle_vertex {
  static constexpr bool multiplies_values = false;
  const std::int32_t* wgt;

  [[nodiscard]] double left(std::int32_t, std::int32_t j) const { return wgt[j - 1]; }
  [[nodiscard]] double right(std::int64_t) const { return 1.0; }
  void prefetch_right(std::int64_t, std::int64_t) const {}
};

}  // namespace csr_matrix_mod::products
