// SPDX-License-Identifier: MIT
// Most peers count from 0.
#pragma once

#include "../matrix.hpp"

#include <algorithm>
#include <iterator>

namespace bench {

template <class To, class From>
void shifted(const From* from, std::size_t count, To* to, int by) {
  std::transform(from, from + count, to,
                 [by](From number) { return static_cast<To>(number + static_cast<From>(by)); });
}

// A matrix from a peer's arrays, which count from 0 and end with the row starts.
template <class Index>
matrix from_zero_based(std::int64_t n, std::int64_t m, const Index* starts, const Index* columns,
                       const double* values) {
  matrix made;
  made.n = static_cast<std::int32_t>(n);
  made.m = static_cast<std::int32_t>(m);
  made.starts.resize(static_cast<std::size_t>(n) + 1);
  shifted(starts, made.starts.size(), made.starts.data(), 1);
  const auto nnz = static_cast<std::size_t>(made.nnz());
  made.columns.resize(nnz);
  shifted(columns, nnz, made.columns.data(), 1);
  made.values.assign(values, values + nnz);
  return made;
}

// The arrays of a matrix, counting from 0.
template <class Index>
struct zero_based {
  explicit zero_based(const matrix& of)
      : starts(of.starts.size()), columns(of.columns.size()), values(of.values) {
    shifted(of.starts.data(), starts.size(), starts.data(), -1);
    shifted(of.columns.data(), columns.size(), columns.data(), -1);
  }
  array<Index> starts;
  array<Index> columns;
  array<double> values;
};

}  // namespace bench
