// SPDX-License-Identifier: MIT
// The binary encoding: one record an item, all row starts, columns or values in one.
#include "matrix_encodings.hpp"
#include "records.hpp"

#include <algorithm>

namespace csr_matrix_mod {

namespace {

constexpr std::int64_t integer_bytes = sizeof(std::int32_t);
constexpr std::int64_t value_bytes = sizeof(double);
constexpr std::int64_t marker_bytes = 8;  // the two lengths around a record

class record_matrix_file final : public matrix_file {
 public:
  record_matrix_file(byte_source& source, reading manner)
      : matrix_file(source, manner), records_(source) {}

  void read_type(matrix_type& type) override {
    std::int32_t truth = 0;
    read(&truth, integer_bytes);
    if (truth != matrix_real && truth != matrix_structure_only)
      refuse("record 1", "a truth value, 0 or 1", std::to_string(truth));
    type = static_cast<matrix_type>(truth);
  }

  void read_sizes(std::int32_t& n, std::int32_t& m) override {
    std::int32_t sizes[2] = {};
    read(sizes, 2 * integer_bytes);
    n = sizes[0];
    m = sizes[1];
  }

  void read_row_starts(std::int32_t* ia, std::int64_t count) override {
    read(ia, count * integer_bytes);
  }

  void read_columns(csr_matrix& mat, column_range within) override {
    const std::int64_t nnz = entries(mat);
    read(mat.ja.data(), nnz * integer_bytes);
    if (within == any_integer) return;
    const auto outside = [&](std::int32_t j) { return j < within.first || j > within.last; };
    const std::int32_t* const columns = mat.ja.data();
    std::int32_t found = 0;  // in vector registers, as nearly always none is
    for (std::int64_t k = 0; k < nnz; ++k) found |= outside(columns[k]) ? 1 : 0;
    if (found == 0) return;
    const std::int32_t* const first = std::find_if(columns, columns + nnz, outside);
    refuse("record 4, item " + std::to_string(first - columns + 1),
           "a column from " + std::to_string(within.first) + " to " + std::to_string(within.last),
           std::to_string(*first));
  }

  void read_values(csr_matrix& mat) override {
    if (mat.type == matrix_real) read(mat.a.data(), entries(mat) * value_bytes);
  }

  void finish() override {
    if (!strict()) return;
    if (const std::int64_t left = source().bytes_left(); left != 0)
      refuse("record " + std::to_string(records_.number() + 1), "the end of the file",
             std::to_string(left) + " bytes more");
  }

  [[nodiscard]] std::int64_t least_bytes_of_row_starts(std::int64_t count) const override {
    return count * integer_bytes + marker_bytes;
  }
  [[nodiscard]] std::int64_t least_bytes_of_entries(std::int64_t nnz,
                                                    matrix_type type) const override {
    const std::int64_t columns = nnz * integer_bytes + marker_bytes;
    return type == matrix_real ? columns + nnz * value_bytes + marker_bytes : columns;
  }

  [[nodiscard]] std::string place_of_sizes() const override { return "record 2"; }
  [[nodiscard]] std::string place_of_row_start(std::int64_t i) const override {
    return "record 3, item " + std::to_string(i);
  }

 private:
  void read(void* to, std::int64_t bytes) {
    records_.read(to, bytes, strict() ? surplus::refused : surplus::passed_over);
  }

  // All entries are one transfer; a last row start below 1 leaves nothing to transfer.
  [[nodiscard]] static std::int64_t entries(const csr_matrix& mat) {
    return std::max(std::int64_t{mat.ia(std::int64_t{mat.n} + 1)} - 1, std::int64_t{0});
  }

  record_source records_;
};

}  // namespace

std::unique_ptr<matrix_file> open_record_matrix_file(byte_source& source, reading manner) {
  return std::make_unique<record_matrix_file>(source, manner);
}

}  // namespace csr_matrix_mod
