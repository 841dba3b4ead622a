// SPDX-License-Identifier: MIT
// A matrix and its pattern.
#pragma once

#include <csr_matrix_mod/csr_matrix.hpp>

#include <cstdint>
#include <optional>
#include <utility>

namespace csrmat {

using csr_matrix_mod::csr_matrix;

// The pattern of `mat`, over the same row starts and columns.
csr_matrix pattern_of(const csr_matrix& mat);

// A second record over `mat`; one without values gets the value 1 for every entry.
csr_matrix with_values(const csr_matrix& mat);

// An entry (i, j) of the square matrix `mat` without an entry (j, i); nothing when the pattern is
// symmetric. Rows may be unsorted and may repeat a column.
std::optional<std::pair<std::int32_t, std::int32_t>> unpaired_entry(const csr_matrix& mat);

}  // namespace csrmat
