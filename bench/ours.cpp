// SPDX-License-Identifier: MIT
#include "ours.hpp"

namespace bench::ours {

csr_matrix record(const matrix& of) {
  csr_matrix made;
  if (of.values.empty())
    csr_matrix_mod::csr_to_csr_matrix(of.n, of.m, made, of.starts, of.columns);
  else
    csr_matrix_mod::csr_to_csr_matrix(of.n, of.m, made, of.starts, of.columns, of.values);
  return made;
}

matrix arrays(const csr_matrix& of) {
  const std::int32_t nnz = csr_matrix_mod::csr_matrix_num_nz(of);
  matrix made;
  made.n = of.n;
  made.m = of.m;
  made.starts.assign(of.ia.data(), of.ia.data() + of.n + 1);
  made.columns.assign(of.ja.data(), of.ja.data() + nnz);
  if (of.a.allocated()) made.values.assign(of.a.data(), of.a.data() + nnz);
  return made;
}

}  // namespace bench::ours
