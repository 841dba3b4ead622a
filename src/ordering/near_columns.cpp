// SPDX-License-Identifier: MIT
#include "near_columns.hpp"

#include "../support/vector_registers.hpp"

#include <algorithm>
#include <bit>
#include <cstddef>

namespace csr_matrix_mod {

namespace {

constexpr std::int32_t most_slots = 1 << 16;  // bits and counts, which the fastest cache holds
constexpr std::int32_t bits_of_a_word = 64;
constexpr std::size_t few_words = 16;

// Columns may be any numbers, and as far apart.
std::uint32_t slot(std::int32_t low, std::int32_t column) {
  return static_cast<std::uint32_t>(column) - static_cast<std::uint32_t>(low);
}

bool within(std::uint32_t spread, std::int32_t one, std::int32_t other) {
  return slot(one, other) + spread <= 2 * spread;
}

// Inlined into one function for every way to count bits.
template <std::int32_t ColumnsAnEntry>
[[gnu::always_inline]] inline bool sort(const std::int32_t* columns, const double* values,
                                        std::int32_t length, std::uint64_t* slots, double* room,
                                        std::int32_t* to, double* new_values) {
  const auto spread =
      static_cast<std::uint32_t>(ColumnsAnEntry * std::min(length, most_slots / ColumnsAnEntry));
  // Two looks tell most rows that are spread widely.
  if (!within(spread, columns[0], columns[length - 1]) ||
      !within(spread, columns[0], columns[length / 2]))
    return false;
  std::int32_t low = columns[0];
  std::int32_t high = columns[0];
  for (std::int32_t k = 1; k < length; ++k) {
    low = std::min(low, columns[k]);
    high = std::max(high, columns[k]);
  }
  if (slot(low, high) >= spread) return false;

  std::uint64_t taken[most_slots / bits_of_a_word];
  std::int32_t before[most_slots / bits_of_a_word];
  const std::size_t words = slot(low, high) / bits_of_a_word + 1;
  // Few words are set in turn in four copies, or each bit would wait for the one before: of 101
  // diagonals 1.3 times as fast.
  const bool in_copies = words <= few_words;
  const std::size_t copies = in_copies ? 4 : 1;
  std::fill_n(taken, in_copies ? copies * few_words : words, std::uint64_t{0});
  for (std::int32_t k = 0; k < length; ++k) {
    const std::uint32_t s = slot(low, columns[k]);
    slots[k] = s;
    const std::size_t copy = static_cast<std::size_t>(k) & (copies - 1);
    taken[copy * few_words + s / bits_of_a_word] |= std::uint64_t{1} << s % bits_of_a_word;
  }
  for (std::size_t copy = 1; copy < copies; ++copy)
    for (std::size_t word = 0; word < few_words; ++word)
      taken[word] |= taken[copy * few_words + word];
  std::int32_t different = 0;
  for (std::size_t word = 0; word < words; ++word) {
    before[word] = different;
    different += std::popcount(taken[word]);
  }
  if (different != length) return false;

  if (values != nullptr) std::copy_n(values, length, room);
  for (std::int32_t k = 0; k < length; ++k) {
    const std::uint64_t s = slots[k];
    const std::uint64_t below = (std::uint64_t{1} << s % bits_of_a_word) - 1;
    const std::int32_t place =
        before[s / bits_of_a_word] + std::popcount(taken[s / bits_of_a_word] & below);
    to[place] = low + static_cast<std::int32_t>(s);
    if (values != nullptr) new_values[place] = room[k];
  }
  return true;
}

bool sort_anywhere(const std::int32_t* columns, const double* values, std::int32_t length,
                   std::uint64_t* slots, double* room, std::int32_t* to, double* new_values) {
  return sort<16>(columns, values, length, slots, room, to, new_values);
}

#if CSR_MATRIX_MOD_WIDE_REGISTERS

[[gnu::target("avx2,popcnt")]] bool sort_counting_bits(const std::int32_t* columns,
                                                       const double* values, std::int32_t length,
                                                       std::uint64_t* slots, double* room,
                                                       std::int32_t* to, double* new_values) {
  return sort<128>(columns, values, length, slots, room, to, new_values);
}

#endif

}  // namespace

near_columns& sort_near_columns() noexcept {
#if CSR_MATRIX_MOD_WIDE_REGISTERS
  if (detail::widest_registers() >= detail::registers::of_32_bytes) return sort_counting_bits;
#endif
  return sort_anywhere;
}

}  // namespace csr_matrix_mod
