// SPDX-License-Identifier: MIT
// Products: matrix times matrix, graph times graph, coarse operators, matrix times vector.
//
//   csr_matrix_multiply                      m3 = m1 m2
//   csr_matrix_restriction                   mc = r (m1 p), the coarse matrix
//   csr_matrix_multiply_rvector, _ivector    y = mat x
//   csr_matrix_trans_mult_rvector, _ivector  y = transpose(mat) x
//   csr_matrix_multiply_graph                paths of length two, counted or weighted
//   csr_matrix_graph_restriction             gc = r (g1 p) without its diagonal
//   matmul_size, matmul_normal, ...          the passes of a product on plain arrays
//
// A product is formed row by row. The passes count first, then fill what is allocated at its exact
// size. The routines over records fill room for an entry a path, n times ncol at most, and cut it
// to the entries; what stays empty of it takes addresses but no memory. Where there is no such room
// they make the two passes. In all of them each column stands once in a row, in the order of first
// discovery: the entries of the left row as stored, and for each the right row as stored. Rows are
// not sorted. An entry that cancels to 0 is kept. Operands may be unsorted and may repeat a column
// in a row; each repeat contributes. "Paths" in the costs below are the scalar multiplications:
// over all entries (i, j) of the left operand, the length of row j of the right one.
#pragma once

#include <csr_matrix_mod/csr_matrix.hpp>

#include <cstdint>
#include <optional>

