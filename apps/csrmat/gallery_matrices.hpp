// SPDX-License-Identifier: MIT
// Matrices to try things on, without a file from elsewhere. Sizes are 1 or more; one whose rows or
// entries do not fit is refused with a `failure`.
#pragma once

#include <csr_matrix_mod/csr_matrix.hpp>

#include <cstdint>

namespace csrmat {

using csr_matrix_mod::csr_matrix;

// -Laplace by finite differences on a grid of points^2 (points^3) inner points, zero on the
// boundary: 4 (6) on the diagonal, -1 for each neighbour. Rows are sorted. Positive definite.
csr_matrix poisson2d(std::int32_t points);
csr_matrix poisson3d(std::int32_t points);

// -Laplace by linear finite elements on a Delaunay mesh of points^2 jittered inner points, zero on
// the boundary: the rows and columns of boundary points are left out. Rows are sorted. Positive
// definite; rows without a neighbour on the boundary sum up to zero.
csr_matrix finite_elements(std::int32_t points, std::uint64_t seed);

// An undirected graph, structure only: 4 edges a vertex drawn at random, loops and repetitions left
// out. Rows are sorted.
csr_matrix random_graph(std::int32_t vertices, std::uint64_t seed);

}  // namespace csrmat
