// SPDX-License-Identifier: MIT
// The same matrix in another form, and the sum of two.
//
//   csr_matrix_transpose                rows become columns
//   csr_matrix_symmetrize, _nodiag      a matrix plus its transpose, in its own place
//   csr_matrix_sum, _sum_nodiag         two matrices of the same shape
//   coo_to_csr_format                   a matrix from coordinate lists
//   csr_matrix_to_coo                   coordinate lists from a matrix
//   csr_to_csr_matrix                   a matrix from plain row starts, columns and values
//   csr_to_csr_arrays                   plain arrays from a matrix
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
/// Capacity is exactly the number of entries (1 if there are none).
/// Cost: O(n + ncol + entries); where columns scatter over more than the cache holds, room for less
/// than a fifth of the entries as temporaries.
/// Stops: as `csr_matrix_initial` and `csr_matrix_allocate`; where rows share storage,
/// "csr_matrix_transpose: COUNT entries do not fit, at most 2147483646". Warns as
/// `csr_matrix_allocate` when there are no entries.
void csr_matrix_transpose(const csr_matrix& mat, csr_matrix& mat_t,
                          std::optional<std::int32_t> ncol = {});

/// mat = mat + transpose of mat.
/// Requires: a square matrix; unsorted rows, repeated columns and structure only are welcome.
/// Ensures: each row holds its own columns, merged, in stored order, then the columns that only the
/// transpose has, ascending. Values on the diagonal are doubled. The arrays are new and the
/// record's own: another record over the old ones keeps those. Capacity is exactly the number of
/// entries (1 if there are none).
/// Cost: O(n + entries); the transpose and a marker of m integers as temporaries, n integers alone
/// where the pattern is symmetric and rows ascend.
/// Stops: as `csr_matrix_transpose` and `csr_matrix_sum`, with `mat` unchanged. Warns as
/// `csr_matrix_allocate` when the transpose or the sum has no entries, and as
/// `csr_matrix_deallocate` of an array of `mat` that was null.
void csr_matrix_symmetrize(csr_matrix& mat);

/// The undirected graph of mat: the pattern of mat + transpose of mat without its diagonal.
/// Requires: as `csr_matrix_symmetrize`.
/// Ensures: as `csr_matrix_symmetrize`, but no diagonal, and every value is 1.
/// Cost: as `csr_matrix_symmetrize`; a marker of m integers and n+1 row starts in any case.
/// Stops: as `csr_matrix_transpose` and `csr_matrix_sum_nodiag`, with `mat` unchanged. Warns as
/// `csr_matrix_symmetrize`.
void csr_matrix_symmetrize_nodiag(csr_matrix& mat);

/// mat3 = mat1 + mat2.
/// Requires: operands of one shape; `mat3` is another record, what it refers to is dropped.
/// Unsorted rows, repeated columns and structure only are welcome.
/// Ensures: `mat3` is structure only if an operand is. Each row holds the columns of `mat1` in
/// stored order, then those that only `mat2` has, in stored order, each once; values that meet are
/// added in this order. Capacity is exactly the number of entries (1 if there are none).
/// Cost: O(n + m + entries of both); one temporary of m integers, and room for the entries of both
/// until the sum is known.
/// Stops: "try to sum two matrix of different row/column size" after the line " n =  N N  m =
/// M M"; "allocation error in csr_matrix_sum"; "csr_matrix_sum: COUNT entries do not fit, at most
/// 2147483646"; as `csr_matrix_initial` and `csr_matrix_allocate`. Warns as `csr_matrix_allocate`
/// when there are no entries.
void csr_matrix_sum(const csr_matrix& mat1, const csr_matrix& mat2, csr_matrix& mat3);

