// SPDX-License-Identifier: MIT
#include "market_lines.hpp"

#include "../support/quoted.hpp"
#include "../support/read_number.hpp"

#include <algorithm>
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
  if (read_real(field(k), value) != std::errc{})
    refuse_quoted("a value that a double can hold", field(k));
  return value;
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
