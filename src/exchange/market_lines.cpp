// SPDX-License-Identifier: MIT
#include "market_lines.hpp"

#include "../io/file_error.hpp"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string>
#include <system_error>

namespace csr_matrix_mod {

namespace {

constexpr std::string_view blanks = " \t\r";

// A line that the source had to cut is longer, also when a carriage return went from its end.
constexpr std::size_t longest_line = byte_source::kept_of_a_line - 2;

// The format allows a plus sign, `from_chars` does not.
std::string_view without_plus(std::string_view text) {
  const bool plus = text.size() > 1 && text[0] == '+' && text[1] != '-';
  return plus ? text.substr(1) : text;
}

// Nothing unless the whole text is a number; `error` tells of one that is out of range.
template <class Number>
std::optional<Number> number_in(std::string_view text, std::errc& error) {
  text = without_plus(text);
  const char* const end = text.data() + text.size();
  Number number{};
  const auto [stopped_at, result] = std::from_chars(text.data(), end, number);
  error = result;
  if (stopped_at != end || result != std::errc{}) return {};
  return number;
}

// Of a number that no double holds: is it too small, rather than too large? The power of ten of its
// first digit tells.
bool is_tiny(std::string_view number) {
  const std::size_t letter = std::min(number.find_first_of("eE"), number.size());
  const std::string_view mantissa = number.substr(0, letter);
  const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
  const std::size_t first_digit = mantissa.find_first_of("123456789");
  const std::string_view power = number.substr(std::min(letter + 1, number.size()));
  std::errc error{};
  const std::optional<std::int32_t> exponent = number_in<std::int32_t>(power, error);
  if (error == std::errc::result_out_of_range) return power.front() == '-';
  return exponent.value_or(0) + static_cast<std::int64_t>(point) <
         static_cast<std::int64_t>(first_digit);
}

std::optional<double> value_in(std::string_view text) {
  std::errc error{};
  const std::optional<double> value = number_in<double>(text, error);
  if (error == std::errc::result_out_of_range && is_tiny(text))
    return text.front() == '-' ? -0.0 : 0.0;
  return value;
}

bool is_integer(std::string_view text) {
  if (text.front() == '+' || text.front() == '-') text.remove_prefix(1);
  return text.find_first_not_of("0123456789") == std::string_view::npos;
}

}  // namespace

bool market_lines::next_line() {
  if (!source_.next_line(text_)) return false;
  cut_into_fields();
  if (text_.size() > longest_line && !is_comment())
    refuse_quoted("a line of at most " + std::to_string(longest_line) + " characters", text_);
  return true;
}

bool market_lines::next_filled_line() {
  do
    if (!next_line()) return false;
  while (count_ == 0);
  return true;
}

void market_lines::cut_into_fields() {
  count_ = 0;
  std::string_view rest = text_;
  while (count_ < most_fields) {
    rest.remove_prefix(std::min(rest.find_first_not_of(blanks), rest.size()));
    if (rest.empty()) return;
    const std::size_t length = std::min(rest.find_first_of(blanks), rest.size());
    fields_[count_++] = rest.substr(0, length);
    rest.remove_prefix(length);
  }
}

std::int32_t market_lines::integer(std::size_t k, std::string_view what, std::int32_t least,
                                   std::int32_t most) const {
  std::errc ignored{};
  const std::optional<std::int32_t> value = number_in<std::int32_t>(field(k), ignored);
  if (!value || *value < least || *value > most)
    refuse_quoted(
        std::string(what) + " from " + std::to_string(least) + " to " + std::to_string(most),
        field(k));
  return *value;
}

double market_lines::real_value(std::size_t k) const {
  const std::optional<double> value = value_in(field(k));
  if (!value) refuse_quoted("a value that a double can hold", field(k));
  return *value;
}

double market_lines::integer_value(std::size_t k) const {
  if (!is_integer(field(k))) refuse_quoted("an integer", field(k));
  return real_value(k);
}

void market_lines::refuse_at(std::int64_t line, std::string_view expected,
                             std::string_view found) const {
  source_.refuse(
      "line " +
      std::to_string(line).append(": expected ").append(expected).append(", found ").append(found));
}

void market_lines::refuse(std::string_view expected, std::string_view found) const {
  refuse_at(source_.line_number(), expected, found);
}

void market_lines::refuse_quoted(std::string_view expected, std::string_view found) const {
  refuse(expected, quoted(found));
}

void market_lines::refuse_end(std::string_view expected) const {
  refuse_at(source_.line_number() + 1, expected, "the end of the file");
}

}  // namespace csr_matrix_mod
