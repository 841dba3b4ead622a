// SPDX-License-Identifier: MIT
// Files of other systems, and files that nobody vouches for.
//
//   csr_matrix_load                   a matrix file into storage that it sizes from the file itself
#pragma once

#include <csr_matrix_mod/csr_matrix.hpp>

#include <optional>
#include <string_view>

namespace csr_matrix_mod {

/// Reads a matrix file, as `csr_matrix_read` does, into new storage; the file is not trusted.
/// Requires: `form` as in `csr_matrix_read`.
/// Ensures: `mat` is well formed; what it referred to is dropped. `ia` has n+1 elements, `ja` (and
/// `a` unless structure only) one for each entry, 1 if there are none. Nothing is printed, no unit
/// is taken. Storage is asked for only after the file has shown that it holds as much.
/// Cost: O(n + entries).
/// Stops: as `csr_matrix_read`, and also with "FILE: PLACE: expected ..., found ..." where the file
/// disagrees with itself: a number of columns below 0, row starts that do not begin with 1 or that
/// decrease, a column outside 1 to m, fewer bytes than the counts promise, a record longer than its
/// items, an entry on the line of an empty row, a last line cut in its field, anything behind the
/// matrix; "allocation error in csr_matrix_load". `mat` is then as it was before.
void csr_matrix_load(std::string_view filename, csr_matrix& mat,
                     std::optional<std::string_view> form = {});

}  // namespace csr_matrix_mod
