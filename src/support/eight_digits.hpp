// SPDX-License-Identifier: MIT
// Eight decimal digits at once, as the bytes of one word whose lowest byte is the first digit.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

namespace csr_matrix_mod {

// Words and text agree only where the lowest byte comes first; elsewhere fields go the general way.
inline constexpr bool words_are_text = std::endian::native == std::endian::little;

inline std::uint64_t load_word(const char* from) noexcept {
  std::uint64_t word = 0;
  std::memcpy(&word, from, sizeof word);
  return word;
}

inline void store_word(char* to, std::uint64_t word) noexcept {
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

// The digits, each a byte of 0 to 9, of a number below 10**8. Split in two, four and eight, all parts
// of a step by one multiplication: 10486 / 2**20 is 1/100 and 103 / 2**10 is 1/10 for these.
constexpr std::uint64_t digits_of(std::uint32_t number) noexcept {
  const std::uint64_t fours = number / 10000 | std::uint64_t{number % 10000} << 32;
  const std::uint64_t hundreds = ((fours * 10486) >> 20) & 0x0000007f0000007fU;
  const std::uint64_t twos = hundreds | (fours - 100 * hundreds) << 16;
  const std::uint64_t tens = ((twos * 103) >> 10) & 0x000f000f000f000fU;
  return tens | (twos - 10 * tens) << 8;
}

constexpr bool are_digits(std::uint64_t text) noexcept {
  constexpr std::uint64_t high = eight_times('\xf0');
  constexpr std::uint64_t zeros = eight_times('0');
  return (text & high) == zeros && ((text + eight_times(6)) & high) == zeros;
}

// The number that eight digits make; two, four and eight of them a step.
constexpr std::uint32_t number_of(std::uint64_t text) noexcept {
  const std::uint64_t digits = text & eight_times(15);
  const std::uint64_t twos = (digits * 10 + (digits >> 8)) & 0x00ff00ff00ff00ffU;
  const std::uint64_t fours = (twos * 100 + (twos >> 16)) & 0x0000ffff0000ffffU;
  return static_cast<std::uint32_t>(fours * 10000 + (fours >> 32));
}

static_assert(digits_of(12345678) == 0x0807060504030201U && digits_of(99999999) == eight_times(9));
static_assert(number_of(digits_of(12345678)) == 12345678);

}  // namespace csr_matrix_mod
