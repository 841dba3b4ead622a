// SPDX-License-Identifier: MIT
// A g20.8 field with its line's end takes 4.3 ns instead of 37 to 61 the general way, an i10 field
// 1.0 instead of 8.4. Digits from tables of four rather than calculated are 30 % of the one and
// half of the other; a multiplication of doubles rather than of integers of 128 bits 25 % of the
// first.
#include "eight_bytes.hpp"
#include "matrix_fields.hpp"

#include <algorithm>
#include <array>
#include <cstddef>

namespace csr_matrix_mod {

namespace {

// ---------------------------------------------------------------------------------- four digits

constexpr std::uint32_t four_columns(char a, char b, char c, char d) noexcept {
  return static_cast<std::uint32_t>(a) | static_cast<std::uint32_t>(b) << 8 |
         static_cast<std::uint32_t>(c) << 16 | static_cast<std::uint32_t>(d) << 24;
}

constexpr char digit_of(std::uint32_t number) noexcept {
  return static_cast<char>('0' + number % 10);
}

// 0 to 9999 with leading zeros, and with blanks in their place: 0 is all blank then.
struct digit_tables {
  std::array<std::uint32_t, 10000> zeros;
  std::array<std::uint32_t, 10000> blanks;
};

constexpr digit_tables four_digits = [] {
  digit_tables all{};
  for (std::uint32_t k = 0; k < all.zeros.size(); ++k) {
    const std::uint32_t text =
        four_columns(digit_of(k / 1000), digit_of(k / 100), digit_of(k / 10), digit_of(k));
    const std::uint32_t leading = k >= 1000  ? 0
                                  : k >= 100 ? 0x10
                                  : k >= 10  ? 0x1010
                                  : k >= 1   ? 0x101010
                                             : 0x10101010;
    all.zeros[k] = text;
    all.blanks[k] = text - leading;
  }
  return all;
}();

// -------------------------------------------------------------------------------------- integers

constexpr std::uint32_t smallest_of_9_digits = 100'000'000;

inline void put_integer_columns(char* to, std::int32_t value) noexcept {
  const auto number = static_cast<std::uint32_t>(value);
  if (number - 1 >= smallest_of_9_digits - 1) {
    put_integer(to, value, i10_columns);
    return;
  }
  const std::uint32_t upper = number / 10000;
  const std::uint32_t lower = number % 10000;
  std::memset(to, ' ', 2);
  store_word(to + 2, four_digits.blanks[upper]);
  store_word(to + 6, (upper == 0 ? four_digits.blanks : four_digits.zeros)[lower]);
}

// ---------------------------------------------------------------------------------------- values

constexpr int digits = 8;

// Magnitudes are 0.dddddddd times 10**k. These k are decided here, with an exponent of two digits;
// matrices hardly hold the others.
constexpr int lowest_k = -90;
constexpr int highest_k = 90;
constexpr auto count_of_k = static_cast<std::size_t>(highest_k - lowest_k + 1);

// What is known of each k. Words are columns of the field: the first eight, eight from the 8th on
// and eight from the 9th on, which overlap as the point stands among the digits.
struct magnitude {
  double limit;            // from here on k is one more
  double scale;            // 10**(8-k)
  std::uint64_t head;      // columns 1 to 7, without a sign
  std::uint64_t sign;      // what makes a minus of a blank there
  std::uint64_t in_front;  // of the eight digits those before the point
  std::uint64_t behind;    // and those behind it
  std::uint64_t point;     // the point if it stands in front of all digits
  std::uint64_t point_in;  // or else, from the 9th column on
  std::uint32_t tail;      // columns 17 to 20: blanks or the exponent
};

constexpr double power_of_ten(int n) noexcept {
  double power = 1.0;
  for (; n > 0; --n) power *= 10.0;
  for (; n < 0; ++n) power /= 10.0;
  return power;
}

// Between fixed notation and exponent form stands the general way's limit, bit for bit. Elsewhere
// it stands a little above the half between 0.99999999 and 1, by more than its own rounding: what
// lies in between is too near to that half to be decided.
constexpr double limit_above(int k) noexcept {
  if (-1 <= k && k <= digits) return rounds_to_power(k, digits);
  return power_of_ten(k) * (1.0 - 0.499995e-8);
}

constexpr magnitude magnitude_of(int k) noexcept {
  const bool fixed = 0 <= k && k <= digits;
  const auto point = fixed ? static_cast<unsigned>(k) : 0;
  const auto size = static_cast<std::uint32_t>(k < 0 ? -k : k);
  magnitude of{};
  of.limit = limit_above(k);
  of.scale = power_of_ten(digits - k);
  of.head = eight_times(' ') ^ (point == 0 ? std::uint64_t{' ' ^ '0'} << 48 : 0);
  of.sign = std::uint64_t{' ' ^ '-'} << (point == 0 ? 40 : 48);
  of.in_front = point == digits ? ~std::uint64_t{0} : low_bytes(point);
  of.behind = ~of.in_front;
  of.point = point == 0 ? '.' : 0;
  of.point_in = point == 0 ? 0 : std::uint64_t{'.'} << (8 * (point - 1));
  of.tail = fixed ? four_columns(' ', ' ', ' ', ' ')
                  : four_columns('E', k < 0 ? '-' : '+', digit_of(size / 10), digit_of(size));
  return of;
}

constexpr std::array<magnitude, count_of_k> magnitudes = [] {
  std::array<magnitude, count_of_k> all{};
  for (int k = lowest_k; k <= highest_k; ++k)
    all[static_cast<std::size_t>(k - lowest_k)] = magnitude_of(k);
  return all;
}();

// For each exponent of a double the place of its k above: that of the powers of ten up to
// 2**exponent. The next one may still be within its double.
constexpr std::uint8_t no_place = 255;
constexpr std::array<std::uint8_t, 2048> places = [] {
  std::array<std::uint8_t, 2048> all{};
  for (int biased = 0; biased < 2048; ++biased) {
    const int k = (((biased - 1023) * 78913) >> 18) + 1;
    all[static_cast<std::size_t>(biased)] =
        lowest_k <= k && k < highest_k ? static_cast<std::uint8_t>(k - lowest_k) : no_place;
  }
  return all;
}();

void put_columns(char* to, std::uint64_t text, bool negative, const magnitude& of) noexcept {
  const std::uint64_t from_9 = (text & of.behind) | of.point_in;
  store_word(to, of.head ^ (of.sign & (0 - std::uint64_t{negative})));
  store_word(to + 8, from_9);
  store_word(to + 7, (text & of.in_front) | of.point | from_9 << 8);
  store_word(to + 16, of.tail);
}

// False where the eight digits are not decided: the power of ten is off by some roundings, so a
// fraction too near to a half could go either way. All errors, below 100 times 2**-53 of a number
// below 2**27, stay far below the margin of 2**-16.
inline bool put_decided(char* to, double value) noexcept {
  constexpr double margin = 0x1p-16;
  const auto bits = std::bit_cast<std::uint64_t>(value);
  const bool negative = bits >> 63 != 0;
  const std::uint8_t place = places[bits >> 52 & 0x7ff];
  if (place == no_place) {
    if (value != 0.0) return false;
    put_columns(to, eight_times('0'), negative, magnitudes[1 - lowest_k]);
    return true;
  }
  const auto size = std::bit_cast<double>(bits & ~(std::uint64_t{1} << 63));
  const magnitude* of = &magnitudes[place];
  of += size >= of->limit ? 1 : 0;
  const double scaled = size * of->scale;
  // Where the sum is rounded, the fraction is too near to a half.
  // NOLINTNEXTLINE(bugprone-incorrect-roundings)
  const auto number = static_cast<std::int32_t>(scaled + 0.5);
  const double off = scaled - number;
  if (!(-0.5 + margin < off && off < 0.5 - margin)) return false;
  const auto whole = static_cast<std::uint32_t>(number);
  const std::uint64_t text =
      four_digits.zeros[whole / 10000] | std::uint64_t{four_digits.zeros[whole % 10000]} << 32;
  put_columns(to, text, negative, *of);
  return true;
}

inline void put_value_columns(char* to, double value) noexcept {
  if (!put_decided(to, value)) put_general(to, value, g20_8);
}

}  // namespace

char* put_i10(char* to, std::int32_t value) noexcept {
  put_integer_columns(to, value);
  return to + i10_columns;
}

char* put_g20_8(char* to, double value) noexcept {
  put_value_columns(to, value);
  return to + g20_8_columns;
}

char* put_i10_lines(char* to, const std::int32_t* values, std::int64_t count) noexcept {
  for (std::int64_t k = 0; k < count; ++k, to += i10_columns + 1) {
    put_integer_columns(to, values[k]);
    to[i10_columns] = '\n';
  }
  return to;
}

char* put_g20_8_lines(char* to, const double* values, std::int64_t count) noexcept {
  for (std::int64_t k = 0; k < count; ++k, to += g20_8_columns + 1) {
    put_value_columns(to, values[k]);
    to[g20_8_columns] = '\n';
  }
  return to;
}

}  // namespace csr_matrix_mod
