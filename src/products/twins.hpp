// SPDX-License-Identifier: MIT
// Rows that have the columns of the row before, as those of several unknowns at one point have.
#pragma once

#include "../support/scratch.hpp"
#include "product_walk.hpp"

#include <algorithm>
#include <cstdint>

namespace csr_matrix_mod::products {

// So many rows of a product are walked together.
inline constexpr std::int32_t most_twins = 8;

// Right rows, and which of them are twins.
struct right_twins {
  const std::int32_t* starts;
  const std::int32_t* columns;
  const std::uint64_t* twin;  // one bit a row: it ascends, and has the columns of the row before

  // How many left columns that follow each other and lead to right rows with the same columns, from
  // the first of `most` columns on: 4 at most.
  [[nodiscard]] std::int32_t alike(const std::int32_t* left_columns, std::int32_t most) const {
    const std::int32_t j = left_columns[0];
    std::int32_t rows = 1;
    while (rows < std::min(most, 4) && left_columns[rows] == j + rows && is_twin(j + rows)) ++rows;
    return rows;
  }

  [[nodiscard]] bool is_twin(std::int32_t j) const { return (twin[j / 64] >> (j % 64) & 1U) != 0; }
};

// The twins of both operands.
class twins {
 public:
  twins(const operands& of, std::int32_t right_rows) noexcept
      : n_(of.n),
        ncol_(of.ncol),
        right_rows_(right_rows),
        left_starts_(of.ia.data()),
        left_columns_(of.ja.data()),
        right_{of.ib.data(), of.jb.data(), nullptr} {}

  // Are they worth it? Yes if more than half of the left rows are twins of the row before, as far
  // as the first thousand tell, or a quarter of both the left and the right rows: pairs alone are
  // no gain where nobody foresees which paths lead to new columns. No if there is no room for the
  // bits.
  [[nodiscard]] bool look() noexcept {
    const auto are_above = [](const std::int32_t* starts, const std::int32_t* columns,
                              std::int64_t rows, std::int64_t share) {
      const std::int64_t last = std::min<std::int64_t>(rows, 1024);
      std::int64_t found = 0;
      for (std::int64_t i = 2; i <= last; ++i) found += is_twin(starts, columns, i);
      return share * found > last;
    };
    return are_above(left_starts_, left_columns_, n_, 4) &&
           (are_above(left_starts_, left_columns_, n_, 2) ||
            are_above(right_.starts, right_.columns, right_rows_, 4)) &&
           find_right_twins();
  }

  // How many left rows from row i on have the same columns, 8 at most.
  [[nodiscard]] std::int32_t rows_from(std::int64_t i) const noexcept {
    const std::int64_t last = std::min<std::int64_t>(n_, i + most_twins - 1);
    std::int64_t end = i + 1;
    while (end <= last && is_twin(left_starts_, left_columns_, end)) ++end;
    return static_cast<std::int32_t>(end - i);
  }

  // Row i of the product has no more entries than paths or columns.
  [[nodiscard]] std::int64_t most_entries(std::int64_t i) const noexcept {
    std::int64_t paths = 0;
    for (std::int32_t k = left_starts_[i - 1]; k < left_starts_[i]; ++k) {
      const std::int32_t j = left_columns_[k - 1];
      paths += right_.starts[j] - right_.starts[j - 1];
    }
    return std::min<std::int64_t>(paths, ncol_);
  }

  [[nodiscard]] const right_twins& right() const noexcept { return right_; }

 private:
  // Has row i, which is not the first, the columns of the row before, and any?
  static bool is_twin(const std::int32_t* starts, const std::int32_t* columns,
                      std::int64_t i) noexcept {
    const std::int32_t* const before = columns + (starts[i - 2] - 1);
    const std::int32_t* const row = columns + (starts[i - 1] - 1);
    const std::int32_t length = starts[i] - starts[i - 1];
    return length > 0 && row - before == length && row[0] == before[0] &&
           std::equal(before, row, row);
  }

  [[nodiscard]] bool find_right_twins() noexcept {
    if (!bits_.allocate(right_rows_ / 64 + 1, contents::zero)) return false;
    std::uint64_t* const twin = bits_.data();
    for (std::int64_t j = 2; j <= right_rows_; ++j) {
      if (!is_twin(right_.starts, right_.columns, j) || !ascends(j)) continue;
      twin[j / 64] |= std::uint64_t{1} << (j % 64);
    }
    right_.twin = twin;
    return true;
  }

  [[nodiscard]] bool ascends(std::int64_t j) const noexcept {
    std::int32_t steps_back = 0;
    for (std::int32_t l = right_.starts[j - 1] + 1; l < right_.starts[j]; ++l)
      steps_back |= right_.columns[l - 2] < right_.columns[l - 1] ? 0 : 1;
    return steps_back == 0;
  }

  std::int64_t n_;
  std::int32_t ncol_;
  std::int32_t right_rows_;
  const std::int32_t* left_starts_;
  const std::int32_t* left_columns_;
  right_twins right_;
  scratch<std::uint64_t> bits_;
};

}  // namespace csr_matrix_mod::products
