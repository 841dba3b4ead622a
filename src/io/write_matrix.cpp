// SPDX-License-Identifier: MIT
// The two encodings of the matrix file, written.
#include "../support/free_layout.hpp"
#include "../support/matrix_fields.hpp"
#include "layouts.hpp"
#include "records.hpp"
#include "row_lines.hpp"

#include <algorithm>
#include <string>

namespace csr_matrix_mod {

namespace {

// Lines of one field each, written by put(to, items, count), as many at once as the sink has room
// for.
template <class Item>
void write_lines(byte_sink& out, const Item* items, std::int64_t count, int columns,
                 char* (*put)(char*, const Item*, std::int64_t) noexcept) {
  const auto line = static_cast<std::size_t>(columns) + 1;
  while (count > 0) {
    char* const first = out.room(line);
    const std::int64_t lines = std::min(count, static_cast<std::int64_t>(out.space() / line));
    out.advance(static_cast<std::size_t>(put(first, items, lines) - first));
    items += lines;
    count -= lines;
  }
}

// An item of each entry, and an empty line for each row without entries.
template <class Item>
void write_entries(byte_sink& out, const csr_matrix& mat, const Item* items, int columns,
                   char* (*put)(char*, const Item*, std::int64_t) noexcept) {
  for_each_run(
      mat,
      [&](std::int32_t first, std::int32_t end) {
        write_lines(out, items + (first - 1), std::int64_t{end} - first, columns, put);
      },
      [&out](std::int64_t) { out.write("\n"); });
}

}  // namespace

void write_text(byte_sink& out, const csr_matrix& mat) {
  std::string type;
  free_layout(type).put(mat.type == matrix_structure_only);
  out.write(type.append("\n"));
  write_line(out, 2 * i10_columns, [&](char* to) { return put_i10(put_i10(to, mat.n), mat.m); });
  write_lines(out, mat.ia.data(), std::int64_t{mat.n} + 1, i10_columns, put_i10_lines);
  write_entries(out, mat, mat.ja.data(), i10_columns, put_i10_lines);
  if (mat.type != matrix_structure_only)
    write_entries(out, mat, mat.a.data(), g20_8_columns, put_g20_8_lines);
}

void write_unformatted(byte_sink& out, const csr_matrix& mat) {
  const auto type = static_cast<std::int32_t>(mat.type);
  const std::int32_t sizes[] = {mat.n, mat.m};
  const std::int64_t starts = std::max(std::int64_t{mat.n} + 1, std::int64_t{0});
  const std::int64_t nnz = starts > 0 ? std::max(csr_matrix_num_nz(mat), 0) : 0;
  write_record(out, &type, sizeof type);
  write_record(out, sizes, sizeof sizes);
  write_record(out, mat.ia.data(), starts * std::int64_t{sizeof(std::int32_t)});
  write_record(out, mat.ja.data(), nnz * std::int64_t{sizeof(std::int32_t)});
  if (mat.type == matrix_real) write_record(out, mat.a.data(), nnz * std::int64_t{sizeof(double)});
}

}  // namespace csr_matrix_mod
