// SPDX-License-Identifier: MIT
// The place that each column of a row takes in ascending order: how many of them are smaller, of
// which vector registers compare several at a time. With 32 bytes rows of 33 to 64 entries of
// random columns take 0.55 of the time that 16 take, rows of up to 128 are faster than by radix.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace csr_matrix_mod {

template <std::size_t Bytes>
struct columns_at_once {
  typedef std::int32_t type __attribute__((vector_size(Bytes)));  // NOLINT(modernize-use-using)
  static constexpr std::int32_t number = Bytes / sizeof(std::int32_t);
};

// Writes the places of `length` columns. Are all different, and their places 0, 1, 2 and so on?
// `room` columns, no fewer, a multiple of what two registers hold, are read, and as many places
// written.
template <std::size_t Bytes>
[[gnu::always_inline]] inline bool rank_columns(const std::int32_t* column, std::int32_t length,
                                                std::int32_t room, std::int32_t* place) {
  using at_once = columns_at_once<Bytes>;
  using lanes = typename at_once::type;
  for (std::int32_t first = 0; first < room; first += 2 * at_once::number) {
    lanes low;
    lanes high;
    std::memcpy(&low, column + first, sizeof low);
    std::memcpy(&high, column + first + at_once::number, sizeof high);
    lanes below_low{};
    lanes below_high{};
    for (std::int32_t k = 0; k < length; ++k) {
      const lanes other = lanes{} + column[k];
      below_low -= other < low;
      below_high -= other < high;
    }
    std::memcpy(place + first, &below_low, sizeof below_low);
    std::memcpy(place + first + at_once::number, &below_high, sizeof below_high);
  }
  std::int32_t sum = 0;
  for (std::int32_t k = 0; k < length; ++k) sum += place[k];
  return sum == length * (length - 1) / 2;
}

// As `rank_columns`; columns are read, and places written, up to a multiple of 16.
struct column_ranks {
  std::int32_t longest;  // row for which this is faster than by radix
  bool (*rank)(const std::int32_t* column, std::int32_t length, std::int32_t* place);
};

// In the widest registers that are of use.
[[nodiscard]] const column_ranks& ranks_in_widest_registers() noexcept;

}  // namespace csr_matrix_mod
