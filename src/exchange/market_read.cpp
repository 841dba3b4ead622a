// SPDX-License-Identifier: MIT
// A Matrix Market file into a record: its entries as coordinate lists, the mirror images among
// them, then row by row.
#include "../io/file_error.hpp"
#include "../support/entry_count.hpp"
#include "../support/scratch.hpp"
#include "../support/stop.hpp"
#include "market_header.hpp"

#include <csr_matrix_mod/convert.hpp>
#include <csr_matrix_mod/exchange.hpp>

#include <algorithm>
#include <limits>
#include <string>
#include <utility>

namespace csr_matrix_mod {

namespace {

constexpr std::string_view routine = "csr_matrix_read_market";
constexpr std::int32_t most_columns = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t most_rows = most_columns - 1;  // row starts are one more
constexpr std::int32_t most_entries = static_cast<std::int32_t>(max_entries);

// Empty rows take no byte in a coordinate file. So many are believed of any file, more of one that
// has a byte for each: whoever invents a number of rows shall not get storage for it.
constexpr std::int32_t rows_of_any_file = std::int32_t{1} << 27;

struct market_size {
  std::int32_t n = 0;
  std::int32_t m = 0;
  std::int64_t stored = 0;  // entries in the file, before mirroring
};

bool is_mirrored(const market_header& header) {
  return header.symmetry != market_symmetry::general;
}

// ---------------------------------------------------------------------------------------- sizes

// How many elements an array file lists: all of them, or a triangle with or without its diagonal.
std::int64_t listed_elements(const market_header& header, std::int64_t n, std::int64_t m) {
  switch (header.symmetry) {
    case market_symmetry::symmetric:
      return n * (n + 1) / 2;
    case market_symmetry::skew_symmetric:
      return n * (n - 1) / 2;
    case market_symmetry::general:
      break;
  }
  return n * m;
}

// A number, a blank between two of them and the end of the line take a byte each.
std::int64_t least_bytes_of_entry(const market_header& header) {
  if (header.layout == market_layout::array) return 2;
  return header.field == market_field::pattern ? 4 : 6;
}

void require_bytes(market_lines& lines, const market_header& header, const market_size& size) {
  const std::int64_t left = lines.bytes_left();
  if (size.n > rows_of_any_file && size.n > left)
    lines.refuse("at most " + std::to_string(rows_of_any_file) + " rows in a file as short as this",
                 std::to_string(size.n));
  if (size.stored > entry_limit())
    lines.refuse("at most " + std::to_string(entry_limit()) + " entries",
                 std::to_string(size.stored));
  if (left < size.stored * least_bytes_of_entry(header) - 1)
    lines.refuse(std::to_string(size.stored) + " entries",
                 "only " + std::to_string(left) + " bytes more");
}

market_size read_size(market_lines& lines, const market_header& header) {
  const bool coordinate = header.layout == market_layout::coordinate;
  const std::string_view expected =
      coordinate ? "the numbers of rows, columns and entries" : "the numbers of rows and columns";
  do
    if (!lines.next_filled_line()) lines.refuse_end(expected);
  while (lines.is_comment());
  if (lines.fields() != (coordinate ? 3 : 2)) lines.refuse_quoted(expected, lines.text());

  market_size size;
  size.n = lines.integer(1, "a number of rows", 0, most_rows);
  size.m = lines.integer(2, "a number of columns", 0, most_columns);
  if (is_mirrored(header) && size.m != size.n)
    lines.refuse_quoted("as many columns as rows in a symmetric matrix", lines.text());
  if (coordinate)
    size.stored =
        lines.integer(3, "a number of entries", 0, size.n == 0 || size.m == 0 ? 0 : most_entries);
  else
    size.stored = listed_elements(header, size.n, size.m);
  require_bytes(lines, header, size);
  return size;
}

// -------------------------------------------------------------------------------------- entries

// Coordinate lists with room for the entries of the file and their mirror images.
class entry_lists {
 public:
  entry_lists(const market_header& header, const market_size& size)
      : header_(header),
        rows_(room(header, size), contents::undefined, routine),
        columns_(room(header, size), contents::undefined, routine),
        values_(has_values() ? room(header, size) : 0, contents::undefined, routine) {}

  [[nodiscard]] bool has_values() const { return header_.field != market_field::pattern; }

  void place(std::int32_t i, std::int32_t j, double value) {
    append(i, j, value);
    if (i != j && is_mirrored(header_))
      append(j, i, header_.symmetry == market_symmetry::skew_symmetric ? -value : value);
  }

