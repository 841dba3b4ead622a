// SPDX-License-Identifier: MIT
// Narrow rows of sums where they lie, in vector registers: 8 elements of a right row are loaded,
// multiplied, spread over the places to which their paths lead, and added. Paths to one place keep
// their order, so no bit differs. Nothing is turned as in `side_by_side`: A A for the 5-point
// stencil 1.2 times as fast, 1.4 times in recycled memory, where it is 1.15 times for 7 points.
#pragma once

#include <array>
#include <cstdint>

namespace csr_matrix_mod::products {

inline constexpr std::int32_t places_at_once = 8;
inline constexpr std::int32_t most_parts = 4;
inline constexpr std::int32_t widest_spread = most_parts * places_at_once;

// The paths over one left entry to 8 elements of its right row.
struct spread_step {
  std::int32_t entry;   // of the left row, from 0 on
  std::int32_t column;  // of that entry, relative to the row
  std::int32_t length;  // of the right row
  std::int32_t first;   // of the 8 elements, from 0 on
  // For each 8 places one byte a place, the element that leads to it, and one bit, if one does.
  std::array<std::uint64_t, most_parts> elements;
  std::array<std::uint64_t, most_parts> reached;
};

// Some rows of `width` sums, at most 32, of so many steps. `left` has `entries` factors for each
// row. The right row of column c starts at `starts[c]`, from 1 on, and stands before that for the
// next row of the product; 7 values behind the last one may be read.
using spread_kernel = void(const spread_step* steps, std::int32_t number, std::int32_t width,
                           const double* left, std::int32_t entries, const double* right,
                           const std::int32_t* starts, std::int32_t number_of_rows, double* rows);

// Null where registers are too narrow.
[[nodiscard]] spread_kernel* spread_in_widest_registers() noexcept;

}  // namespace csr_matrix_mod::products
