// SPDX-License-Identifier: MIT
// The matrix file, read: its items in order, whichever the encoding and whoever owns the storage.
//
//   item          text                                     records
//   type          a line in free form, T or F              1: a 4-byte truth value
//   n, m          a line (2i10)                            2: two integers
//   row starts    n+1 lines (i10)                          3: n+1 integers
//   columns       a line (i10) each, an empty row one too  4: the integers
//   values        a line (g20.8) each, as the columns      5: the doubles; both unless type is 1
#pragma once

#include "stream.hpp"

#include <csr_matrix_mod/csr_matrix.hpp>

#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace csr_matrix_mod {

enum class encoding { text, unformatted };

// Absent is text; nothing for a word that no reader knows.
[[nodiscard]] std::optional<encoding> encoding_of(std::optional<std::string_view> form);
inline constexpr std::string_view unknown_form = "can not read this format!";

// A lenient reader takes what a Fortran program takes. A strict one believes only a file that
// agrees with itself: no record longer than its items, nothing on the line of an empty row, no last
// line cut within its field, nothing after the matrix.
enum class reading { lenient, strict };

struct column_range {
  std::int32_t first;
  std::int32_t last;

  [[nodiscard]] bool operator==(const column_range&) const = default;
};

inline constexpr column_range any_integer = {std::numeric_limits<std::int32_t>::min(),
                                             std::numeric_limits<std::int32_t>::max()};

// The items are asked for once each, in the order of their declaration. Each stops with
// "NAME: PLACE: expected ..., found ...", PLACE being a line or a record.
class matrix_file {
 public:
  matrix_file(byte_source& source, reading manner) : source_(source), manner_(manner) {}
  matrix_file(const matrix_file&) = delete;
  matrix_file& operator=(const matrix_file&) = delete;
  virtual ~matrix_file() = default;

  virtual void read_type(matrix_type& type) = 0;
  virtual void read_sizes(std::int32_t& n, std::int32_t& m) = 0;
  virtual void read_row_starts(std::int32_t* ia, std::int64_t count) = 0;
  virtual void read_columns(csr_matrix& mat, column_range within) = 0;
  virtual void read_values(csr_matrix& mat) = 0;  // if there are any
  virtual void finish() = 0;

  // The fewest bytes that these items take in a file.
  [[nodiscard]] virtual std::int64_t least_bytes_of_row_starts(std::int64_t count) const = 0;
  [[nodiscard]] virtual std::int64_t least_bytes_of_entries(std::int64_t nnz,
                                                            matrix_type type) const = 0;
  [[nodiscard]] std::int64_t bytes_left() { return source_.bytes_left(); }

  // Where an item that was read stands.
  [[nodiscard]] virtual std::string place_of_sizes() const = 0;
  [[nodiscard]] virtual std::string place_of_row_start(std::int64_t i) const = 0;

  // Stops with "NAME: PLACE: expected EXPECTED, found FOUND".
  [[noreturn]] void refuse(std::string_view place, std::string_view expected,
                           std::string_view found) const {
    source_.refuse_item(place, expected, found);
  }

 protected:
  [[nodiscard]] byte_source& source() const noexcept { return source_; }
  [[nodiscard]] bool strict() const noexcept { return manner_ == reading::strict; }

 private:
  byte_source& source_;
  const reading manner_;
};

[[nodiscard]] std::unique_ptr<matrix_file> open_matrix_file(byte_source& source, encoding code,
                                                            reading manner);

// Where the entries go, and what is asked of a file before they may.
class entry_storage {
 public:
  entry_storage() = default;
  entry_storage(const entry_storage&) = delete;
  entry_storage& operator=(const entry_storage&) = delete;
  virtual ~entry_storage() = default;

  [[nodiscard]] virtual reading manner() const = 0;
  // n and m are known: is there room for the row starts?
  virtual void make_room_for_row_starts(matrix_file& file, csr_matrix& mat) const = 0;
  // The row starts are known: is there room for the entries?
  virtual void make_room_for_entries(matrix_file& file, csr_matrix& mat) const = 0;
  [[nodiscard]] virtual column_range columns_of(const csr_matrix& mat) const = 0;
};

// Reads a whole matrix into `mat`, field by field as the items come.
void read_matrix(byte_source& source, encoding code, const entry_storage& storage, csr_matrix& mat);

}  // namespace csr_matrix_mod
