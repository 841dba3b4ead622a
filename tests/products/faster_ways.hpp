// SPDX-License-Identifier: MIT
// A product formed in a faster way, against the two passes that walk every row.
#pragma once

#include "../support/registers.hpp"
#include "passes.hpp"
#include "products.hpp"

#include <functional>

namespace tests {

inline void expect_product_of_the_passes(const csr_matrix& l, const csr_matrix& r) {
  const passes expected = passes_of_product(l, r);
  in_registers_of_every_width([&] {
    csr_matrix product;
    csr_matrix_multiply(l, r, product);
    EXPECT_TRUE(are_same(product, expected));
  });
}

// Each of the requests for storage that a product makes, which are `requests` at least, is refused
// once, twice or from then on. Where that does not end in a stop, nobody is told.
inline void expect_product_in_shortage(const passes& expected, int requests,
                                       const std::function<void(csr_matrix& product)>& multiply) {
  bool reached = true;
  int k = 0;
  for (; reached; ++k)
    for (const int another :
         {refuse_allocation::none, refuse_allocation::all_behind, k + 1, k + 2}) {
      csr_matrix product;
      const refuse_allocation refuse(k, another);
      const observed seen = observe([&] { multiply(product); });
      reached = refuse.reached();
      if (seen.stop) continue;
      EXPECT_TRUE(are_same(product, expected)) << "requests " << k << ", " << another;
    }
  EXPECT_GT(k, requests);
}

inline void expect_square_in_shortage(const csr_matrix& mat, int requests) {
  expect_product_in_shortage(passes_of_product(mat, mat), requests,
                             [&](csr_matrix& square) { csr_matrix_multiply(mat, mat, square); });
}

}  // namespace tests
