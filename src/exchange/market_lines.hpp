// SPDX-License-Identifier: MIT
// The lines of a Matrix Market file, cut into the fields between blanks.
#pragma once

#include "../io/stream.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace csr_matrix_mod {

class market_lines {
 public:
  explicit market_lines(byte_source& source) : source_(source) {}

  // Goes to the next line, or to the next one that is not blank; false at the end of the file.
  [[nodiscard]] bool next_line();
  [[nodiscard]] bool next_filled_line();

  // Of the present line: the text, and the fields, counted from 1 and up to `most_fields`.
  [[nodiscard]] std::string_view text() const noexcept { return text_; }
  [[nodiscard]] std::size_t fields() const noexcept { return count_; }
  [[nodiscard]] std::string_view field(std::size_t k) const noexcept { return fields_[k - 1]; }
  [[nodiscard]] bool is_comment() const noexcept { return count_ > 0 && field(1).front() == '%'; }
  static constexpr std::size_t most_fields = 6;

  // Field k as a number; `what` it is goes into the refusal.
  [[nodiscard]] std::int32_t integer(std::size_t k, std::string_view what, std::int32_t least,
                                     std::int32_t most) const;
  [[nodiscard]] double real_value(std::size_t k) const;
  [[nodiscard]] double integer_value(std::size_t k) const;

  [[nodiscard]] std::int64_t bytes_left() { return source_.bytes_left(); }

  // Stop with "NAME: line N: expected EXPECTED, found FOUND", at the present line or where the file
  // ended.
  [[noreturn]] void refuse(std::string_view expected, std::string_view found) const;
  [[noreturn]] void refuse_quoted(std::string_view expected, std::string_view found) const;
  [[noreturn]] void refuse_end(std::string_view expected) const;

 private:
  void cut_into_fields();
  [[noreturn]] void refuse_at(std::int64_t line, std::string_view expected,
                              std::string_view found) const;

  byte_source& source_;
  std::string_view text_;
  std::array<std::string_view, most_fields> fields_;
  std::size_t count_ = 0;
};

}  // namespace csr_matrix_mod
