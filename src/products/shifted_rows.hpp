// SPDX-License-Identifier: MIT
// Rows of a matrix that are the row before, moved by one column, as those of a stencil are.
#pragma once

#include "../support/scratch.hpp"

#include <algorithm>
#include <bit>
#include <cstdint>

namespace csr_matrix_mod::products {

// One bit a row: entry for entry it has the columns of the row before plus one. Rows without
// entries have none. Looking costs one pass over the columns, which is given up where too few rows
// are like that: there the first entry of a row nearly always tells.
class shifted_rows {
 public:
  // False when fewer than three quarters of the rows are like that, for then few of them follow
  // each other, or when there is no room for the bits.
  [[nodiscard]] bool look(std::int32_t n, const std::int32_t* starts,
                          const std::int32_t* columns) noexcept {
    const std::int64_t words = n / 64 + 3;  // 64 bits from any row on can be read
    if (!bits_.allocate(words, contents::zero)) return false;
    std::int64_t found = 0;
    for (std::int64_t i = 2; i <= n;) {
      const std::int32_t rows = rows_as_long_as_before(i, n, starts);
      const std::uint64_t shifted = which_are_shifted(i, rows, starts, columns);
      put(i, shifted);
      found += std::popcount(shifted);
      i += std::max(rows, 1);
      if (i > 1024 && 4 * found < 3 * (i - 2)) return false;
    }
    return 4 * found >= std::int64_t{3} * n;
  }

  // Bit x belongs to row i + x.
  [[nodiscard]] std::uint64_t from(std::int64_t i) const noexcept {
    const std::uint64_t* const word = bits_.data() + i / 64;
    const int skipped = static_cast<int>(i % 64);
    return skipped == 0 ? *word : *word >> skipped | *(word + 1) << (64 - skipped);
  }

 private:
  static constexpr std::int32_t rows_of_a_word = 64;

  // How many rows from row i on, as many as a word has bits at most, are as long as the row before.
  static std::int32_t rows_as_long_as_before(std::int64_t i, std::int64_t n,
                                             const std::int32_t* starts) noexcept {
    const auto most = static_cast<std::int32_t>(std::min<std::int64_t>(rows_of_a_word, n + 1 - i));
    const std::int32_t* const start = starts + (i - 1);
    const std::int32_t length = start[0] - start[-1];
    if (length < 1) return 0;
    std::int32_t rows = 0;
    while (rows < most && start[rows + 1] - start[rows] == length) ++rows;
    return rows;
  }

  // Some rows from row i on, as long as the row before: all of them are compared at once, in vector
  // registers, and one by one only where not all are shifted.
  static std::uint64_t which_are_shifted(std::int64_t i, std::int32_t rows,
                                         const std::int32_t* starts,
                                         const std::int32_t* columns) noexcept {
    if (rows < 1) return 0;
    const std::int32_t* const row = columns + (starts[i - 1] - 1);
    const std::int32_t length = starts[i - 1] - starts[i - 2];
    if (are_shifted(row, std::int64_t{rows} * length, length))
      return ~std::uint64_t{0} >> (rows_of_a_word - rows);
    std::uint64_t found = 0;
    for (std::int32_t x = 0; x < rows; ++x)
      if (are_shifted(row + std::int64_t{x} * length, length, length))
        found |= std::uint64_t{1} << x;
    return found;
  }

  // Is each of `number` columns the one `length` before it plus one?
  static bool are_shifted(const std::int32_t* columns, std::int64_t number,
                          std::int32_t length) noexcept {
    const std::int32_t* const before = columns - length;
    if (columns[0] - before[0] != 1) return false;
    std::int32_t differing = 0;
    for (std::int64_t k = 1; k < number; ++k) differing |= (columns[k] - before[k]) ^ 1;
    return differing == 0;
  }

  // The bits of row i and those after it.
  void put(std::int64_t i, std::uint64_t shifted) noexcept {
    std::uint64_t* const word = bits_.data() + i / 64;
    const int skipped = static_cast<int>(i % 64);
    word[0] |= shifted << skipped;
    if (skipped > 0) word[1] |= shifted >> (64 - skipped);
  }

  scratch<std::uint64_t> bits_;
};

}  // namespace csr_matrix_mod::products
