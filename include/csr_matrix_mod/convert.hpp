// SPDX-License-Identifier: MIT
// The same matrix in another form, and the sum of two.
//
//   csr_matrix_transpose              rows become columns
#pragma once

#include <csr_matrix_mod/csr_matrix.hpp>

#include <cstdint>
#include <optional>

namespace csr_matrix_mod {

/// mat_t = transpose of mat.
/// Requires: no column of `mat` beyond the rows of the transpose; `mat_t` is another record, what
/// it refers to is dropped. Unsorted rows, repeated columns and structure only are welcome.
/// Ensures: `mat_t` has ncol rows (m of `mat` if absent), as many columns as `mat` has rows, and
/// the kind of `mat`. Every row is sorted; entries that share row and column keep their order.
/// Capacity is exactly the number of entries (1 if there are none). Cost: O(n + ncol + entries);
/// one temporary of ncol integers. Stops: "allocation error in csr_matrix_transpose" before `mat_t`
/// is touched; as `csr_matrix_initial` and `csr_matrix_allocate`. Warns as `csr_matrix_allocate`
/// when there are no entries.
void csr_matrix_transpose(const csr_matrix& mat, csr_matrix& mat_t,
                          std::optional<std::int32_t> ncol = {});

}  // namespace csr_matrix_mod
