// SPDX-License-Identifier: MIT
// Matrices without any cleverness: every place of every row holds a value or nothing, and a list
// tells in which order the places of a row were first written. What the library computes is
// compared with these, bit for bit and in the order of entries. Nothing here is shared with the
// library.
#pragma once

#include "matrices.hpp"

#include <cstdint>
#include <optional>
#include <vector>

namespace tests::dense {

class matrix {
 public:
  matrix(std::int32_t n, std::int32_t m);

  // Nothing when the place was never written: an explicit zero is not nothing.
  [[nodiscard]] std::optional<double> at(std::int32_t i, std::int32_t j) const;

  void set(std::int32_t i, std::int32_t j, double v);
  void add(std::int32_t i, std::int32_t j, double v);  // as set, where there was nothing

  // The places that were written, in the order in which they first were.
  [[nodiscard]] entry_rows rows() const;

 private:
  [[nodiscard]] std::size_t place(std::int32_t i, std::int32_t j) const;

  std::int32_t n_, m_;
  std::vector<std::optional<double>> values_;
  column_rows discovered_;
};

enum class diagonal { kept, skipped };

// Below, m is the number of columns of the result.

entry_rows product(const entry_rows& left, const entry_rows& right, std::int32_t m,
                   diagonal kept = diagonal::kept);

// weights[j-1] is what each path over vertex j is worth.
entry_rows graph_product(const column_rows& left, const column_rows& right, std::int32_t m,
                         const std::vector<std::int32_t>& weights);

// Repeated columns stay repeated; `m` is the number of columns of `rows`.
entry_rows transpose(const entry_rows& rows, std::int32_t m);

entry_rows sum(const entry_rows& left, const entry_rows& right, std::int32_t m);

// The places off the diagonal that either operand has, all with value 1.
entry_rows union_nodiag(const entry_rows& left, const entry_rows& right, std::int32_t m);

std::vector<double> times(const entry_rows& rows, const std::vector<double>& x);
std::vector<double> transpose_times(const entry_rows& rows, std::int32_t m,
                                    const std::vector<double>& x);

// Each entry weighs 1; sums are taken modulo 2^32.
std::vector<std::int32_t> times(const column_rows& rows, const std::vector<std::int32_t>& x);
std::vector<std::int32_t> transpose_times(const column_rows& rows, std::int32_t m,
                                          const std::vector<std::int32_t>& x);

}  // namespace tests::dense
