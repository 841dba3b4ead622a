// SPDX-License-Identifier: MIT
// Rows of sums side by side in vector registers: one row a lane, so that each sum takes its terms
// in their order and no bit depends on how wide the registers are. A A for the 27-point stencil:
// 1.1 to 1.2 times as fast with 32 bytes as with 16, 1.2 to 1.3 times with 64; for the 5-point one
// 1.1 times with 32.
#pragma once

#include <cstdint>

namespace csr_matrix_mod::products {

// So many rows are summed at a time.
inline constexpr std::int32_t rows_at_once = 16;

struct side_by_side {
  // Element (r, c) of `number` rows of `width` goes to `out[c * stride + r]`: rows are turned into
  // columns. Elements may be written twice, with the same value.
  void (*turn)(const double* rows, std::int32_t number, std::int32_t width, double* out,
               std::int32_t stride);

  // to[t] = from[t] + by, for `number` elements.
  void (*move)(const std::int32_t* from, std::int32_t number, std::int32_t by, std::int32_t* to);

  // 16 sums for each of `width` places. A term is a pair of offsets, of 16 left factors and of 16
  // right ones; those of place q end before `terms[ends[q]]`, and each place has at least one.
  void (*sum)(const std::int32_t* terms, const std::int32_t* ends, std::int32_t width,
              const double* left, const double* right, double* sums);
};

// In the widest registers there are: those of 16 bytes, which every machine of this kind has, or
// wider ones.
[[nodiscard]] const side_by_side& in_widest_registers() noexcept;

}  // namespace csr_matrix_mod::products
