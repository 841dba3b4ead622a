// SPDX-License-Identifier: MIT
// A matrix plus its transpose, in its own place.
#include <csr_matrix_mod/convert.hpp>

namespace csr_matrix_mod {

namespace {

using sum_routine = void(const csr_matrix&, const csr_matrix&, csr_matrix&);

void symmetrize(csr_matrix& mat, sum_routine& sum) {
  csr_matrix mat_t;
  csr_matrix total;
  csr_matrix_transpose(mat, mat_t);
  sum(mat, mat_t, total);
  csr_matrix_deallocate(mat);
  csr_matrix_deallocate(mat_t);
  csr_matrix_transfer(mat, total);
}

}  // namespace

void csr_matrix_symmetrize(csr_matrix& mat) { symmetrize(mat, csr_matrix_sum); }

void csr_matrix_symmetrize_nodiag(csr_matrix& mat) { symmetrize(mat, csr_matrix_sum_nodiag); }

}  // namespace csr_matrix_mod
