// SPDX-License-Identifier: MIT
// Rows put in order, in place, and questions about the pattern.
//
//   csr_matrix_sort                        rows ascending, repeated columns merged
//   csr_matrix_clean                       repeated columns merged, order kept
//   csr_matrix_remove_diag, _movediag      the diagonal gone, or first in its row
//   csr_matrix_condense                    columns with the same rows become one
//   matrix_is_struct_symmetric             is the pattern that of the transpose?
//   csr_matrix_sortrow, _sortrow_noval     one row given as plain arrays
#pragma once

#include <csr_matrix_mod/csr_matrix.hpp>

#include <cstdint>

namespace csr_matrix_mod {

/// Sorts every row by column and merges repeated columns, values added.
/// Requires: `mat` has row starts; structure only is welcome.
/// Ensures: each row holds each column once, ascending; values that meet are added in stored order.
/// Capacity becomes exactly the number of entries if anything was merged, else it is kept.
/// Cost: O(n + entries); temporaries of three words of 8 bytes for each entry of the longest row. A
/// matrix that is sorted is only looked at.
/// Stops: as `csr_matrix_sortrow` or `csr_matrix_sortrow_noval`, with `mat` unchanged; as
/// `csr_matrix_reallocate` where the storage cannot be cut, with `mat` sorted.
void csr_matrix_sort(csr_matrix& mat);

/// Merges repeated columns of every row, values added, without sorting.
/// Requires: `mat` has row starts and entries; columns within 1 to m; structure only is welcome.
/// Ensures: each row holds each column once, where it stood first; values that meet are added in
/// stored order. Capacity is exactly the number of entries, also if nothing was merged.
/// Cost: O(n + m + entries); a temporary of m integers. A matrix that is sorted is only looked at.
/// Stops: with a blank message after the line " problem allocating in matrix_clean", `mat`
/// unchanged; as `csr_matrix_reallocate`, a matrix without entries included.
void csr_matrix_clean(csr_matrix& mat);

/// Deletes the diagonal.
/// Requires: `mat` has row starts if n is not 0; structure only and repeated columns are welcome.
/// Ensures: no entry has row = column, others keep their order; capacity is kept, and entries
/// beyond the count are stale.
/// Cost: O(n + entries); nothing is allocated.
/// Stops: never.
void csr_matrix_remove_diag(csr_matrix& mat);

/// Moves the diagonal entry of every row to the front of the row.
/// Requires: values present, whatever `type` says.
/// Ensures: the first diagonal entry of row i and the entry that stood first have changed places;
/// all others stay where they are.
/// Cost: O(n + entries); nothing is allocated.
/// Stops: with a blank message after the line " no diagonal element exist in row  I !"; the rows
/// before it are done.
void csr_matrix_movediag(csr_matrix& mat);

/// Merges columns that occur in the same rows, drops columns with fewer than two entries, and sums
/// the weights of the columns that were merged.
/// Requires: structure only; columns within 1 to m; `col_wgt` has m elements at least.
/// Ensures: `m` is the number of columns kept, numbered in the order in which the rows told them
/// apart; a row holds each once, where its first member stood. col_wgt(1..m) are the sums (they
/// wrap at 32 bits), further elements are kept. A repeated column counts as often as it stands, so
/// that it may pass for, or be merged with, columns that differ: clean such a matrix first.
/// Capacity is one more than the number of entries; the spare slot keeps what stood there.
/// Cost: O(n + m + entries); temporaries of 5m integers. Columns repeated within a row can make
/// that 11m, and 9 more for each repeated entry.
/// Stops: "try condensing matrix with values!"; " size of col_wgt too small"; "allocation error in
/// csr_matrix_condense"; each with nothing changed; as `csr_matrix_reallocate`, with `col_wgt`
/// unchanged. Warns "warning: try condensing a matrix of 0 columns!" and changes nothing when m is
/// 0 or less.
void csr_matrix_condense(csr_matrix& mat, array_view<std::int32_t> col_wgt);

/// Is the pattern of mat symmetric?
/// Requires: `mat` has row starts, columns within 1 to m; unsorted rows, repeated columns and
/// structure only are welcome.
/// Ensures: true for every symmetric pattern, as long as (i, j) is repeated as often as (j, i).
/// False for a matrix that is not square, and when a column that stands at the positions of row i
/// of the transpose is not one of row i, with a line that names the first such:
/// " nonsymmetric: n,m =  N M" or "non-symmetric entry " I J. A pattern with as many entries in row
/// i as in column i, for every i, passes, symmetric or not.
/// Cost: O(n + entries); the row starts of the transpose as temporaries, and a marker of n integers
/// where they differ from those of mat.
/// Stops: "fail to allocate in is_symmetric"; "csr_matrix_transpose: COUNT entries do not fit, at
/// most 2147483646"; as `csr_matrix_initial`. Warns as `csr_matrix_allocate`, and may stop as it
/// does, when there are no entries.
bool matrix_is_struct_symmetric(const csr_matrix& mat);

/// Sorts one row by column and merges repeated columns, values added.
/// Requires: `cols` and `vals` have `len` elements at least.
/// Ensures: the first `len` (as it returns) elements are the distinct columns, ascending, with the
/// values that met added in stored order; elements from there to the old `len` are stale. Nothing
/// changes when `len` is less than 1.
/// Cost: O(len log len); temporaries of len integers and len values.
/// Stops: "allocation error in csr_matrix_sortrow"; where the values have no room, the columns are
/// sorted by then.
void csr_matrix_sortrow(std::int32_t& len, array_view<std::int32_t> cols, array_view<double> vals);

/// As `csr_matrix_sortrow`, for a row without values.
/// Requires: `cols` has `len` elements at least.
/// Ensures: as `csr_matrix_sortrow`.
/// Cost: O(len log len); a temporary of len integers.
/// Stops: "allocation error in csr_matrix_sortrow_noval".
void csr_matrix_sortrow_noval(std::int32_t& len, array_view<std::int32_t> cols);

}  // namespace csr_matrix_mod
