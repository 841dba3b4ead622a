// SPDX-License-Identifier: MIT
// The contract, done plainly: what every ratio is taken against. Nothing here is shared with the
// library, nothing is clever: markers, an exact count, an exact allocation, then a fill.
#pragma once

#include "matrix.hpp"

#include <string>

namespace bench::plain {

matrix multiply(const matrix& a, const matrix& b);
matrix multiply_graph(const matrix& a, const matrix& b);  // paths counted, no diagonal
matrix restriction(const matrix& a, const matrix& p, const matrix& r);
matrix sum(const matrix& a, const matrix& b);
matrix transpose(const matrix& a);
matrix symmetrize(const matrix& a);
void sort(matrix& a);
void clean(matrix& a);
void condense(matrix& graph, array<std::int32_t>& weights);
bool is_structurally_symmetric(const matrix& a);
matrix from_coordinates(std::int32_t n, std::int32_t m, const array<std::int32_t>& rows,
                        const array<std::int32_t>& columns, const array<double>& values);

// The result is written into `y`, which has its length already.
void multiply_vector(const matrix& a, const array<double>& x, array<double>& y);
void multiply_vector_transposed(const matrix& a, const array<double>& x, array<double>& y);
void multiply_integers(const matrix& a, const array<std::int32_t>& x, array<std::int32_t>& y);
void multiply_integers_transposed(const matrix& a, const array<std::int32_t>& x,
                                  array<std::int32_t>& y);

// Matrix files by the C library's own formatting and scanning. The reader fills arrays that have
// their lengths already.
void write_text(const matrix& a, const std::string& file);
void read_text(matrix& a, const std::string& file);
void write_binary(const matrix& a, const std::string& file);
void read_binary(matrix& a, const std::string& file);

}  // namespace bench::plain
