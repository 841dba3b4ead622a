// SPDX-License-Identifier: MIT
// Rows gathered into aggregates, the coarse rows of the next level.
#pragma once

#include <csr_matrix_mod/csr_matrix.hpp>

#include <cstdint>
#include <vector>

namespace csrmat {

using csr_matrix_mod::csr_matrix;

struct aggregates {
  std::int32_t count = 0;
  std::vector<std::int32_t> of_row;  // of_row[i - 1] is the aggregate of row i, 1 to count
};

// The pattern of the square matrix `mat` and of its transpose together, without the diagonal.
csr_matrix undirected_graph(const csr_matrix& mat);

// Greedy aggregation of P. Vanek, J. Mandel, M. Brezina, "Algebraic multigrid by smoothed
// aggregation for second and fourth order elliptic problems", Computing 56 (1996), 179-196, without
// a filter: every neighbour is a strong one. `graph` is undirected. Every row is in exactly one
// aggregate, every aggregate is connected, and a row without neighbours is one by itself.
aggregates aggregate(const csr_matrix& graph);

// The piecewise-constant prolongation: row i has one entry, 1 in the column of its aggregate.
csr_matrix piecewise_constant(const aggregates& groups);

}  // namespace csrmat
