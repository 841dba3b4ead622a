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
#include "twins.hpp"

#include <cstdint>
#include <utility>

namespace csr_matrix_mod::products {

// Left rows with the same columns.
struct left_twins {
  std::int32_t rows;  // 2 to 8
  std::int32_t entries;
  const std::int32_t* columns;  // of each row
  const double* values;         // row by row
};

// The rows of the product behind position `pos`: `mark` is as in `store_entries`, and `sums` has
// room for 8 sums of each entry of one row. The number of those entries.
using twin_walk = std::int32_t(const left_twins& left, const right_twins& right,
                               const double* right_values, std::int32_t pos, std::int32_t* mark,
                               double* sums, std::int32_t* columns, double* values);

// In registers of 32 bytes if there are any, else of 16.
[[nodiscard]] twin_walk& twin_walk_in_widest_registers() noexcept;

// Beside a walk of values that are multiplied.
class twin_rows : public walk_alone {
 public:
  twin_rows(const operands& of, const product<sums>& to, const values_multiplied& path,
            twins&& found) noexcept
      : left_starts_(of.ia.data()),
        left_columns_(of.ja.data()),
        starts_(to.ic.data()),
        columns_(to.jc.data()),
        values_(to.values.ac),
        path_(path),
        twins_(std::move(found)) {}

  // Stores row i and those after it that are its twins, and moves `pos` to the last entry. Their
  // number; 0, with nothing done, where there are none.
  std::int32_t instead(std::int64_t i, std::int32_t& pos, std::int32_t* mark) noexcept {
    const std::int32_t rows = twins_.rows_from(i);
    if (rows == 1 || !sums_.make_room(most_twins * twins_.most_entries(i))) return 0;
    const std::int32_t first = left_starts_[i - 1] - 1;
    const std::int32_t width =
        walk_({rows, left_starts_[i] - 1 - first, left_columns_ + first, path_.a + first},
              twins_.right(), path_.b, pos, mark, sums_.data(), columns_ + pos, values_ + pos);
    for (const std::int64_t end = i + rows; i < end; ++i) {
      pos += width;
      starts_[i] = pos + 1;
    }
    return rows;
  }

 private:
  const std::int32_t* left_starts_;
  const std::int32_t* left_columns_;
  std::int32_t* starts_;
  std::int32_t* columns_;
  double* values_;
  values_multiplied path_;
  twins twins_;
  twin_walk& walk_ = twin_walk_in_widest_registers();
  scratch<double> sums_;
};

}  // namespace csr_matrix_mod::products