/// The pattern of mat1 + mat2 without its diagonal.
/// Requires: as `csr_matrix_sum`.
/// Ensures: as `csr_matrix_sum`, but entries with row = column are left out, and every value is 1.
/// Cost: as `csr_matrix_sum`.
/// Stops: as `csr_matrix_sum`, the routine's own name in the messages about allocation and count.
/// Warns as `csr_matrix_sum`.
void csr_matrix_sum_nodiag(const csr_matrix& mat1, const csr_matrix& mat2, csr_matrix& mat3);

/// A matrix of n rows from nnz entries in any order: entry k stands in row(k), column col(k), with
/// value val(k).
/// Requires: lists of at least nnz elements, rows within 1 to n, columns within 1 to m; `val` is
/// not read when structure only. What `mat` refers to is dropped.
/// Ensures: `mat` has m columns (the largest of col(1..nnz) if absent, 0 if there are no entries)
/// and the given kind (values if absent). Each row keeps the order of the lists; a pair that is
/// given twice stands there twice. Capacity is exactly nnz (1 if nnz is 0 or less).
/// Cost: O(n + nnz); where rows scatter over more than the cache holds, room for less than a fifth
/// of the entries as temporaries.
/// Stops: "coo_to_csr_format: COUNT entries do not fit, at most 2147483646"; as
/// `csr_matrix_initial` and `csr_matrix_allocate`. Warns as `csr_matrix_allocate` when nnz is 0 or
/// less.
void coo_to_csr_format(std::int32_t n, std::int32_t nnz, array_view<const std::int32_t> row,
                       array_view<const std::int32_t> col, array_view<const double> val,
                       csr_matrix& mat, std::optional<matrix_type> type = {},
                       std::optional<std::int32_t> m = {});

/// Row, column and value of every entry of mat, as three new lists.
/// Requires: `mat` has row starts; repeated columns and structure only are welcome.
/// Ensures: the lists follow the rows in stored order and have `nnz` elements; `val` is created
/// even when structure only, and then undefined. What the references held before is dropped.
/// Cost: O(n + entries).
/// Stops: "allocation error in csr_matrix_to_coo", with the three references unchanged.
void csr_matrix_to_coo(const csr_matrix& mat, std::int32_t& nnz, array_ref<std::int32_t>& row,
                       array_ref<std::int32_t>& col, array_ref<double>& val);

/// A matrix of n rows and m columns from arrays in the record's own layout.
/// Requires: n is 0 or more; `ia_arr` has n+1 elements at least, `ja_arr` and `a_arr` as many as
/// there are entries, ia_arr(n+1)-1. What `mat` refers to is dropped.
/// Ensures: `mat` holds a copy of the arrays and shares nothing with them; it carries values when
/// `a_arr` is passed, else it is structure only. Capacity is exactly the number of entries (1 if
/// there are none).
/// Cost: O(n + entries).
/// Stops: as `csr_matrix_initial` and `csr_matrix_allocate`. Warns as `csr_matrix_allocate` when
/// there are no entries.
void csr_to_csr_matrix(std::int32_t n, std::int32_t m, csr_matrix& mat,
                       array_view<const std::int32_t> ia_arr, array_view<const std::int32_t> ja_arr,
                       std::optional<array_view<const double>> a_arr = {});

/// Sizes and new arrays in the record's own layout from mat.
/// Requires: `mat` has row starts.
/// Ensures: `ia_arr` has n+1 elements, `ja_arr`, and `*a_arr` if passed, exactly `nnz`; all are
/// copies. The values of a structure only matrix are 1. What the references held before is dropped.
/// Cost: O(n + entries).
/// Stops: "error in allocation in csr_to_csr"; the arrays made until then stay with the caller.
/// Warns of a structure only matrix when `a_arr` is passed, with the lines "warning: the matrix is
/// structure_only" and "set valuie to one".
void csr_to_csr_arrays(const csr_matrix& mat, std::int32_t& n, std::int32_t& m, std::int32_t& nnz,
                       array_ref<std::int32_t>& ia_arr, array_ref<std::int32_t>& ja_arr,
                       array_ref<double>* a_arr = nullptr);

}  // namespace csr_matrix_mod
