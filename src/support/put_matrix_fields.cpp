// SPDX-License-Identifier: MIT
#include "eight_digits.hpp"
#include "matrix_fields.hpp"

#include <array>
#include <cstddef>

namespace csr_matrix_mod {

namespace {

__extension__ using wide = unsigned __int128;

constexpr int digits = 8;
constexpr std::uint32_t smallest_of_8_digits = 10'000'000;
constexpr std::uint32_t smallest_of_9_digits = 100'000'000;

// Magnitudes are 0.dddddddd times 10**k. The decided k are those whose power of five below fits a
// word or two; no other room is taken for the others, which matrices hardly hold.
constexpr int lowest_k = digits - 55;
constexpr int highest_k = digits + 27;
constexpr auto count_of_k = static_cast<std::size_t>(highest_k - lowest_k + 1);

constexpr wide power_of_five(int n) noexcept {
  wide power = 1;
  for (; n > 0; --n) power *= 5;
  return power;
}

constexpr int bit_length(wide value) noexcept {
  const auto high = static_cast<std::uint64_t>(value >> 64);
  return high != 0 ? 128 - std::countl_zero(high)
                   : 64 - std::countl_zero(static_cast<std::uint64_t>(value));
}

// 10**n is `mantissa` * 2**`exponent`, the mantissa of 64 bits cut, not rounded.
struct power_of_ten {
  std::uint64_t mantissa;
  int exponent;
};

constexpr power_of_ten to_the_power(int n) noexcept {
  const wide five = power_of_five(n < 0 ? -n : n);
  const int length = bit_length(five);
  if (n < 0)
    return {static_cast<std::uint64_t>((wide{1} << (63 + length)) / five), n - 63 - length};
  const wide mantissa = length > 64 ? five >> (length - 64) : five << (64 - length);
  return {static_cast<std::uint64_t>(mantissa), n + length - 64};
}

// What is known of each k.
struct magnitude {
  double limit;         // from here on k is one more
  power_of_ten scale;   // 10**(8-k)
  std::uint32_t point;  // digits before the point
  std::uint32_t tail;   // the last four columns: blanks, or the exponent
};

constexpr std::uint32_t four_columns(char a, char b, char c, char d) noexcept {
  return static_cast<std::uint32_t>(a) | static_cast<std::uint32_t>(b) << 8 |
         static_cast<std::uint32_t>(c) << 16 | static_cast<std::uint32_t>(d) << 24;
}

// Between fixed notation and exponent form stands the general way's limit, bit for bit; between two
// exponents any double next to the power of ten does, as both sides round to the same digits there.
constexpr double limit_above(int k) noexcept {
  if (-1 <= k && k <= digits) return rounds_to_power(k, digits);
  double power = 1.0;
  for (int n = 0; n < k; ++n) power *= 10.0;
  for (int n = 0; n > k; --n) power /= 10.0;
  return power;
}

constexpr std::array<magnitude, count_of_k> magnitudes = [] {
  std::array<magnitude, count_of_k> all{};
  for (int k = lowest_k; k <= highest_k; ++k) {
    const bool fixed = 0 <= k && k <= digits;
    const int size = k < 0 ? -k : k;
    all[static_cast<std::size_t>(k - lowest_k)] = {
        limit_above(k), to_the_power(digits - k), fixed ? static_cast<std::uint32_t>(k) : 0,
        fixed ? four_columns(' ', ' ', ' ', ' ')
              : four_columns('E', k < 0 ? '-' : '+', static_cast<char>('0' + size / 10),
                             static_cast<char>('0' + size % 10))};
  }
  return all;
}();

// A field with its point behind the first `point` digits and, if that is none, a 0 in front of it.
void put_columns(char* to, std::uint64_t text, bool negative, std::uint32_t point,
                 std::uint32_t tail) noexcept {
  const bool all_in_front = point == digits;
  const std::uint64_t front = low_bytes(point & 7U);
  const std::uint64_t pointed =
      (text & front) | std::uint64_t{'.'} << (8 * (point & 7U)) | (text & ~front) << 8;
  const char last = static_cast<char>(text >> 56);
  const char sign = negative ? '-' : ' ';
  store_word(to, eight_times(' '));
  to[5] = point == 0 ? sign : ' ';
  to[6] = point == 0 ? '0' : sign;
  store_word(to + 7, all_in_front ? text : pointed);
  to[15] = all_in_front ? '.' : last;
  std::memcpy(to + 16, &tail, sizeof tail);
}

// False where a product of 64 by 64 bits does not decide the eight digits. It is `high` * 2**64 or
// more and less than `high + 2` * 2**64, as the mantissa of the scale is cut by less than one unit,
// so its rounding is known unless a half lies in between.
bool put_decided(char* to, double value) noexcept {
  const auto bits = std::bit_cast<std::uint64_t>(value);
  const bool negative = bits >> 63 != 0;
  const int exponent = static_cast<int>(bits >> 52 & 0x7ff) - 1023;
  if (bits << 1 == 0) {
    put_columns(to, eight_times('0'), negative, 1, four_columns(' ', ' ', ' ', ' '));
    return true;
  }
  // The powers of ten up to 2**exponent; the next one may still be within its double.
  const int k = ((exponent * 78913) >> 18) + 1;
  if (k < lowest_k || k >= highest_k) return false;
  const magnitude* found = &magnitudes[static_cast<std::size_t>(k - lowest_k)];
  const double size = std::bit_cast<double>(bits & ~(std::uint64_t{1} << 63));
  found += size >= found->limit ? 1 : 0;
  const std::uint64_t mantissa = bits << 11 | std::uint64_t{1} << 63;
  const auto high = static_cast<std::uint64_t>((wide{mantissa} * found->scale.mantissa) >> 64);
  const int fraction_bits = 63 - 64 - exponent - found->scale.exponent;
  const std::uint64_t half = std::uint64_t{1} << (fraction_bits - 1);
  const std::uint64_t fraction = high & (2 * half - 1);
  if (fraction - (half - 1) <= 1) return false;
  const auto number = static_cast<std::uint32_t>((high + half) >> fraction_bits);
  if (number - smallest_of_8_digits >= smallest_of_9_digits - smallest_of_8_digits) return false;
  put_columns(to, digits_of(number) + eight_times('0'), negative, found->point, found->tail);
  return true;
}

}  // namespace

char* put_i10(char* to, std::int32_t value) noexcept {
  const auto number = static_cast<std::uint32_t>(value);
  if (!words_are_text || number >= smallest_of_9_digits) return put_integer(to, value, i10_columns);
  const std::uint64_t text = digits_of(number);
  // Blanks before the first digit that is not 0, or before the last.
  const auto blanks = static_cast<unsigned>(std::countr_zero(text | std::uint64_t{1} << 56)) / 8U;
  std::memset(to, ' ', 2);
  store_word(to + 2, text + eight_times('0') - (eight_times(0x10) & low_bytes(blanks)));
  return to + i10_columns;
}

char* put_g20_8(char* to, double value) noexcept {
  if (!words_are_text || !put_decided(to, value)) return put_general(to, value, g20_8);
  return to + g20_8_columns;
}

}  // namespace csr_matrix_mod
