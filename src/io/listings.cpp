// SPDX-License-Identifier: MIT
// Listings to look at.
#include "../support/fields.hpp"
#include "../support/free_layout.hpp"
#include "layouts.hpp"
#include "row_lines.hpp"

#include <string>

namespace csr_matrix_mod {

namespace {

constexpr int integer_columns = 10;

template <class Item>
void write_each_row(byte_sink& out, const csr_matrix& mat, const Item* items) {
  const std::int32_t* const starts = mat.ia.data();
  std::string line;
  for (std::int64_t i = 1; i <= mat.n; ++i) {
    line.clear();
    free_layout layout(line);
    layout.put("row ");
    layout.put(static_cast<std::int32_t>(i));
    layout.put(" = ");
    for (std::int32_t k = starts[i - 1]; k < starts[i]; ++k) layout.put(items[k - 1]);
    out.write(line.append("\n"));
  }
}

char* put_pair(char* to, std::int32_t i, std::int32_t j) {
  return put_integer(put_integer(to, i, integer_columns), j, integer_columns);
}

}  // namespace

void write_rows(byte_sink& out, const csr_matrix& mat) {
  write_each_row(out, mat, mat.ja.data());
  if (mat.type != matrix_structure_only) write_each_row(out, mat, mat.a.data());
}

void write_ij(byte_sink& out, const csr_matrix& mat) {
  const std::int32_t* const columns = mat.ja.data();
  write_row_lines(out, mat, 2 * integer_columns,
                  [columns](char* to, std::int32_t i, std::int32_t k) {
                    return put_pair(to, i, columns[k - 1]);
                  });
}

void write_ija(byte_sink& out, const csr_matrix& mat) {
  if (mat.type == matrix_structure_only) return write_ij(out, mat);
  const std::int32_t* const columns = mat.ja.data();
  const double* const values = mat.a.data();
  write_row_lines(out, mat, 2 * integer_columns + g12_4.width,
                  [columns, values](char* to, std::int32_t i, std::int32_t k) {
                    return put_general(put_pair(to, i, columns[k - 1]), values[k - 1], g12_4);
                  });
}

}  // namespace csr_matrix_mod
