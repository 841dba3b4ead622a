// SPDX-License-Identifier: MIT
// A product formed in a faster way, against the two passes that walk every row.
#pragma once

#include "../support/registers.hpp"
#include "passes.hpp"
#include "products.hpp"

namespace tests {

inline void expect_product_of_the_passes(const csr_matrix& l, const csr_matrix& r) {
  const passes expected = passes_of_product(l, r);
  in_registers_of_every_width([&] {
    csr_matrix product;
    csr_matrix_multiply(l, r, product);
    EXPECT_TRUE(are_same(product, expected));
  });
}

// Each of the requests for storage that its square makes, which are `requests` at least, is refused
// once, twice or from then on. Where that does not end in a stop, nobody is told.
inline void expect_square_in_shortage(const csr_matrix& mat, int requests) {
  const passes expected = passes_of_product(mat, mat);
  bool reached = true;
  int k = 0;
  for (; reached; ++k)
    for (const int another :
         {refuse_allocation::none, refuse_allocation::all_behind, k + 1, k + 2}) {
      csr_matrix square;
      const refuse_allocation refuse(k, another);
      const observed seen = observe([&] { csr_matrix_multiply(mat, mat, square); });
      reached = refuse.reached();
      if (seen.stop) continue;
      EXPECT_TRUE(are_same(square, expected)) << "requests " << k << ", " << another;
    }
  EXPECT_GT(k, requests);
}

}  // namespace tests
