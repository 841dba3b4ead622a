// SPDX-License-Identifier: MIT
// Rows of a matrix that are the row before, moved by one column, as those of a stencil are.
#pragma once

#include "../support/scratch.hpp"

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
    for (std::int64_t i = 2; i <= n; ++i) {
      if (i % 1024 == 0 && 4 * found < 3 * i) return false;
      if (!is_shifted(starts[i - 2], starts[i - 1], starts[i], columns)) continue;
      bits_.data()[i / 64] |= std::uint64_t{1} << (i % 64);
      ++found;
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
  static bool is_shifted(std::int32_t before, std::int32_t start, std::int32_t end,
                         const std::int32_t* columns) noexcept {
    const std::int32_t length = end - start;
    if (length == 0 || length != start - before) return false;
    const std::int32_t* const first = columns + (before - 1);
    const std::int32_t* const second = columns + (start - 1);
    if (second[0] - first[0] != 1) return false;
    std::int32_t differing = 0;
    for (std::int32_t t = 1; t < length; ++t) differing |= (second[t] - first[t]) ^ 1;
    return differing == 0;
  }

  scratch<std::uint64_t> bits_;
};

}  // namespace csr_matrix_mod::products
