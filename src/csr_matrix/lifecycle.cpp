// SPDX-License-Identifier: MIT
// A record from its sizes to its release.
#include "../support/stop.hpp"

#include <csr_matrix_mod/csr_matrix.hpp>

#include <algorithm>

namespace csr_matrix_mod {

namespace {

constexpr std::string_view no_room = "allocation error in csr_matrix_allocate";

template <class T>
void copy_leading(array_ref<T>& dest, const array_ref<T>& src, std::int64_t length) {
  std::copy_n(src.data(), std::min({length, src.length(), dest.length()}), dest.data());
}

}  // namespace

void csr_matrix_initial(std::int32_t n, csr_matrix& mat, std::optional<std::int32_t> m,
                        std::optional<matrix_type> type) {
  mat.n = n;
  if (m) mat.m = *m;
  mat.ia = {};
  mat.ja = {};
  mat.a = {};
  if (!mat.ia.allocate(std::int64_t{n} + 1)) stop("allocation error in csr_matrix_initial");
  mat.type = type.value_or(matrix_real);
}

void csr_matrix_allocate(csr_matrix& mat, std::int32_t nz) {
  if (nz <= 0) {
    print_free("try to allocating ", nz, " nonzeros in csr_matrix_allocate!");
    print_line("set to 1");
  }
  const std::int32_t capacity = std::max(nz, 1);
  if (!mat.ja.allocate(capacity)) stop(no_room);
  if (mat.type != matrix_structure_only && !mat.a.allocate(capacity)) stop(no_room);
}

void csr_matrix_reallocate(csr_matrix& mat, std::int32_t nz) {
  if (nz <= 0) {
    print_free("try to reallocating ", nz, " nonzeros in csr_matrix_allocate");
    stop(blank_message);
  }
  if (mat.ja.length() != nz && iexpand1(mat.ja, nz) != 0) stop(no_room);
  if (mat.type != matrix_structure_only && mat.a.length() != nz && expand1(mat.a, nz) != 0)
    stop(no_room);
}

// The numbers of the warnings do not follow the order of the releases; logs are searched for them.
void csr_matrix_deallocate(csr_matrix& mat) {
  if (!mat.ja.release()) print_line("deallocation error in csr_matrix_deallocate1");
  if (!mat.ia.release()) print_line("deallocation error in csr_matrix_deallocate3");
  if (mat.type != matrix_structure_only && !mat.a.release())
    print_line("deallocation error in csr_matrix_deallocate2");
}

void csr_matrix_transfer(csr_matrix& dest, const csr_matrix& src) {
  dest.n = src.n;
  dest.m = src.m;
  dest.type = src.type;
  dest.ia = src.ia.alias();
  dest.ja = src.ja.alias();
  if (dest.type == matrix_real) dest.a = src.a.alias();
}

void csr_matrix_assign(csr_matrix& dest, const csr_matrix& src) {
  csr_matrix_initial(src.n, dest, src.m, src.type);
  csr_matrix_allocate(dest, csr_matrix_num_nz(src));
  copy_leading(dest.ia, src.ia, dest.ia.length());
  copy_leading(dest.ja, src.ja, dest.ja.length());
  if (src.type != matrix_structure_only) copy_leading(dest.a, src.a, dest.a.length());
}

std::int32_t csr_matrix_num_nz(const csr_matrix& mat) {
  return mat.ia(std::int64_t{mat.n} + 1) - 1;
}

std::int32_t csr_matrix_num_row_entries(const csr_matrix& mat, std::int32_t i) {
  return mat.ia(std::int64_t{i} + 1) - mat.ia(i);
}

void csr_matrix_setsize_row(csr_matrix& mat, std::int32_t n) { mat.n = n; }

void csr_matrix_setsize_column(csr_matrix& mat, std::int32_t m) { mat.n = m; }

void csr_matrix_set_type(csr_matrix& mat, matrix_type type) { mat.type = type; }

}  // namespace csr_matrix_mod
