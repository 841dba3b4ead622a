// SPDX-License-Identifier: MIT
// The record, its life, and access to single rows.
//
//   csr_matrix_initial, _allocate     sizes and row starts first, then room for the entries
//   csr_matrix_deallocate             release
//   csr_matrix_assign, _transfer      a copy, or the same arrays under a second record
//   csr_matrix_getrow, _getrowval     one row as a view
//   csr_matrix_fill, _extrow, _setval entry by entry, or all values at once
//   csr_matrix_num_nz, ...            counts and plain setters
//   csr_matrix_check                  is this record well formed?
#pragma once

#include <csr_matrix_mod/support.hpp>

#include <cstdint>
#include <optional>
#include <string>

namespace csr_matrix_mod {

enum matrix_type : std::int32_t {
  matrix_real = 0,           ///< values present
  matrix_structure_only = 1  ///< pattern only, also called a graph: no values
};

/// A sparse matrix or graph in compressed rows.
///
/// Row i occupies positions ia(i) to ia(i+1)-1 of `ja` and `a`; every index counts from 1, ia(1) =
/// 1, and row starts do not decrease. Rows need not be sorted and may repeat a column unless a
/// routine says otherwise. The length of `ja` is the capacity; the number of entries is ia(n+1)-1.
///
///     [ 10  .  20 ]      n = 2, m = 3     ia = 1 3 4
///     [  .  30  . ]                       ja = 1 3 2
///                                         a  = 10 20 30
struct csr_matrix {
  std::int32_t n = 0;          ///< rows
  std::int32_t m = 0;          ///< columns
  array_ref<std::int32_t> ia;  ///< row starts, n+1 of them
  array_ref<std::int32_t> ja;  ///< column of each entry
  array_ref<double> a;         ///< value of each entry; null when structure only
  matrix_type type = matrix_real;
};

/// A growing buffer for the entries of one row.
///
/// The caller gives `ja` and `a` storage of equal length (0 will do) and sets `count` to 0.
struct csr_row {
  std::int32_t count = 0;
  array_ref<std::int32_t> ja;
  array_ref<double> a;
};

/// Makes `mat` an n-row record with storage for its row starts.
/// Requires: nothing; what `mat` refers to is dropped.
/// Ensures: `n` is set; `m` is set if given, else kept; `type` is set if given, else values; `ia`
/// has max(n+1, 0) elements, undefined; `ja` and `a` are null.
/// Cost: one allocation; nothing is initialised.
/// Stops: "allocation error in csr_matrix_initial" when `ia` cannot be had; all three are null.
void csr_matrix_initial(std::int32_t n, csr_matrix& mat, std::optional<std::int32_t> m = {},
                        std::optional<matrix_type> type = {});

/// Gives `mat` storage for `nz` entries.
/// Requires: `csr_matrix_initial` before.
/// Ensures: `ja`, and `a` unless structure only, have max(nz, 1) elements, undefined; `ia` is kept.
/// Cost: one allocation or two; nothing is initialised.
/// Stops: "allocation error in csr_matrix_allocate". Warns when nz is 0 or less, with the lines
/// " try to allocating NZ  nonzeros in csr_matrix_allocate!" and "set to 1".
void csr_matrix_allocate(csr_matrix& mat, std::int32_t nz);

/// Changes the storage of the entries to exactly `nz`, larger or smaller.
/// Requires: `ja`, and `a` unless structure only, hold storage.
/// Ensures: the leading entries are kept; an array that has this length already is left alone.
/// Cost: the entries kept.
/// Stops: "allocation error in csr_matrix_allocate"; when nz is 0 or less with a blank message
/// after the line " try to reallocating NZ  nonzeros in csr_matrix_allocate".
void csr_matrix_reallocate(csr_matrix& mat, std::int32_t nz);

/// Releases the arrays of `mat`.
/// Requires: nothing.
/// Ensures: `ja`, `ia` and, unless structure only, `a` are null; `n`, `m` and `type` are kept.
/// Cost: constant, and what giving back the memory takes.
/// Stops: never. Warns of an array that was null, in this order, with "deallocation error in
/// csr_matrix_deallocate1" (`ja`), "...3" (`ia`), "...2" (`a`).
void csr_matrix_deallocate(csr_matrix& mat);

/// Makes `dest` a second record over the arrays of `src`.
/// Requires: nothing.
/// Ensures: sizes and type are those of `src`; the arrays are shared, nothing is copied; `a` is
/// shared only when values are present, else kept. Only one of the two needs to be released.
/// Cost: constant.
/// Stops: never.
void csr_matrix_transfer(csr_matrix& dest, const csr_matrix& src);

/// Makes `dest` a copy of `src`.
/// Requires: `src` has row starts; `dest` is another record.
/// Ensures: same rows in the same order; capacity is exactly the number of entries (1 if there are
/// none).
/// Cost: O(n + entries).
/// Stops: as `csr_matrix_initial` and `csr_matrix_allocate`. Warns as `csr_matrix_allocate` when
/// there are no entries.
void csr_matrix_assign(csr_matrix& dest, const csr_matrix& src);

/// The columns of row i; writing through the view writes the matrix.
/// Requires: 1 <= i; the view ends with the next change of storage.
/// Ensures: a view of length max(ia(i+1)-ia(i), 0).
/// Cost: constant.
/// Stops: when i > n, with a blank message after the line " try to access the I  th row of a
/// matrix of N  rows!".
array_view<std::int32_t> csr_matrix_getrow(csr_matrix& mat, std::int32_t i);
array_view<const std::int32_t> csr_matrix_getrow(const csr_matrix& mat, std::int32_t i);

/// The values of row i; writing through the view writes the matrix.
/// Requires: 1 <= i; the view ends with the next change of storage.
/// Ensures: a view of length max(ia(i+1)-ia(i), 0).
/// Cost: constant.
/// Stops: as `csr_matrix_getrow` when i > n; "getrowval in a structure only matrix!".
array_view<double> csr_matrix_getrowval(csr_matrix& mat, std::int32_t i);
array_view<const double> csr_matrix_getrowval(const csr_matrix& mat, std::int32_t i);

/// Puts column j, and value v if given, into the next free slot of row i.
/// Requires: final row starts; pos(i) entries of row i are placed already (0 at first); row i has
/// room for one more.
/// Ensures: pos(i) has grown by 1; the entry stands at position ia(i)+pos(i)-1.
/// Cost: constant.
/// Stops: as `csr_matrix_getrow`; as `csr_matrix_getrowval` when v is given, after the column was
/// placed and counted.
void csr_matrix_fill(csr_matrix& mat, std::int32_t i, array_view<std::int32_t> pos, std::int32_t j,
                     std::optional<double> v = {});

/// Appends the entry (j, v) to a row buffer.
/// Requires: `ja` and `a` hold storage of equal length.
/// Ensures: `count` has grown by 1; a full buffer grows to count + max(count/10, 10), to
/// 2147483647 at most.
/// Cost: amortised; a growth copies the buffer.
/// Stops: never. Where there is no room to grow, the entry is not appended and `count` is kept.
void csr_matrix_extrow(csr_row& row, std::int32_t j, double v);

/// Sets every value to v, spare capacity included.
/// Requires: `a` holds storage.
/// Ensures: a(k) = v over the whole length of `a`.
/// Cost: the capacity.
/// Stops: "try to set value of a structure only matrix".
void csr_matrix_setval(csr_matrix& mat, double v);

/// The number of stored entries, ia(n+1)-1.
/// Requires: `mat` has row starts.
/// Ensures: capacity plays no part.
/// Cost: constant.
/// Stops: never.
std::int32_t csr_matrix_num_nz(const csr_matrix& mat);

/// The number of entries of row i, ia(i+1)-ia(i).
/// Requires: 1 <= i <= n.
/// Ensures: repeated columns count as often as they stand.
/// Cost: constant.
/// Stops: never.
std::int32_t csr_matrix_num_row_entries(const csr_matrix& mat, std::int32_t i);

/// Sets the number of rows in the record.
/// Requires: nothing.
/// Ensures: only `n` changes; no array does.
/// Cost: constant.
/// Stops: never.
void csr_matrix_setsize_row(csr_matrix& mat, std::int32_t n);

/// Sets `n`, as `csr_matrix_setsize_row` does: callers rely on it, so it stays. To change the
/// number of columns, assign to `mat.m`.
/// Requires: nothing.
/// Ensures: `n` becomes the argument; `m` is kept.
/// Cost: constant.
/// Stops: never.
void csr_matrix_setsize_column(csr_matrix& mat, std::int32_t m);

/// Sets the storage kind in the record.
/// Requires: nothing.
/// Ensures: only `type` changes; no array does.
/// Cost: constant.
/// Stops: never.
void csr_matrix_set_type(csr_matrix& mat, matrix_type type);

/// Is `mat` well formed? The routines trust their input; this one looks.
/// Requires: nothing.
/// Ensures: nothing when well formed, else the first broken rule in words: sizes not negative,
/// `type` one of the two, `ia` of n+1 elements at least, ia(1) = 1, row starts that do not
/// decrease, room for the entries in `ja` and (unless structure only) in `a`, columns within 1 to
/// m. Sorting and repeats are not judged.
/// Cost: O(n + entries).
/// Stops: never.
[[nodiscard]] std::optional<std::string> csr_matrix_check(const csr_matrix& mat);

}  // namespace csr_matrix_mod
