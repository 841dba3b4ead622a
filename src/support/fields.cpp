// SPDX-License-Identifier: MIT
#include "fields.hpp"

#include <algorithm>
#include <array>
#include <cassert>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace csr_matrix_mod {

namespace {

// -------------------------------------------------------------------------------------- writing

char* put_right(char* to, std::string_view text, int width) noexcept {
  const auto columns = static_cast<std::size_t>(width);
  if (text.size() > columns) {
    std::memset(to, '*', columns);
  } else {
    std::memset(to, ' ', columns - text.size());
    std::memcpy(to + (columns - text.size()), text.data(), text.size());
  }
  return to + columns;
}

constexpr int exponent_form = -1;

// How many digits stand before the decimal point in fixed notation, or `exponent_form`.
int digits_before_point(double magnitude, int digits) noexcept {
  if (magnitude == 0.0) return 1;
  if (magnitude < rounds_to_power(-1, digits)) return exponent_form;
  for (int k = 0; k <= digits; ++k)
    if (magnitude < rounds_to_power(k, digits)) return k;
  return exponent_form;
}

// Room for a sign, 17 digits, a point and an exponent.
using number_text = std::array<char, 32>;

std::string_view fixed_text(number_text& text, double value, int decimals) noexcept {
  char* end = std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed,
                            decimals)
                  .ptr;
  if (decimals == 0) *end++ = '.';
  return {text.data(), static_cast<std::size_t>(end - text.data())};
}

// The letter gives way to a third digit where the columns would not do.
char* put_exponent(char* to, int exponent, int columns) noexcept {
  const int size = std::abs(exponent);
  int digits = columns - 2;
  if (digits == 2 && size > 99)
    digits = 3;
  else
    *to++ = 'E';
  *to++ = exponent < 0 ? '-' : '+';
  if (digits == 3) *to++ = static_cast<char>('0' + size / 100);
  *to++ = static_cast<char>('0' + size / 10 % 10);
  *to++ = static_cast<char>('0' + size % 10);
  return to;
}

std::string_view exponent_text(number_text& text, double value, const general_form& form) noexcept {
  number_text plain;  // -d.dddde-dd
  const char* const plain_end = std::to_chars(plain.data(), plain.data() + plain.size(), value,
                                              std::chars_format::scientific, form.digits - 1)
                                    .ptr;
  const char* from = plain.data();
  char* to = text.data();
  if (*from == '-') *to++ = *from++;
  const char* const mantissa_end = from + form.digits + 1;
  int exponent = 0;
  std::from_chars(mantissa_end + (mantissa_end[1] == '+' ? 2 : 1), plain_end, exponent);
  if (form.digits_in_front == 0) {
    *to++ = '0';
    *to++ = '.';
    *to++ = *from;
    to = std::copy(from + 2, mantissa_end, to);
    ++exponent;
  } else {
    to = std::copy(from, mantissa_end, to);
  }
  to = put_exponent(to, exponent, form.exponent_columns);
  return {text.data(), static_cast<std::size_t>(to - text.data())};
}

// -------------------------------------------------------------------------------------- reading

constexpr bool is_digit(char c) noexcept { return '0' <= c && c <= '9'; }
constexpr bool is_sign(char c) noexcept { return c == '+' || c == '-'; }
constexpr char lower(char c) noexcept {
  return 'A' <= c && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

constexpr bool is_alphanumeric(char c) noexcept {
  return is_digit(c) || ('a' <= lower(c) && lower(c) <= 'z');
}

// The characters of a field that count.
class field_text {
 public:
  explicit field_text(std::string_view columns) noexcept
      : rest_(columns.substr(0, columns.find(','))) {
    pass_blanks();
  }

  [[nodiscard]] bool empty() const noexcept { return rest_.empty(); }
  [[nodiscard]] bool at_last_column() const noexcept { return rest_.size() == 1; }
  [[nodiscard]] char front() const noexcept { return rest_.empty() ? '\0' : rest_.front(); }
  [[nodiscard]] std::string_view with_blanks() const noexcept { return rest_; }

  void advance() noexcept {
    rest_.remove_prefix(1);
    pass_blanks();
  }

 private:
  void pass_blanks() noexcept {
    while (!rest_.empty() && rest_.front() == ' ') rest_.remove_prefix(1);
  }

  std::string_view rest_;
};

// A sign needs a column behind it, be it blank: false where there is none.
bool pass_sign(field_text& field) noexcept {
  if (!is_sign(field.front())) return true;
  if (field.at_last_column()) return false;
  field.advance();
  return true;
}

// An infinity or a NaN is a word: no blank inside, and behind a blank come words again.
std::optional<double> word_value(std::string_view text) noexcept {
  const auto passes = [&text](std::string_view word) {
    const bool begins =
        text.size() >= word.size() && std::equal(word.begin(), word.end(), text.begin(),
                                                 [](char w, char c) { return w == lower(c); });
    if (begins) text.remove_prefix(word.size());
    return begins;
  };
  const auto words_follow = [&text] {
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return c == ' ' || is_alphanumeric(c); });
  };
  const auto ends = [&] { return text.empty() || (text.front() == ' ' && words_follow()); };

  if (passes("infinity") || passes("inf")) {
    if (ends()) return std::numeric_limits<double>::infinity();
  } else if (passes("nan(")) {
    while (!text.empty() && is_alphanumeric(text.front())) text.remove_prefix(1);
    if (passes(")") && words_follow()) return std::numeric_limits<double>::quiet_NaN();
  } else if (passes("nan")) {
    if (ends()) return std::numeric_limits<double>::quiet_NaN();
  }
  return {};
}

