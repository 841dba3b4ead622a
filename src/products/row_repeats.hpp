// SPDX-License-Identifier: MIT
// Which rows of a product repeat the row before.
#pragma once

#include "product_walk.hpp"
#include "shifted_rows.hpp"

#include <algorithm>
#include <bit>
#include <cstdint>

namespace csr_matrix_mod::products {

// Row i repeats row i - 1 where left row i and all right rows that it leads to are those of row
// i - 1 moved by one column.
class row_repeats {
 public:
  row_repeats(const operands& of, std::int32_t right_rows) noexcept
      : square_(of.n == right_rows && of.ia.data() == of.ib.data() && of.ja.data() == of.jb.data()),
        n_(of.n),
        left_starts_(of.ia.data()),
        left_columns_(of.ja.data()),
        worthwhile_(of.n >= few && right_rows >= few && right_rows_are_met(of, right_rows) &&
                    look(of, right_rows) && runs_are_long()) {}

  // Are there so many, and do so many follow each other, that they are better not walked? Where one
  // entry in a hundred is missing, A A of 5 and 7 points takes 1.6 and 1.8 times as long otherwise.
  [[nodiscard]] bool worthwhile() const noexcept { return worthwhile_; }

  // How many rows after row i repeat it, as far as 64 bits tell.
  [[nodiscard]] std::int32_t after(std::int64_t i) const noexcept {
    const shifted_rows& right = square_ ? left_ : right_;
    std::uint64_t repeat = left_.from(i + 1);
    const std::int32_t end = left_starts_[i];
    for (std::int32_t k = left_starts_[i - 1]; k < end && repeat != 0; ++k)
      repeat &= right.from(std::int64_t{left_columns_[k - 1]} + 1);
    return std::countr_one(repeat);
  }

 private:
  static constexpr std::int32_t few = 16;  // rows, which are not looked at

  // The operand with fewer entries is looked at first, and the other only if many of its rows are
  // shifted.
  [[nodiscard]] bool look(const operands& of, std::int32_t right_rows) noexcept {
    const auto left = [&] { return left_.look(of.n, of.ia.data(), of.ja.data()); };
    const auto right = [&] { return right_.look(right_rows, of.ib.data(), of.jb.data()); };
    if (square_) return left();
    if (of.ia(of.n + std::int64_t{1}) < of.ib(right_rows + std::int64_t{1}))
      return left() && right();
    return right() && left();
  }

  // Do 8 rows or more on average follow a row that they repeat, where any does? Some stretches of
  // rows tell.
  [[nodiscard]] bool runs_are_long() const noexcept {
    constexpr std::int64_t stretches = 8;
    constexpr std::int64_t rows_of_a_stretch = 128;
    constexpr std::int64_t long_run = 8;
    std::int64_t runs = 0;
    std::int64_t repeats = 0;
    for (std::int64_t s = 0; s < stretches; ++s) {
      std::int64_t i = n_ * s / stretches + 1;
      const std::int64_t end = std::min(i + rows_of_a_stretch, n_ + 1);
      while (i < end) {
        const std::int64_t found = std::min<std::int64_t>(after(i), end - 1 - i);
        runs += found > 0 ? 1 : 0;
        repeats += found;
        i += found + 1;
      }
    }
    return repeats >= long_run * runs;
  }

  bool square_;
  std::int64_t n_;
  const std::int32_t* left_starts_;
  const std::int32_t* left_columns_;
  shifted_rows left_;
  shifted_rows right_;
  bool worthwhile_;  // the last, as it takes all of them
};

}  // namespace csr_matrix_mod::products
