// SPDX-License-Identifier: MIT
// A matrix file into storage of its own, from a file that nobody vouches for.
#include "../io/file_error.hpp"
#include "../io/matrix_file.hpp"
#include "../support/stop.hpp"

#include <csr_matrix_mod/exchange.hpp>

#include <algorithm>
#include <utility>

namespace csr_matrix_mod {

namespace {

constexpr std::string_view no_room = "allocation error in csr_matrix_load";

void require_bytes(matrix_file& file, const std::string& place, std::int64_t least,
                   const std::string& items) {
  if (const std::int64_t left = file.bytes_left(); left < least)
    file.refuse(place, items, "only " + std::to_string(left) + " bytes more");
}

// Storage exactly as large as the file asks for, once the file is seen to be large enough itself.
class new_storage final : public entry_storage {
 public:
  [[nodiscard]] reading manner() const override { return reading::strict; }

  void make_room_for_row_starts(matrix_file& file, csr_matrix& mat) const override {
    if (mat.n < 0) file.refuse(file.place_of_sizes(), "0 rows or more", std::to_string(mat.n));
    if (mat.m < 0) file.refuse(file.place_of_sizes(), "0 columns or more", std::to_string(mat.m));
    const std::int64_t starts = std::int64_t{mat.n} + 1;
    require_bytes(file, file.place_of_sizes(), file.least_bytes_of_row_starts(starts),
                  std::to_string(starts) + " row starts");
    if (!mat.ia.allocate(starts)) stop(no_room);
  }

  void make_room_for_entries(matrix_file& file, csr_matrix& mat) const override {
    require_rising_row_starts(file, mat);
    const std::int32_t nnz = csr_matrix_num_nz(mat);
    require_bytes(file, file.place_of_row_start(std::int64_t{mat.n} + 1),
                  nnz == 0 ? 0 : file.least_bytes_of_entries(nnz, mat.type),
                  std::to_string(nnz) + " entries");
    const std::int32_t capacity = std::max(nnz, 1);
    if (!mat.ja.allocate(capacity)) stop(no_room);
    if (mat.type == matrix_real && !mat.a.allocate(capacity)) stop(no_room);
  }

  [[nodiscard]] column_range columns_of(const csr_matrix& mat) const override { return {1, mat.m}; }

 private:
  static void require_rising_row_starts(const matrix_file& file, const csr_matrix& mat) {
    const std::int32_t* const starts = mat.ia.data();
    if (starts[0] != 1) file.refuse(file.place_of_row_start(1), "1", std::to_string(starts[0]));
    for (std::int64_t i = 1; i <= mat.n; ++i)
      if (starts[i] < starts[i - 1])
        file.refuse(file.place_of_row_start(i + 1),
                    "a row start of " + std::to_string(starts[i - 1]) + " or more",
                    std::to_string(starts[i]));
  }
};

}  // namespace

void csr_matrix_load(std::string_view filename, csr_matrix& mat,
                     std::optional<std::string_view> form) {
  at_file(filename, "cannot read", [&] {
    const stream file = open_stream(filename, direction::reading);
    const std::optional<encoding> code = encoding_of(form);
    if (!code) stop(unknown_form);
    byte_source source(file.get(), filename);
    csr_matrix loaded;
    read_matrix(source, *code, new_storage(), loaded);
    mat = std::move(loaded);
  });
}

}  // namespace csr_matrix_mod