// Larger exponents are refused, however many zeros lead them.
constexpr int largest_exponent = 9999;

// The exponent that a field ends with: a letter, a sign or both, then digits.
std::optional<int> exponent_in(field_text& field) noexcept {
  const char letter = lower(field.front());
  if (letter == 'e' || letter == 'd' || letter == 'q') field.advance();
  if (field.empty()) return {};
  const bool negative = field.front() == '-';
  if (!pass_sign(field)) return {};
  int exponent = 0;
  for (; is_digit(field.front()); field.advance())
    exponent = std::min(10 * exponent + (field.front() - '0'), 2 * largest_exponent);
  if (!field.empty()) return {};
  return negative ? -exponent : exponent;
}

constexpr std::size_t widest_field = 40;

// A mantissa without digits is 0, so that no sign or point stands for nothing.
std::optional<double> decimal_value(field_text& field, int implied_digits) noexcept {
  std::array<char, widest_field + 16> text;
  char* to = text.data();
  *to++ = '0';
  bool point = false;
  for (; is_digit(field.front()) || (field.front() == '.' && !point); field.advance()) {
    point = point || field.front() == '.';
    *to++ = field.front();
  }
  int exponent = point ? 0 : -implied_digits;
  if (!field.empty()) {
    const std::optional<int> written = exponent_in(field);
    if (!written) return {};
    exponent += *written;
    if (std::abs(exponent) > largest_exponent) return {};
  }
  *to++ = 'e';
  to = std::to_chars(to, text.data() + text.size(), exponent).ptr;
  double value = 0.0;
  if (std::from_chars(text.data(), to, value).ec == std::errc::result_out_of_range)
    return exponent > 0 ? std::numeric_limits<double>::infinity() : 0.0;
  return value;
}

}  // namespace

char* put_integer(char* to, std::int32_t value, int width) noexcept {
  std::array<char, 12> text;  // a sign and ten digits
  const char* const end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
  return put_right(to, {text.data(), static_cast<std::size_t>(end - text.data())}, width);
}

char* put_general(char* to, double value, const general_form& form) noexcept {
  if (std::isnan(value)) return put_right(to, "NaN", form.width);
  if (std::isinf(value)) return put_right(to, value < 0 ? "-Infinity" : "Infinity", form.width);
  number_text text;
  const int before = digits_before_point(std::fabs(value), form.digits);
  if (before == exponent_form) return put_right(to, exponent_text(text, value, form), form.width);
  to = put_right(to, fixed_text(text, value, form.digits - before),
                 form.width - form.exponent_columns);
  std::memset(to, ' ', static_cast<std::size_t>(form.exponent_columns));
  return to + form.exponent_columns;
}

std::optional<std::int32_t> integer_in(std::string_view columns) noexcept {
  field_text field(columns);
  const bool negative = field.front() == '-';
  if (!pass_sign(field)) return {};
  const std::int64_t largest = std::int64_t{2147483647} + (negative ? 1 : 0);
  std::int64_t size = 0;
  for (; is_digit(field.front()); field.advance()) {
    size = 10 * size + (field.front() - '0');
    if (size > largest) return {};
  }
  if (!field.empty()) return {};
  return static_cast<std::int32_t>(negative ? -size : size);
}

std::optional<double> value_in(std::string_view columns, int implied_digits) noexcept {
  assert(columns.size() <= widest_field);
  field_text field(columns);
  const bool negative = field.front() == '-';
  if (is_sign(field.front())) field.advance();
  if (field.empty()) return 0.0;  // a sign alone is 0 without a sign
  std::optional<double> size = word_value(field.with_blanks());
  if (!size) size = decimal_value(field, implied_digits);
  if (!size) return {};
  return negative ? -*size : *size;
}

std::optional<bool> truth_in(std::string_view line) noexcept {
  while (!line.empty() && is_blank(line.substr(0, 1))) line.remove_prefix(1);
  if (!line.empty() && line.front() == '.') line.remove_prefix(1);
  if (line.empty()) return {};
  const char letter = lower(line.front());
  if (letter != 't' && letter != 'f') return {};
  return letter == 't';
}

bool is_blank(std::string_view line) noexcept {
  return line.find_first_not_of(blanks) == std::string_view::npos;
}

}  // namespace csr_matrix_mod
