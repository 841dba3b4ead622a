// SPDX-License-Identifier: MIT
// The columns of a matrix as the edges of a hypergraph: the rows that each touches.
#include "../support/fields.hpp"
#include "file_error.hpp"
#include "row_lines.hpp"
#include "unit_table.hpp"

#include <csr_matrix_mod/convert.hpp>
#include <csr_matrix_mod/io.hpp>

namespace csr_matrix_mod {

namespace {

constexpr int size_columns = 12;
constexpr int row_columns = 8;

// A column without entries is an empty line.
void write_column(byte_sink& out, array_view<const std::int32_t> rows) {
  for (const std::int32_t i : rows) {
    put_integer(out.room(row_columns), i, row_columns);
    out.advance(row_columns);
  }
  out.write("\n");
}

}  // namespace

void csr_matrix_dump_hypergraph(const csr_matrix& mat, std::string_view filename) {
  csr_matrix columns;
  csr_matrix_transpose(mat, columns);

  at_file(filename, "cannot write", [&] {
    connected_unit unit(filename, direction::writing);
    byte_sink out(unit.file(), filename);
    write_line(out, 2 * size_columns, [&mat](char* to) {
      return put_integer(put_integer(to, mat.m, size_columns), mat.n, size_columns);
    });
    const csr_matrix& edges = columns;
    for (std::int64_t j = 1; j <= mat.m; ++j)
      write_column(out, csr_matrix_getrow(edges, static_cast<std::int32_t>(j)));
    out.flush();
    unit.close_written(filename);
  });
}

}  // namespace csr_matrix_mod
