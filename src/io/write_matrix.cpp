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

void write_text(byte_sink& out, const csr_matrix& mat) {
  const auto put_column = [columns = mat.ja.data()](char* to, std::int32_t, std::int32_t k) {
    return put_i10(to, columns[k - 1]);
  };
  const auto put_value = [values = mat.a.data()](char* to, std::int32_t, std::int32_t k) {
    return put_g20_8(to, values[k - 1]);
  };

  std::string type;
  free_layout(type).put(mat.type == matrix_structure_only);
  out.write(type.append("\n"));
  write_line(out, 2 * i10_columns, [&](char* to) { return put_i10(put_i10(to, mat.n), mat.m); });
  const std::int32_t* const starts = mat.ia.data();
  for (std::int64_t i = 0; i <= mat.n; ++i)
    write_line(out, i10_columns, [&](char* to) { return put_i10(to, starts[i]); });
  write_row_lines(out, mat, i10_columns, put_column);
  if (mat.type != matrix_structure_only) write_row_lines(out, mat, g20_8_columns, put_value);
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
