// SPDX-License-Identifier: MIT
// Reading a matrix file: the body that every reader shares, and the reader that fills the caller's
// own storage.
#include "../csr_matrix/row_starts.hpp"
#include "file_error.hpp"
#include "form_word.hpp"
#include "matrix_encodings.hpp"
#include "unit_table.hpp"

#include <csr_matrix_mod/io.hpp>

#include <algorithm>

namespace csr_matrix_mod {

namespace {

// Nothing is allocated. Only what would be written outside of the storage is refused.
class given_storage final : public entry_storage {
 public:
  [[nodiscard]] reading manner() const override { return reading::lenient; }

  void make_room_for_row_starts(matrix_file& file, csr_matrix& mat) const override {
    if (mat.n < 0) file.refuse(file.place_of_sizes(), "0 rows or more", std::to_string(mat.n));
    const std::int64_t starts = std::int64_t{mat.n} + 1;
    if (starts > mat.ia.length())
      refuse_room(file, file.place_of_sizes(), starts, "row starts in ia", mat.ia.length());
  }

  // A row that ends before it begins transfers nothing, so it needs no room; records transfer all
  // entries at once.
  void make_room_for_entries(matrix_file& file, csr_matrix& mat) const override {
    if (fits(mat)) return;
    const std::int32_t* const starts = mat.ia.data();
    for (std::int64_t i = 1; i <= mat.n; ++i) {
      if (starts[i] <= starts[i - 1]) continue;
      if (starts[i - 1] < 1)
        file.refuse(file.place_of_row_start(i), "1 or more", std::to_string(starts[i - 1]));
      require_room_to(file, mat, i + 1);
    }
    require_room_to(file, mat, std::int64_t{mat.n} + 1);
  }

  [[nodiscard]] column_range columns_of(const csr_matrix& /*mat*/) const override {
    return any_integer;
  }

 private:
  // Row starts that rise from 1 or more, as nearly always, to no more than there is room for.
  static bool fits(const csr_matrix& mat) {
    const std::int32_t* const starts = mat.ia.data();
    const std::int64_t room =
        mat.type == matrix_real ? std::min(mat.ja.length(), mat.a.length()) : mat.ja.length();
    return starts[0] >= 1 && std::int64_t{starts[mat.n]} - 1 <= room && rows_follow(mat);
  }

  // Room for all entries before row start i.
  static void require_room_to(const matrix_file& file, const csr_matrix& mat, std::int64_t i) {
    const std::int64_t entries = std::int64_t{mat.ia(i)} - 1;
    if (entries > mat.ja.length())
      refuse_room(file, file.place_of_row_start(i), entries, "columns in ja", mat.ja.length());
    if (mat.type == matrix_real && entries > mat.a.length())
      refuse_room(file, file.place_of_row_start(i), entries, "values in a", mat.a.length());
  }

  [[noreturn]] static void refuse_room(const matrix_file& file, const std::string& place,
                                       std::int64_t items, std::string_view what,
                                       std::int64_t room) {
    file.refuse(place, "room for " + std::to_string(items).append(" ").append(what),
                "room for " + std::to_string(room));
  }
};

}  // namespace

std::optional<encoding> encoding_of(std::optional<std::string_view> form) {
  if (!form) return encoding::text;
  if (is_word(*form, "unformatted")) return encoding::unformatted;
  return {};
}

std::unique_ptr<matrix_file> open_matrix_file(byte_source& source, encoding code, reading manner) {
  return code == encoding::text ? open_text_matrix_file(source, manner)
                                : open_record_matrix_file(source, manner);
}

void read_matrix(byte_source& source, encoding code, const entry_storage& storage,
                 csr_matrix& mat) {
  const std::unique_ptr<matrix_file> file = open_matrix_file(source, code, storage.manner());
  file->read_type(mat.type);
  file->read_sizes(mat.n, mat.m);
  storage.make_room_for_row_starts(*file, mat);
  file->read_row_starts(mat.ia.data(), std::int64_t{mat.n} + 1);
  storage.make_room_for_entries(*file, mat);
  file->read_columns(mat, storage.columns_of(mat));
  file->read_values(mat);
  file->finish();
}

void csr_matrix_read(std::string_view filename, csr_matrix& mat,
                     std::optional<std::string_view> form) {
  at_file(filename, "cannot read", [&] {
    connected_unit unit(filename, direction::reading);
    const std::optional<encoding> code = encoding_of(form);
    if (!code) {
      unit.leave_open();
      stop(unknown_form);
    }
    byte_source source(unit.file(), filename);
    read_matrix(source, *code, given_storage(), mat);
    unit.leave_open();
  });
}

}  // namespace csr_matrix_mod
