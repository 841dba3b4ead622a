// SPDX-License-Identifier: MIT
// Eight columns of text that are digits, as one word.
#pragma once

#include "eight_bytes.hpp"

#include <cstdint>

namespace csr_matrix_mod {

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
