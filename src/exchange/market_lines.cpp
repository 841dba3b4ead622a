// SPDX-License-Identifier: MIT
#include "market_lines.hpp"

#include "../io/file_error.hpp"

#include <algorithm>
#include <charconv>
#include <string>
#include <system_error>

namespace csr_matrix_mod {

namespace {

// The search of the library for any of some characters is a call a character: files are read twice
// as fast without.
constexpr bool is_blank(char c) noexcept { return c == ' ' || c == '\t' || c == '\r'; }
constexpr bool is_no_blank(char c) noexcept { return !is_blank(c); }

// A line that the source had to cut is longer, also when a carriage return went from its end.
constexpr std::size_t longest_line = byte_source::kept_of_a_line - 2;

// The format allows a plus sign, `from_chars` does not.
std::string_view without_plus(std::string_view text) {
  const bool plus = text.size() > 1 && text[0] == '+' && text[1] != '-';
  return plus ? text.substr(1) : text;
}

// An error unless the whole text is a number that `Number` can hold.
template <class Number>
std::errc read_number(std::string_view text, Number& number) {
  text = without_plus(text);
  const char* const end = text.data() + text.size();
  const auto [stopped_at, error] = std::from_chars(text.data(), end, number);
  return stopped_at == end ? error : std::errc::invalid_argument;
}

// Of a number that no double holds: is it too small, rather than too large? The power of ten of its
// first digit tells.
bool is_tiny(std::string_view number) {
  const std::size_t letter = std::min(number.find_first_of("eE"), number.size());
  const std::string_view mantissa = number.substr(0, letter);
  const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
  const std::size_t first_digit = mantissa.find_first_of("123456789");
  const std::string_view power = number.substr(std::min(letter + 1, number.size()));
  std::int32_t exponent = 0;
  if (read_number(power, exponent) == std::errc::result_out_of_range) return power.front() == '-';
  return exponent + static_cast<std::int64_t>(point) < static_cast<std::int64_t>(first_digit);
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
  const char* const end = text_.data() + text_.size();
  const char* next = text_.data();
  while (count_ < most_fields) {
    const char* const first = std::find_if(next, end, is_no_blank);
    if (first == end) return;
    next = std::find_if(first, end, is_blank);
    fields_[count_++] = {first, static_cast<std::size_t>(next - first)};
  }
}

std::int32_t market_lines::integer(std::size_t k, std::string_view what, std::int32_t least,
                                   std::int32_t most) const {
  std::int32_t value = 0;
  if (read_number(field(k), value) != std::errc{} || value < least || value > most)
    refuse_quoted(
        std::string(what) + " from " + std::to_string(least) + " to " + std::to_string(most),
        field(k));
  return value;
}

double market_lines::real_value(std::size_t k) const {
  double value = 0.0;
  const std::errc error = read_number(field(k), value);
  if (error == std::errc{}) return value;
  if (error != std::errc::result_out_of_range || !is_tiny(field(k)))
    refuse_quoted("a value that a double can hold", field(k));
  return field(k).front() == '-' ? -0.0 : 0.0;
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
