// SPDX-License-Identifier: MIT
// Matrices to measure on, the same ones on every machine.
#pragma once

#include "matrix.hpp"

#include <cstdint>

namespace bench {

// All sizes at once: 1 is what is reported, less is for a quick look.
struct sizes {
  double scale = 1;
  [[nodiscard]] double of(double full) const { return full * scale; }
};

// Stencils on a square or a cube of about that many points, rows sorted, values random in (-1, 1).
matrix five_point(double rows, std::uint64_t seed = 1);
matrix seven_point(double rows, std::uint64_t seed = 1);
matrix twenty_seven_point(double rows, std::uint64_t seed = 1);

// The points of a square that is cut into triangles, each little square along either of its
// diagonals: rows of 3 to 9 entries, sorted.
matrix triangles(double rows, std::uint64_t seed = 1);

// Rows of `per_row` different columns each, uniformly random, sorted.
matrix uniform_random(double rows, int per_row = 8, std::uint64_t seed = 1);

// Rows of 0 to `most` uniformly random columns, sorted, repeated ones merged.
matrix uneven_random(double rows, int most = 15, std::uint64_t seed = 1);

// Each row has columns up to `beside` away from the diagonal.
matrix band(double rows, std::int32_t beside, std::uint64_t seed = 1);

// So many unknowns at each point of a matrix: each entry becomes a block of entries.
matrix several_unknowns(const matrix& of, std::int32_t number, std::uint64_t seed = 1);

// The rows and columns of a square matrix in another order, mixed up among `within` neighbours, as
// the points of an unstructured mesh are; rows sorted.
matrix renumbered(const matrix& of, std::int32_t within, std::uint64_t seed = 1);

// R-MAT (0.57, 0.19, 0.19, 0.05): about `rows` rows, rounded down to a power of 2, 16 edges drawn a
// row, repeated ones merged, rows sorted.
matrix rmat(double rows, std::uint64_t seed = 1);

// The entries of each row in random order.
matrix shuffled_rows(matrix of, std::uint64_t seed = 1);

// Some entries of each row stored again, at the end of it.
matrix repeated_entries(const matrix& of, std::uint64_t seed = 1);

// One of two columns drawn anew, those that a row has twice then left out.
matrix half_redrawn(const matrix& of, std::uint64_t seed);

// The entries on and below the diagonal.
matrix lower_triangle(const matrix& of);

// Every 8 neighbours of a cube (4 of a square, `block` consecutive rows) make one coarse point.
matrix aggregates_of_square(std::int32_t side);
matrix aggregates_of_cube(std::int32_t side);
matrix aggregates_in_order(std::int32_t rows, std::int32_t block);

// (I - 2/3 D^-1 a) p, where D is the sum of the magnitudes of each row.
matrix smoothed(const matrix& a, const matrix& p);

// The side of the square or cube that the stencils above stand on.
std::int32_t square_side(double rows);
std::int32_t cube_side(double rows);

array<double> random_vector(std::int64_t length, std::uint64_t seed = 1);
array<std::int32_t> random_integers(std::int64_t length, std::uint64_t seed = 1);
array<std::int32_t> random_order(std::int64_t length, std::uint64_t seed = 1);

// The row of every entry.
array<std::int32_t> rows_of_entries(const matrix& a);

}  // namespace bench
