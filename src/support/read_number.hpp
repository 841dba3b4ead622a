// SPDX-License-Identifier: MIT
// Numbers in the free spelling of text files, whatever the locale.
#pragma once

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <system_error>

namespace csr_matrix_mod {

// Files have plus signs, `from_chars` knows none.
[[nodiscard]] inline std::string_view without_plus(std::string_view text) {
  const bool plus = text.size() > 1 && text[0] == '+' && text[1] != '-';
  return plus ? text.substr(1) : text;
}

// An error unless the whole text is a number that `Number` can hold.
template <class Number>
[[nodiscard]] std::errc read_number(std::string_view text, Number& number) {
  text = without_plus(text);
  const char* const end = text.data() + text.size();
  const auto [stopped_at, error] = std::from_chars(text.data(), end, number);
  return stopped_at == end ? error : std::errc::invalid_argument;
}

// Of a number that no double holds: is it too small, rather than too large? The power of ten of its
// first digit tells.
[[nodiscard]] inline bool is_tiny(std::string_view number) {
  const std::size_t letter = std::min(number.find_first_of("eE"), number.size());
  const std::string_view mantissa = number.substr(0, letter);
  const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
  const std::size_t first_digit = mantissa.find_first_of("123456789");
  const std::string_view power = number.substr(std::min(letter + 1, number.size()));
  std::int32_t exponent = 0;
  if (read_number(power, exponent) == std::errc::result_out_of_range) return power.front() == '-';
  return exponent + static_cast<std::int64_t>(point) < static_cast<std::int64_t>(first_digit);
}

// As `read_number`; what is too small for a double is 0, with its sign.
[[nodiscard]] inline std::errc read_real(std::string_view text, double& value) {
  const std::errc error = read_number(text, value);
  if (error != std::errc::result_out_of_range || !is_tiny(text)) return error;
  value = text.front() == '-' ? -0.0 : 0.0;
  return {};
}

}  // namespace csr_matrix_mod
