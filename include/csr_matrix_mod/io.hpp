// SPDX-License-Identifier: MIT
// Matrix files, listings and plots.
//
//   csr_matrix_read                          a matrix file into storage that the caller gave
//   csr_matrix_dump                          a matrix file, or a listing
//   csr_matrix_dump_gnuplot, _ordered        the pattern as a picture
//   csr_matrix_dump_hypergraph               the columns as a hypergraph
//   vacant_unit, close_unit                  the numbered units that files are open on
#pragma once

#include <csr_matrix_mod/csr_matrix.hpp>

#include <cstdint>
#include <optional>
#include <string_view>

namespace csr_matrix_mod {

/// Reads a matrix file into storage that `mat` already has.
/// Requires: `ia` has room for n+1 row starts, `ja` (and `a` unless structure only) for the
/// entries. `form` is absent for text, "unformatted" for records (blanks behind it are ignored).
/// Ensures: type, n, m, row starts, columns and values are those of the file; capacity and further
/// slots are kept, no array is allocated. The file stays open on its unit (`close_unit`). Numbers
/// are taken from the first 10 or 20 columns of a line, blanks in them ignored, text behind them
/// too.
/// Cost: O(n + entries).
/// Stops: "no vacant unit exists!"; "FILE: cannot open for reading: REASON"; "FILE: cannot read:
/// REASON"; any other `form` with "can not read this format!" once the file is open, and leaves it
/// so; a bad field, a short file or an item that has no room with
/// "FILE: line N: expected ..., found ..." (or "record N"). What was read before a stop is then in
/// `mat`.
void csr_matrix_read(std::string_view filename, csr_matrix& mat,
                     std::optional<std::string_view> form = {});

/// Writes a matrix file or a listing, by format word; blanks behind the word are ignored.
/// Requires: a well-formed `mat`. Both orders with "gnuplot_ordered", as in that routine.
/// Ensures: "unformatted" writes records, "dump" the rows, "ij" and "ija" the entries; "gnuplot",
/// "gnuplot_ordered" and "hypergraph" are the routines of that name; absent, or any other word,
/// text for `csr_matrix_read`. The unit is closed, but stays open after "dump" or text of a
/// structure only matrix (`close_unit`); the file is complete in either case.
/// Cost: O(n + entries).
/// Stops: "no vacant unit exists!"; "FILE: cannot open for writing: REASON"; "FILE: cannot
/// write: REASON".
void csr_matrix_dump(std::string_view filename, const csr_matrix& mat,
                     std::optional<std::string_view> format = {},
                     std::optional<array_view<const std::int32_t>> row_order = {},
                     std::optional<array_view<const std::int32_t>> col_order = {});

/// Draws the pattern of a matrix: a point an entry, row 1 at the top.
/// Requires: a well-formed `mat`; repeated columns are drawn as often as they stand.
/// Ensures: the points are in `filename`, the gnuplot commands in `filename`.com; these make
/// `filename`.ps. The line " writing gnuplot formatted matrix in NAME and NAME.com" is printed.
/// Both units are closed.
/// Cost: O(n + entries).
/// Stops: as `csr_matrix_dump`.
void csr_matrix_dump_gnuplot(const csr_matrix& mat, std::string_view filename);

/// As `csr_matrix_dump_gnuplot`, with row i drawn at row_order(i) and column j at col_order(j).
/// Requires: n elements in `row_order`, m in `col_order`; a position outside of the picture is
/// written as it is.
/// Ensures: as `csr_matrix_dump_gnuplot`.
/// Cost: O(n + entries).
/// Stops: as `csr_matrix_dump`.
void csr_matrix_dump_gnuplot_ordered(const csr_matrix& mat, std::string_view filename,
                                     array_view<const std::int32_t> row_order,
                                     array_view<const std::int32_t> col_order);

/// Writes the columns of a matrix as a hypergraph: for each column the rows that it touches.
/// Requires: a well-formed `mat`.
/// Ensures: the first line holds m and n, in 12 columns each; then a line for each column, its rows
/// in 8 columns each, ascending; an empty line for an empty column. The unit is closed.
/// Cost: O(n + m + entries); the transpose is a temporary.
/// Stops: as `csr_matrix_transpose` and `csr_matrix_dump`. Warns as `csr_matrix_transpose` when
/// there are no entries.
void csr_matrix_dump_hypergraph(const csr_matrix& mat, std::string_view filename);

/// The lowest free unit, from 10 to 500.
/// Requires: nothing.
/// Ensures: the unit is not taken, only named; the next routine that opens a file takes it.
/// Cost: at most 491 looks.
/// Stops: "no vacant unit exists!".
std::int32_t vacant_unit();

/// Releases a unit that a reader or writer left open.
/// Requires: nothing.
/// Ensures: the file is closed and the unit free; no effect on a unit that is not open.
/// Cost: constant.
/// Stops: never.
void close_unit(std::int32_t unit);

}  // namespace csr_matrix_mod
