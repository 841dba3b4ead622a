// SPDX-License-Identifier: MIT
// Eight bytes of memory as one word whose lowest byte is the first.
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

// Eight bytes, or four.
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

}  // namespace csr_matrix_mod
