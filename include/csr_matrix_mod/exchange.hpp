// SPDX-License-Identifier: MIT
// Files of other systems, and files that nobody vouches for.
//
//   csr_matrix_read_market            a Matrix Market file into new storage
//   csr_matrix_write_market           a Matrix Market file that every system reads
//   csr_matrix_load                   a matrix file into storage that it sizes from the file itself
#pragma once

#include <csr_matrix_mod/csr_matrix.hpp>

#include <optional>
#include <string_view>

namespace csr_matrix_mod {

/// Reads a Matrix Market file into new storage; the file is not trusted.
/// Requires: coordinate real, integer or pattern, or array real or integer; general, symmetric or
/// skew-symmetric. Words in either case, comments before the size line, blank lines anywhere after
/// the first line, lines of at most 1022 characters, a last line that need not end.
/// Ensures: `mat` is well formed, structure only if the file is a pattern; what it referred to is
/// dropped. Each row holds its entries in the order of the file, repeats and zeros included. An
/// entry off the diagonal of a symmetric file stands twice, its mirror image where it was met
/// itself, with the sign changed if skew-symmetric. An array gives every element an entry. Capacity
/// is exactly the number of entries (1 if there are none). A number too small for a double is 0,
/// `inf` and `nan` are read. Nothing is printed, no unit is taken. Storage is asked for only after
/// the file has shown that it can hold as much.
/// Cost: O(n + entries); the entries, mirror images included, once more as coordinate lists.
/// Stops: "FILE: cannot open for reading: REASON"; "FILE: cannot read: REASON"; "FILE: line N:
/// expected ..., found ..." at a header of another kind, a bad number, an index outside the matrix,
/// an entry above the diagonal of a symmetric file or on that of a skew-symmetric one, fields too
/// few or too many, more entries than the file has bytes for, more than 134217728 rows in a file of
/// fewer bytes, entries too few, anything behind the last one; "csr_matrix_read_market: COUNT
/// entries do not fit, at most 2147483646"; "allocation error in csr_matrix_read_market"; as
/// `coo_to_csr_format`. `mat` is then as it was before.
void csr_matrix_read_market(std::string_view filename, csr_matrix& mat);

/// Writes a Matrix Market file, coordinate real general, or pattern if structure only.
/// Requires: a well-formed `mat`.
/// Ensures: the entries follow row by row in stored order, repeats and zeros included. Each value
/// has the fewest digits that read back as the same double; what is not finite is `inf`, `-inf`,
/// `nan` or `-nan`. No unit is taken.
/// Cost: O(n + entries).
/// Stops: "FILE: cannot open for writing: REASON"; "FILE: cannot write: REASON".
void csr_matrix_write_market(std::string_view filename, const csr_matrix& mat);

/// Reads a matrix file, as `csr_matrix_read` does, into new storage; the file is not trusted.
/// Requires: `form` as in `csr_matrix_read`.
/// Ensures: `mat` is well formed; what it referred to is dropped. `ia` has n+1 elements, `ja` (and
/// `a` unless structure only) one for each entry, 1 if there are none. Nothing is printed, no unit
/// is taken. Storage is asked for only after the file has shown that it holds as much.
/// Cost: O(n + entries).
/// Stops: "can not read this format!"; "FILE: cannot open for reading: REASON"; "FILE: cannot read:
/// REASON"; "FILE: PLACE: expected ..., found ..." where `csr_matrix_read` stops on account of what
/// the file holds, and where the file disagrees with itself: a number of columns below 0, row
/// starts that do not begin with 1 or that decrease, a column outside 1 to m, fewer bytes than the
/// counts promise, a record longer than its items, an entry on the line of an empty row, a last
/// line cut in its field, anything behind the matrix; "allocation error in csr_matrix_load". `mat`
/// is then as it was before.
void csr_matrix_load(std::string_view filename, csr_matrix& mat,
                     std::optional<std::string_view> form = {});

}  // namespace csr_matrix_mod
