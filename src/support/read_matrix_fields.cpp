// SPDX-License-Identifier: MIT
#include "eight_digits.hpp"
#include "matrix_fields.hpp"

#include <array>
#include <cstddef>

namespace csr_matrix_mod {

namespace {

// Powers of ten that are doubles without rounding: a number of eight digits times or by one of them
// is rounded once, so correctly.
constexpr std::array<double, 23> exact_powers = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                 1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr int largest_exact_power = 22;

constexpr bool is_digit(char c) noexcept { return '0' <= c && c <= '9'; }

// The index of the first byte of `word` that is `byte`, or 8.
unsigned place_of(std::uint64_t word, char byte) noexcept {
  const std::uint64_t others = word ^ eight_times(byte);
  const std::uint64_t found = (others - eight_times(1)) & ~others & eight_times('\x80');
  return static_cast<unsigned>(std::countr_zero(found)) / 8U;
}

// The exponent in the four columns behind the digits: blanks, or E, a sign and two digits.
std::optional<int> exponent_of(const char* tail) noexcept {
  if (std::memcmp(tail, "    ", 4) == 0) return 0;
  if (tail[0] != 'E' || (tail[1] != '-' && tail[1] != '+')) return {};
  if (!is_digit(tail[2]) || !is_digit(tail[3])) return {};
  const int size = 10 * (tail[2] - '0') + (tail[3] - '0');
  return tail[1] == '-' ? -size : size;
}

}  // namespace

std::optional<std::int32_t> quick_i10(const char* field) noexcept {
  if (!words_are_text || field[0] != ' ' || field[1] != ' ') return {};
  std::uint64_t text = load_word(field + 2);
  const auto blanks = static_cast<unsigned>(std::countr_zero(text ^ eight_times(' '))) / 8U;
  if (blanks == 8) return {};
  text |= eight_times(0x10) & low_bytes(blanks);  // a blank becomes a 0
  if (!are_digits(text)) return {};
  return static_cast<std::int32_t>(number_of(text));
}

std::optional<double> quick_g20_8(const char* field) noexcept {
  if (!words_are_text) return {};
  // Columns 8 to 16 hold eight digits with the point somewhere among them.
  const std::uint64_t before = load_word(field + 7);
  const std::uint64_t behind = load_word(field + 8);
  const unsigned point = place_of(before, '.');
  if (point == 8 && field[15] != '.') return {};
  const std::uint64_t front = point == 8 ? ~std::uint64_t{0} : low_bytes(point);
  const std::uint64_t text = (before & front) | (behind & ~front);
  if (!are_digits(text)) return {};

  // Before them come blanks and a sign, and a 0 if the point is the first.
  constexpr std::uint64_t blanks = eight_times(' ') >> 8;
  constexpr std::uint64_t minus = ' ' ^ '-';
  constexpr std::uint64_t zero = std::uint64_t{' ' ^ '0'} << 48;
  const std::uint64_t others = (load_word(field) & low_bytes(7)) ^ blanks ^ (point == 0 ? zero : 0);
  const bool negative = others != 0;
  if (negative && others != minus << (point == 0 ? 40 : 48)) return {};

  const std::optional<int> exponent = exponent_of(field + 16);
  if (!exponent) return {};
  const int power = *exponent + static_cast<int>(point) - 8;
  if (power < -largest_exact_power || power > largest_exact_power) return {};
  const double digits = number_of(text);
  const double size = power < 0 ? digits / exact_powers[static_cast<std::size_t>(-power)]
                                : digits * exact_powers[static_cast<std::size_t>(power)];
  return negative ? -size : size;
}

}  // namespace csr_matrix_mod