namespace csr_matrix_mod {

/// m3 = m1 m2, with values when both operands have them, else the pattern alone.
/// Requires: the columns of `m1` are rows of `m2`; the columns of `m2` lie in 1 to `ncol` (m2's `m`
/// when absent; below 0 counts as 0); `m3` is neither operand. Shapes are not compared.
/// Ensures: `m3` is m1's `n` by m2's `m`, also when `ncol` is given; rows in order of discovery;
/// capacity is exactly the number of entries (1 if there are none).
/// Cost: O(n + ncol + paths) and a look at the rows of `m2`, and at its entries unless `m1` has
/// fewer than a quarter as many as `m2` has rows; one marker of `ncol` integers, room for an entry
/// a path as above, a bit for each row of the operands and some rows that repeat.
/// Stops: as `csr_matrix_initial` and `csr_matrix_allocate`; as `matmul_size` and `matmul_normal`
/// or `matmul_noval` when there is no room for the marker; "csr_matrix_multiply: COUNT entries do
/// not fit, at most 2147483646". Warns as `csr_matrix_allocate` when there are no entries.
void csr_matrix_multiply(const csr_matrix& m1, const csr_matrix& m2, csr_matrix& m3,
                         std::optional<std::int32_t> ncol = {});

/// mc = r (m1 p): the coarse matrix under prolongation p and restriction r.
/// Requires: all three operands have values; the columns of `m1`, `p` and `r` lie within their
/// sizes; `mc` is no operand.
/// Ensures: `mc` has values and is r's `n` by p's `m`; rows in order of discovery; capacity is
/// exactly the number of entries (1 if there are none).
/// Cost: that of both products; m1 p is held until the end.
/// Stops: in this order, before anything is built, each after one line:
///   " n,m = N M", "m1 not a square matrix in matrix_restriction";
///   " n = N p%size = P", "p not same size as size of m1" (P is p's `n`);
///   " m = M r%size = R", "r not same size as size of m1" (r's `m` is compared, its `n` shown).
/// Then as `csr_matrix_multiply` for m1 p; as `csr_matrix_initial`, `matmul_size`,
/// `csr_matrix_allocate` and `matmul_normal`; "csr_matrix_restriction: COUNT entries do not fit, at
/// most 2147483646". Warns as `csr_matrix_allocate` when a product has no entries.
void csr_matrix_restriction(const csr_matrix& m1, const csr_matrix& p, const csr_matrix& r,
                            csr_matrix& mc);

/// y = mat x, with the stored values.
/// Requires: `mat` has values (a structure only matrix is a caller error and is not detected); `x`
/// has m elements or more and does not overlap `y`.
/// Ensures: y(1) to y(n) are overwritten, further elements are kept; each sum starts from 0 and
/// runs in stored order.
/// Cost: O(n + entries); nothing is allocated.
/// Stops: "size of y too small in matrix_multiply_rvector" when `y` has fewer than n elements,
/// after the lines " row size of matrix = N" and " size of y = S"; `y` is then as it was.
void csr_matrix_multiply_rvector(const csr_matrix& mat, array_view<const double> x,
                                 array_view<double> y);

/// y = transpose(mat) x, with the stored values; the transpose is not formed.
/// Requires: `mat` has values (a structure only matrix is a caller error and is not detected); `x`
/// has n elements or more and does not overlap `y`.
/// Ensures: all of `y` is overwritten, elements beyond m with 0; contributions are added in stored
/// order.
/// Cost: O(length of y + n + entries); nothing is allocated.
/// Stops: "size of y too small in matrix_trans_mult_rvector" when `y` has fewer than m elements,
/// after the lines " column size of matrix = M" and " size of y = S"; `y` is then as it was.
void csr_matrix_trans_mult_rvector(const csr_matrix& mat, array_view<const double> x,
                                   array_view<double> y);

/// y = pattern(mat) x: every stored entry weighs 1, whatever its value.
/// Requires: `x` has m elements or more and does not overlap `y`. Structure only is allowed.
/// Ensures: as `csr_matrix_multiply_rvector`; sums wrap at 32 bits.
/// Cost: O(n + entries); nothing is allocated.
/// Stops: "size of y too small in matrix_multiply_ivector" when `y` has fewer than n elements,
/// after the lines " row size of matrix = N" and " size of y = S"; `y` is then as it was.
void csr_matrix_multiply_ivector(const csr_matrix& mat, array_view<const std::int32_t> x,
                                 array_view<std::int32_t> y);

/// y = transpose(pattern(mat)) x: every stored entry weighs 1, whatever its value.
/// Requires: `x` has n elements or more and does not overlap `y`. Structure only is allowed.
/// Ensures: as `csr_matrix_trans_mult_rvector`; sums wrap at 32 bits.
/// Cost: O(length of y + n + entries); nothing is allocated.
/// Stops: "size of y too small in matrix_trans_mult_ivector" when `y` has fewer than m elements,
/// after the lines " column size of matrix = M" and " size of y = S"; `y` is then as it was.
void csr_matrix_trans_mult_ivector(const csr_matrix& mat, array_view<const std::int32_t> x,
                                   array_view<std::int32_t> y);

/// g3(i, k) = the number of paths i to j in g1, j to k in g2, k other than i; with `wgt` the sum of
/// the weights of the middle vertices j.
/// Requires: the columns of `g1` are rows of `g2` and, with `wgt`, positions in it; the columns of
/// `g2` lie in 1 to `ncol` (g2's `m` when absent; below 0 counts as 0); `g3` is neither operand.
/// Shapes are not compared; type and values of the operands are not read.
/// Ensures: `g3` has values and is g1's `n` by `ncol` (unlike `csr_matrix_multiply`, whose result
/// keeps m2's `m`); no diagonal entries; rows in order of discovery; capacity is exactly the number
/// of entries (1 if there are none).
/// Cost: as `csr_matrix_multiply`.
/// Stops: as `csr_matrix_initial` and `csr_matrix_allocate`; as `matmul_size_graph` and
/// `matmul_graph` or `matmul_wgraph` when there is no room for the marker;
/// "csr_matrix_multiply_graph: COUNT entries do not fit, at most 2147483646". Warns as
/// `csr_matrix_allocate` when there are no entries.
void csr_matrix_multiply_graph(const csr_matrix& g1, const csr_matrix& g2, csr_matrix& g3,
                               std::optional<std::int32_t> ncol = {},
                               std::optional<array_view<const std::int32_t>> wgt = {});

/// gc = r (g1 p) without its diagonal: the coarse graph, its edges the summed fine ones.
/// Requires: as `csr_matrix_restriction`.
/// Ensures: as `csr_matrix_restriction`, but no entry (i, i); g1 p keeps all of its entries.
/// Cost: as `csr_matrix_restriction`.
/// Stops: as `csr_matrix_restriction`, with the messages "g1 not a graph in
/// matrix_graph_restriction", "p not same size as size of g1" and "r not same size as size of g1";
/// then as `csr_matrix_multiply` for g1 p; as `csr_matrix_initial`, `matmul_size_graph`,
/// `csr_matrix_allocate` and `matmul_formgraph`; "csr_matrix_graph_restriction: COUNT entries do
/// not fit, at most 2147483646". Warns as `csr_matrix_allocate` when a product has no entries.
void csr_matrix_graph_restriction(const csr_matrix& g1, const csr_matrix& p, const csr_matrix& r,
                                  csr_matrix& gc);

// The passes on plain arrays: n rows of the left operand, the marker length ncol, the left operand
// (ia, ja, a), the right operand (ib, jb, b) and the product (ic, jc, ac).

/// nz = the number of entries of the product of two patterns.
/// Requires: the columns in `ja` are rows of the right operand; those in `jb` lie in 1 to `ncol`
/// (below 0 counts as 0).
/// Ensures: `nz` is exact; each (row, column) pair counts once.
/// Cost: O(n + ncol + paths); one marker of `ncol` integers.
/// Stops: "allocation error in matmul_size"; "matmul_size: COUNT entries do not fit, at most
/// 2147483646".
void matmul_size(std::int32_t n, std::int32_t ncol, array_view<const std::int32_t> ia,
                 array_view<const std::int32_t> ja, array_view<const std::int32_t> ib,
                 array_view<const std::int32_t> jb, std::int32_t& nz);

/// The entries of the product, with values.
/// Requires: as `matmul_size`; `ic` has n+1 elements, `jc` and `ac` have `nz` or more; outputs do
/// not overlap inputs.
/// Ensures: n+1 row starts, ic(1) = 1; rows in order of discovery; products are rounded, then added
/// in the order of discovery.
/// Cost: as `matmul_size`.
/// Stops: "allocation error in matmul_normal".
void matmul_normal(std::int32_t n, std::int32_t ncol, array_view<const std::int32_t> ia,
                   array_view<const std::int32_t> ja, array_view<const double> a,
                   array_view<const std::int32_t> ib, array_view<const std::int32_t> jb,
                   array_view<const double> b, array_view<std::int32_t> ic,
                   array_view<std::int32_t> jc, array_view<double> ac);

/// The entries of the product, pattern only.
/// Requires: as `matmul_normal`, without values.
/// Ensures: as `matmul_normal`, without values.
/// Cost: as `matmul_size`.
/// Stops: "allocation error in matmul_noval".
void matmul_noval(std::int32_t n, std::int32_t ncol, array_view<const std::int32_t> ia,
                  array_view<const std::int32_t> ja, array_view<const std::int32_t> ib,
                  array_view<const std::int32_t> jb, array_view<std::int32_t> ic,
                  array_view<std::int32_t> jc);

/// nz = the number of entries of the product of two patterns, its diagonal left out.
/// Requires: as `matmul_size`.
/// Ensures: as `matmul_size`; a pair (i, i) is not counted.
/// Cost: as `matmul_size`.
/// Stops: "allocation error in matmul_size_graph"; "matmul_size_graph: COUNT entries do not fit, at
/// most 2147483646".
void matmul_size_graph(std::int32_t n, std::int32_t ncol, array_view<const std::int32_t> ia,
                       array_view<const std::int32_t> ja, array_view<const std::int32_t> ib,
                       array_view<const std::int32_t> jb, std::int32_t& nz);

/// The paths of length two between different vertices, counted.
/// Requires: as `matmul_normal`, with `nz` from `matmul_size_graph`.
/// Ensures: as `matmul_normal`; each path adds 1 to its entry; no entry (i, i).
/// Cost: as `matmul_size`.
/// Stops: "allocation error in matmul_graph".
void matmul_graph(std::int32_t n, std::int32_t ncol, array_view<const std::int32_t> ia,
                  array_view<const std::int32_t> ja, array_view<const std::int32_t> ib,
                  array_view<const std::int32_t> jb, array_view<std::int32_t> ic,
                  array_view<std::int32_t> jc, array_view<double> ac);

/// The paths of length two between different vertices, each worth the weight of its middle vertex.
/// Requires: as `matmul_graph`; every column in `ja` is a position in `wgt`.
/// Ensures: as `matmul_graph`; a path over vertex j adds wgt(j); a sum of 0 is kept.
/// Cost: as `matmul_size`.
/// Stops: "allocation error in matmul_wgraph".
void matmul_wgraph(std::int32_t n, std::int32_t ncol, array_view<const std::int32_t> ia,
                   array_view<const std::int32_t> ja, array_view<const std::int32_t> ib,
                   array_view<const std::int32_t> jb, array_view<std::int32_t> ic,
                   array_view<std::int32_t> jc, array_view<double> ac,
                   array_view<const std::int32_t> wgt);

/// The entries of the product, with values, its diagonal left out. Values stand first in each group
/// of arguments, unlike in `matmul_normal`.
/// Requires: as `matmul_normal`, with `nz` from `matmul_size_graph`.
/// Ensures: as `matmul_normal`; no entry (i, i), whatever its value would be.
/// Cost: as `matmul_size`.
/// Stops: "allocation error in matmul_formgraph".
void matmul_formgraph(std::int32_t n, std::int32_t ncol, array_view<const double> a,
                      array_view<const std::int32_t> ia, array_view<const std::int32_t> ja,
                      array_view<const double> b, array_view<const std::int32_t> ib,
                      array_view<const std::int32_t> jb, array_view<double> ac,
                      array_view<std::int32_t> ic, array_view<std::int32_t> jc);

}  // namespace csr_matrix_mod
