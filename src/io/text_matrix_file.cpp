// SPDX-License-Identifier: MIT
// The text encoding: one item a line, taken from its first columns; what follows a field is passed
// over.
#include "../support/matrix_fields.hpp"
#include "../support/quoted.hpp"
#include "matrix_encodings.hpp"
#include "row_lines.hpp"

#include <algorithm>

namespace csr_matrix_mod {

namespace {

constexpr std::size_t integer_columns = i10_columns;
constexpr std::size_t value_columns = g20_8_columns;
constexpr int implied_digits = 8;

constexpr std::string_view an_integer = "an integer in columns 1 to 10";
constexpr std::string_view another_integer = "an integer in columns 11 to 20";
constexpr std::string_view a_value = "a value in columns 1 to 20";
constexpr std::string_view end_of_file = "the end of the file";

std::string line_place(std::int64_t number) { return "line " + std::to_string(number); }

class text_matrix_file final : public matrix_file {
 public:
  using matrix_file::matrix_file;

  // Blank lines before the first item are passed over.
  void read_type(matrix_type& type) override {
    do next_line("a truth value, T or F", 1, blanks);
    while (is_blank(line_));
    const std::optional<bool> pattern = truth_in(line_);
    if (!pattern) refuse_field("a truth value, T or F", line_);
    type = *pattern ? matrix_structure_only : matrix_real;
  }

  // A comma ends a field before its last column, and the next field begins behind it.
  void read_sizes(std::int32_t& n, std::int32_t& m) override {
    next_line("n and m in columns 1 to 20", integer_columns + 1);
    line_of_sizes_ = source().line_number();
    const std::string_view first = line_.substr(0, integer_columns);
    n = integer_of(first, an_integer);
    const std::size_t comma = first.find(',');
    const std::size_t next = comma == std::string_view::npos ? first.size() : comma + 1;
    m = integer_of(line_.substr(next, integer_columns), another_integer);
  }

  void read_row_starts(std::int32_t* ia, std::int64_t count) override {
    read_integers(ia, count, any_integer);
  }

  void read_columns(csr_matrix& mat, column_range within) override {
    for_each_line(mat, [&](std::int32_t first, std::int32_t end) {
      read_integers(mat.ja.data() + (first - 1), std::int64_t{end} - first, within);
    });
  }

  void read_values(csr_matrix& mat) override {
    if (mat.type == matrix_structure_only) return;
    for_each_line(mat, [&](std::int32_t first, std::int32_t end) {
      read_reals(mat.a.data() + (first - 1), std::int64_t{end} - first);
    });
  }

  void finish() override {
    if (!strict()) return;
    while (source().next_line(line_, blanks))
      if (!is_blank(line_)) refuse_field(end_of_file, line_);
  }

  // A row start or a column takes a digit and the end of its line at least, a value may be blank;
  // the last line need not end.
  [[nodiscard]] std::int64_t least_bytes_of_row_starts(std::int64_t count) const override {
    return 2 * count - 1;
  }
  [[nodiscard]] std::int64_t least_bytes_of_entries(std::int64_t nnz,
                                                    matrix_type type) const override {
    return (type == matrix_structure_only ? 2 : 3) * nnz - 1;
  }

  [[nodiscard]] std::string place_of_sizes() const override { return line_place(line_of_sizes_); }
  [[nodiscard]] std::string place_of_row_start(std::int64_t i) const override {
    return line_place(line_of_sizes_ + i);
  }

 private:
  [[noreturn]] void refuse_line(std::string_view expected, std::string_view found) const {
    refuse(line_place(source().line_number()), expected, found);
  }
  [[noreturn]] void refuse_field(std::string_view expected, std::string_view found) const {
    refuse_line(expected, quoted(found));
  }

  // The next line, of whose first `columns` columns a strict reader must be sure.
  void next_line(std::string_view expected, std::size_t columns,
                 std::string_view passed_over = {}) {
    if (!source().next_line(line_, passed_over))
      refuse(line_place(source().line_number() + 1), expected, end_of_file);
    if (strict() && source().line_unfinished() && line_.size() < columns)
      refuse_line(expected, "the file cut after " + quoted(line_));
  }

  std::int32_t integer_of(std::string_view field, std::string_view expected) const {
    const std::optional<std::int32_t> value = integer_in(field);
    if (!value) refuse_field(expected, field);
    return *value;
  }

  // Fields in the form that is written are taken from the buffer, many lines at once; the line that
  // is of another form, that is refused or that crosses a seam goes the general way.
  template <class Number, class Quick, class General>
  void read_fields(Number* to, std::int64_t count, std::size_t columns, const Quick& quick_lines,
                   const General& next_number) {
    while (count > 0) {
      const std::int64_t taken = quick_lines(source().held(), to, count);
      source().pass_lines(taken, columns + 1);
      to += taken;
      count -= taken;
      if (count == 0) break;
      *to++ = next_number();
      --count;
    }
  }

  void read_integers(std::int32_t* to, std::int64_t count, column_range within) {
    read_fields(
        to, count, integer_columns,
        [within](std::string_view text, std::int32_t* first, std::int64_t lines) {
          return quick_i10_lines(text, first, lines, within.first, within.last);
        },
        [this, within] {
          next_line(an_integer, integer_columns);
          const std::int32_t j = integer_of(line_.substr(0, integer_columns), an_integer);
          if (j < within.first || j > within.last)
            refuse_line("a column from " + std::to_string(within.first) + " to " +
                            std::to_string(within.last),
                        std::to_string(j));
          return j;
        });
  }

  void read_reals(double* to, std::int64_t count) {
    read_fields(to, count, value_columns, quick_g20_8_lines, [this] {
      next_line(a_value, value_columns);
      const std::string_view field = line_.substr(0, value_columns);
      const std::optional<double> value = value_in(field, implied_digits);
      if (!value) refuse_field(a_value, field);
      return *value;
    });
  }

  // Each row is one transfer: a line an entry, and one line for a row without entries.
  template <class Read>
  void for_each_line(const csr_matrix& mat, const Read& read_entries) {
    for_each_run(mat, read_entries, [this](std::int64_t i) { pass_empty_row(i); });
  }

  void pass_empty_row(std::int64_t i) {
    const auto expected = [i] { return "the empty line of row " + std::to_string(i); };
    if (!source().next_line(line_, blanks))
      refuse(line_place(source().line_number() + 1), expected(), end_of_file);
    if (strict() && !is_blank(line_)) refuse_field(expected(), line_);
  }

  std::string_view line_;
  std::int64_t line_of_sizes_ = 0;
};

}  // namespace

std::unique_ptr<matrix_file> open_text_matrix_file(byte_source& source, reading manner) {
  return std::make_unique<text_matrix_file>(source, manner);
}

}  // namespace csr_matrix_mod
