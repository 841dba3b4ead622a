// SPDX-License-Identifier: MIT
// Rows of a product that are walked together: where left rows that follow each other have the same
// columns, as those of several unknowns at one point have, their paths lead to the same columns in
// the same order. One walk finds the way for all of them and adds up their sums side by side, a row
// a lane. So it does for right rows that have the same columns: their entries are taken together,
// column by column. Each sum takes its paths in their order, so no bit differs.
//
// A A for a shell of finite elements (bcsstk16) in registers of 32 bytes 4.5 times as fast, of 16
// bytes 3 times; for 3 unknowns at each point of a 7-point stencil 2.5 and 1.8 times, of a 27-point
// one 3.9 and 2.7 times; for 2 unknowns at those of a 5-point one 1.9 times. Registers of 64 bytes
// gain nothing more.
#pragma once

#include "../support/scratch.hpp"
#include "path_values.hpp"
#include "product_walk.hpp"

#include <algorithm>
#include <cstdint>

namespace csr_matrix_mod::products {

inline constexpr std::int32_t most_twins = 8;

// Left rows with the same columns.
struct left_twins {
  std::int32_t rows;  // 2 to 8
  std::int32_t entries;
  const std::int32_t* columns;  // of each row
  const double* values;         // row by row
};

struct right_rows_and_twins {
  const std::int32_t* starts;
  const std::int32_t* columns;
  const double* values;
  const std::uint64_t* twin;  // one bit a row: it ascends, and has the columns of the row before

  // Left columns that follow each other and lead to right rows with the same columns, from the
  // first of `most` columns on; 4 of them at most.
  [[nodiscard]] std::int32_t alike(const std::int32_t* left_columns, std::int32_t most) const {
    const std::int32_t j = left_columns[0];
    std::int32_t rows = 1;
    while (rows < std::min(most, 4) && left_columns[rows] == j + rows && is_twin(j + rows)) ++rows;
    return rows;
  }

  [[nodiscard]] bool is_twin(std::int32_t j) const { return (twin[j / 64] >> (j % 64) & 1U) != 0; }
};

// The rows of the product behind position `pos`: `mark` is as in `store_entries`, and `sums` has
// room for 8 sums of each entry of one row. The number of those entries.
using twin_walk = std::int32_t(const left_twins& left, const right_rows_and_twins& right,
                               std::int32_t pos, std::int32_t* mark, double* sums,
                               std::int32_t* columns, double* values);

// In registers of 32 bytes if there are any, else of 16.
[[nodiscard]] twin_walk& twin_walk_in_widest_registers() noexcept;

// Beside a walk of values that are multiplied.
class twin_rows : public walk_alone {
 public:
  twin_rows(const operands& of, const product<sums>& to, const values_multiplied& path,
            std::int32_t right_rows) noexcept
      : n_(of.n),
        ncol_(of.ncol),
        right_rows_(right_rows),
        left_starts_(of.ia.data()),
        left_columns_(of.ja.data()),
        left_values_(path.a),
        right_{of.ib.data(), of.jb.data(), path.b, nullptr},
        starts_(to.ic.data()),
        columns_(to.jc.data()),
        values_(to.values.ac) {}

  // Are they worth it? Yes if more than half of the left rows are twins of the row before, as far as
  // the first thousand tell, or a quarter of both the left and the right rows: pairs alone are no
  // gain where nobody foresees which paths lead to new columns. No if there is no room for the bits.
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

  // Stores row i and those after it that are its twins, and moves `pos` to the last entry. Their
  // number; 0, with nothing done, where there are none.
  std::int32_t instead(std::int64_t i, std::int32_t& pos, std::int32_t* mark) noexcept {
    const std::int64_t last = std::min<std::int64_t>(n_, i + most_twins - 1);
    std::int64_t end = i + 1;
    while (end <= last && is_twin(left_starts_, left_columns_, end)) ++end;
    if (end == i + 1 || !find_room(i)) return 0;
    const auto rows = static_cast<std::int32_t>(end - i);
    const std::int32_t first = left_starts_[i - 1] - 1;
    const std::int32_t width =
        walk_({rows, left_starts_[i] - 1 - first, left_columns_ + first, left_values_ + first},
              right_, pos, mark, sums_.data(), columns_ + pos, values_ + pos);
    for (; i < end; ++i) {
      pos += width;
      starts_[i] = pos + 1;
    }
    return rows;
  }

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
    if (!right_twins_.allocate(right_rows_ / 64 + 1, contents::zero)) return false;
    std::uint64_t* const twin = right_twins_.data();
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

  // Room for the sums of row i, which has no more entries than paths or columns.
  [[nodiscard]] bool find_room(std::int64_t i) noexcept {
    std::int64_t paths = 0;
    for (std::int32_t k = left_starts_[i - 1]; k < left_starts_[i]; ++k) {
      const std::int32_t j = left_columns_[k - 1];
      paths += right_.starts[j] - right_.starts[j - 1];
    }
    const std::int64_t wanted = most_twins * std::min<std::int64_t>(paths, ncol_);
    return wanted <= sums_.length() ||
           sums_.allocate(std::max(wanted, 2 * sums_.length()), contents::undefined);
  }

  std::int64_t n_;
  std::int32_t ncol_;
  std::int32_t right_rows_;
  const std::int32_t* left_starts_;
  const std::int32_t* left_columns_;
  const double* left_values_;
  right_rows_and_twins right_;
  std::int32_t* starts_;
  std::int32_t* columns_;
  double* values_;
  twin_walk& walk_ = twin_walk_in_widest_registers();
  scratch<std::uint64_t> right_twins_;
  scratch<double> sums_;
};

}  // namespace csr_matrix_mod::products
