// SPDX-License-Identifier: MIT
// Between a matrix and plain arrays of the same layout; both directions copy.
#include "../support/stop.hpp"

#include <csr_matrix_mod/convert.hpp>

#include <algorithm>

namespace csr_matrix_mod {

namespace {

template <class T>
void create(array_ref<T>& array, std::int64_t length) {
  if (!array.allocate(length)) stop("error in allocation in csr_to_csr");
}

}  // namespace

void csr_to_csr_matrix(std::int32_t n, std::int32_t m, csr_matrix& mat,
                       array_view<const std::int32_t> ia_arr, array_view<const std::int32_t> ja_arr,
                       std::optional<array_view<const double>> a_arr) {
  csr_matrix_initial(n, mat, m, a_arr ? matrix_real : matrix_structure_only);
  const std::int32_t nnz = ia_arr(std::int64_t{n} + 1) - 1;
  csr_matrix_allocate(mat, nnz);
  std::copy_n(ia_arr.data(), mat.ia.length(), mat.ia.data());
  std::copy_n(ja_arr.data(), nnz, mat.ja.data());
  if (a_arr) std::copy_n(a_arr->data(), nnz, mat.a.data());
}

void csr_to_csr_arrays(const csr_matrix& mat, std::int32_t& n, std::int32_t& m, std::int32_t& nnz,
                       array_ref<std::int32_t>& ia_arr, array_ref<std::int32_t>& ja_arr,
                       array_ref<double>* a_arr) {
  n = mat.n;
  m = mat.m;
  nnz = csr_matrix_num_nz(mat);

  create(ia_arr, std::int64_t{n} + 1);
  std::copy_n(mat.ia.data(), ia_arr.length(), ia_arr.data());
  create(ja_arr, nnz);
  std::copy_n(mat.ja.data(), nnz, ja_arr.data());
  if (a_arr == nullptr) return;
  create(*a_arr, nnz);
  if (mat.type == matrix_structure_only) {
    print_line("warning: the matrix is structure_only");
    print_line("set valuie to one");
    std::fill_n(a_arr->data(), nnz, 1.0);
  } else {
    std::copy_n(mat.a.data(), nnz, a_arr->data());
  }
}

}  // namespace csr_matrix_mod
