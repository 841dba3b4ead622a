// SPDX-License-Identifier: MIT
// What can be written of a matrix into one open file.
#pragma once

#include "stream.hpp"

#include <csr_matrix_mod/csr_matrix.hpp>

namespace csr_matrix_mod {

void write_text(byte_sink& out, const csr_matrix& mat);
void write_unformatted(byte_sink& out, const csr_matrix& mat);

// Every row on a line in free layout: the columns of all rows, then their values.
void write_rows(byte_sink& out, const csr_matrix& mat);

// Every entry on a line: row and column; `write_ija` adds the value where there is one.
void write_ij(byte_sink& out, const csr_matrix& mat);
void write_ija(byte_sink& out, const csr_matrix& mat);

}  // namespace csr_matrix_mod
