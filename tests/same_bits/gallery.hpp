// SPDX-License-Identifier: MIT
// Matrices made with integers alone, so that every machine and every standard library makes the
// same.
#pragma once

#include <csr_matrix_mod/csr_matrix_mod.hpp>

#include <cstdint>
#include <vector>

namespace same_bits {

class numbers {
 public:
  explicit numbers(std::uint64_t seed) : state_(seed) {}

  std::uint64_t next() noexcept {
    std::uint64_t z = state_ += 0x9e3779b97f4a7c15U;
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9U;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebU;
    return z ^ (z >> 31);
  }
  // From 0 to bound-1.
  std::int32_t below(std::int32_t bound) noexcept {
    return static_cast<std::int32_t>(next() % static_cast<std::uint64_t>(bound));
  }

 private:
  std::uint64_t state_;
};

// What the values of a matrix are like.
enum class kind {
  whole,   // small whole numbers, zeros of both signs among them
  even,    // all 53 bits in use, magnitudes near 1: every sum and product is rounded
  wide,    // magnitudes from 2**-500 to 2**300
  tiny,    // subnormal numbers and the smallest normal ones
  pattern  // none: structure only
};
double value_of(kind values, numbers& random);

struct sample {
  kind values;
  csr_matrix_mod::csr_matrix mat;
};

// Square matrices: stencils, unsorted rows, repeated columns, rows and columns that are full or
// empty, rows long and short, in every kind of values.
std::vector<sample> square_matrices();
// An m-row matrix with one entry a row, in `classes` columns.
csr_matrix_mod::csr_matrix aggregation(std::int32_t rows, std::int32_t classes, kind values);
// Unsorted rows of up to `longest` entries, repeats and empty rows among them.
csr_matrix_mod::csr_matrix unsorted(std::int32_t rows, std::int32_t columns, std::int32_t longest,
                                    kind values, std::uint64_t seed);
// The 5-point stencil on a grid of the given sides.
csr_matrix_mod::csr_matrix five_point(std::int32_t width, std::int32_t height, kind values);

// A chain of points, at each of them so many unknowns.
csr_matrix_mod::csr_matrix chain(std::int32_t points, std::int32_t unknowns, kind values);

std::vector<double> value_vector(std::int32_t length, kind values, std::uint64_t seed);
std::vector<std::int32_t> integer_vector(std::int32_t length, std::uint64_t seed);
std::vector<std::int32_t> permutation(std::int32_t length, std::uint64_t seed);

}  // namespace same_bits