  [[nodiscard]] csr_matrix matrix(std::int32_t n, std::int32_t m) {
    const std::int32_t nnz = entry_count(count_, routine);
    const matrix_type type = has_values() ? matrix_real : matrix_structure_only;
    csr_matrix mat;
    if (nnz == 0)
      make_empty(n, m, type, mat);
    else
      coo_to_csr_format(n, nnz, rows_, columns_, values_, mat, type, m);
    return mat;
  }

 private:
  [[nodiscard]] static std::int64_t room(const market_header& header, const market_size& size) {
    return is_mirrored(header) ? 2 * size.stored : size.stored;
  }

  void append(std::int32_t i, std::int32_t j, double value) {
    ++count_;
    rows_(count_) = i;
    columns_(count_) = j;
    if (has_values()) values_(count_) = value;
  }

  // In silence: a file without entries is nothing to warn of.
  static void make_empty(std::int32_t n, std::int32_t m, matrix_type type, csr_matrix& mat) {
    csr_matrix_initial(n, mat, m, type);
    std::fill(mat.ia.begin(), mat.ia.end(), 1);
    if (!mat.ja.allocate(1) || (type == matrix_real && !mat.a.allocate(1)))
      stop_without_storage(routine);
  }

  market_header header_;
  scratch<std::int32_t> rows_;
  scratch<std::int32_t> columns_;
  scratch<double> values_;
  std::int64_t count_ = 0;
};

class entry_reader {
 public:
  entry_reader(market_lines& lines, const market_header& header, const market_size& size)
      : lines_(lines), header_(header), size_(size) {}

  void read(entry_lists& entries) {
    if (header_.layout == market_layout::coordinate)
      read_coordinates(entries);
    else
      read_array(entries);
    if (lines_.next_filled_line()) lines_.refuse_quoted("the end of the file", lines_.text());
  }

 private:
  // A line for each entry: row, column and, unless a pattern, value.
  void read_coordinates(entry_lists& entries) {
    const bool with_value = entries.has_values();
    const std::size_t fields = with_value ? 3 : 2;
    const std::string_view expected = with_value ? "row, column and value" : "row and column";
    for (std::int64_t k = 1; k <= size_.stored; ++k) {
      next_entry(k, fields, expected);
      const std::int32_t i = lines_.integer(1, "a row", 1, size_.n);
      const std::int32_t j = lines_.integer(2, "a column", 1, size_.m);
      require_listed_triangle(i, j);
      entries.place(i, j, with_value ? value_in(3) : 0.0);
    }
  }

  // A line for each element, column by column, of a triangle from the diagonal or below it on.
  void read_array(entry_lists& entries) {
    std::int32_t j = 1;
    std::int32_t i = first_listed_row(j);
    for (std::int64_t k = 1; k <= size_.stored; ++k) {
      next_entry(k, 1, "one value");
      entries.place(i, j, value_in(1));
      if (++i > size_.n) i = first_listed_row(++j);
    }
  }

  void next_entry(std::int64_t k, std::size_t fields, std::string_view expected) {
    if (!lines_.next_filled_line())
      lines_.refuse_end("entry " + std::to_string(k) + " of " + std::to_string(size_.stored));
    if (lines_.fields() != fields) lines_.refuse_quoted(expected, lines_.text());
  }

  [[nodiscard]] double value_in(std::size_t k) const {
    return header_.field == market_field::integer ? lines_.integer_value(k) : lines_.real_value(k);
  }

  [[nodiscard]] std::int32_t first_listed_row(std::int32_t j) const {
    switch (header_.symmetry) {
      case market_symmetry::symmetric:
        return j;
      case market_symmetry::skew_symmetric:
        return j + 1;
      case market_symmetry::general:
        break;
    }
    return 1;
  }

  void require_listed_triangle(std::int32_t i, std::int32_t j) const {
    if (i >= first_listed_row(j)) return;
    lines_.refuse_quoted(header_.symmetry == market_symmetry::symmetric
                             ? "an entry on or below the diagonal"
                             : "an entry below the diagonal",
                         lines_.text());
  }

  market_lines& lines_;
  const market_header& header_;
  const market_size& size_;
};

}  // namespace

void csr_matrix_read_market(std::string_view filename, csr_matrix& mat) {
  at_file(filename, "cannot read", [&] {
    const stream file = open_stream(filename, direction::reading);
    byte_source source(file.get(), filename);
    market_lines lines(source);
    const market_header header = read_market_header(lines);
    const market_size size = read_size(lines, header);
    entry_lists entries(header, size);
    entry_reader(lines, header, size).read(entries);
    mat = entries.matrix(size.n, size.m);
  });
}

}  // namespace csr_matrix_mod
