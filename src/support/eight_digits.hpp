// SPDX-License-Identifier: MIT
// Eight columns of text as one word whose lowest byte is the first column.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

namespace csr_matrix_mod {

// Where the highest byte comes first in memory, words are turned round on their way.
constexpr std::uint64_t lowest_first(std::uint64_t word) noexcept {
  if constexpr (std::endian::native == std::endian::little) return word;
  constexpr std::uint64_t bytes = 0x00ff00ff00ff00ffU;
  constexpr std::uint64_t pairs = 0x0000ffff0000ffffU;
  word = (word & bytes) << 8 | (word >> 8 & bytes);
  word = (word & pairs) << 16 | (word >> 16 & pairs);
  return word << 32 | word >> 32;
}

constexpr std::uint32_t lowest_first(std::uint32_t word) noexcept {
  if constexpr (std::endian::native == std::endian::little) return word;
  return static_cast<std::uint32_t>(lowest_first(std::uint64_t{word}) >> 32);
}

inline std::uint64_t load_word(const char* from) noexcept {
  std::uint64_t word = 0;
  std::memcpy(&word, from, sizeof word);
  return lowest_first(word);
}

// Eight columns, or four.
template <class Word>
void store_word(char* to, Word word) noexcept {
  word = lowest_first(word);
  std::memcpy(to, &word, sizeof word);
}

// The same byte eight times.
constexpr std::uint64_t eight_times(char byte) noexcept {
  return 0x0101010101010101U * static_cast<unsigned char>(byte);
}

// The lowest `count` bytes, at most 7.
constexpr std::uint64_t low_bytes(unsigned count) noexcept {
  return (std::uint64_t{1} << (8 * count)) - 1;
}

// All bits below the lowest one; all bits if there is none.
constexpr std::uint64_t bits_below_lowest(std::uint64_t word) noexcept {
  return (word - 1) & ~word;
}

constexpr bool are_digits(std::uint64_t text) noexcept {
  constexpr std::uint64_t high = eight_times('\xf0');
  return ((text & high) | ((text + eight_times(6)) & high) >> 4) == eight_times('\x33');
}

// The number that eight digits make; two, four and eight of them a step. A step multiplies by ten
// to the power of its parts and by one, the sum landing in the upper part.
constexpr std::uint32_t number_of(std::uint64_t text) noexcept {
  const std::uint64_t digits = text & eight_times(15);
  const std::uint64_t twos = (digits * ((10U << 8) + 1) >> 8) & 0x00ff00ff00ff00ffU;
  const std::uint64_t fours = (twos * ((100U << 16) + 1) >> 16) & 0x0000ffff0000ffffU;
  return static_cast<std::uint32_t>(fours * ((std::uint64_t{10000} << 32) + 1) >> 32);
}

static_assert(number_of(0x3837363534333231U) == 12345678 && are_digits(0x3837363534333231U));
static_assert(number_of(eight_times('9')) == 99999999 && !are_digits(0x383736353433312fU));

}  // namespace csr_matrix_mod
