// SPDX-License-Identifier: MIT
#include <csr_matrix_mod/csr_matrix_mod.hpp>

#include <cstdio>
#include <vector>

using namespace csr_matrix_mod;

int main() {
  //     [  2 -1  . ]      One list of rows, one of columns and one of values;
  // A = [ -1  2 -1 ]      every index counts from 1.
  //     [  . -1  2 ]
  const std::vector<int> row = {1, 1, 2, 2, 2, 3, 3};
  const std::vector<int> column = {1, 2, 1, 2, 3, 2, 3};
  const std::vector<double> value = {2, -1, -1, 2, -1, -1, 2};

  csr_matrix a, square;
  coo_to_csr_format(3, 7, row, column, value, a);
  csr_matrix_multiply(a, a, square);

  for (int i = 1; i <= square.n; ++i)
    for (int k = square.ia(i); k < square.ia(i + 1); ++k)
      std::printf("(%d, %d) %g\n", i, square.ja(k), square.a(k));

  csr_matrix_deallocate(square);
  csr_matrix_deallocate(a);
}
