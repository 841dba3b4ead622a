// SPDX-License-Identifier: MIT
// What a well-formed record is, in the order in which the rules build on each other.
#include <csr_matrix_mod/csr_matrix.hpp>

#include <cstdint>
#include <string>

namespace csr_matrix_mod {

namespace {

std::string number(std::int64_t value) { return std::to_string(value); }

std::optional<std::string> broken_size(const csr_matrix& mat) {
  if (mat.n < 0) return "n is " + number(mat.n) + ", below 0";
  if (mat.m < 0) return "m is " + number(mat.m) + ", below 0";
  if (mat.type != matrix_real && mat.type != matrix_structure_only)
    return "type is " + number(mat.type) + ", neither 0 (values) nor 1 (structure only)";
  return {};
}

std::optional<std::string> broken_row_start(const csr_matrix& mat) {
  const std::int64_t starts = std::int64_t{mat.n} + 1;
  if (mat.ia.length() < starts)
    return "ia has " + number(mat.ia.length()) + " elements, n+1 = " + number(starts) +
           " are needed";
  if (mat.ia(1) != 1) return "ia(1) is " + number(mat.ia(1)) + ", not 1";
  for (std::int64_t i = 1; i <= mat.n; ++i)
    if (mat.ia(i + 1) < mat.ia(i))
      return "row " + number(i) + " ends before it begins: ia goes from " + number(mat.ia(i)) +
             " down to " + number(mat.ia(i + 1));
  return {};
}

std::optional<std::string> broken_storage(const csr_matrix& mat) {
  const std::int32_t nnz = csr_matrix_num_nz(mat);
  if (mat.ja.length() < nnz)
    return "ja has room for " + number(mat.ja.length()) + " of " + number(nnz) + " entries";
  if (mat.type == matrix_real && mat.a.length() < nnz)
    return "a has room for " + number(mat.a.length()) + " of " + number(nnz) + " entries";
  return {};
}

std::optional<std::string> broken_column(const csr_matrix& mat) {
  for (std::int64_t i = 1; i <= mat.n; ++i)
    for (const std::int32_t j : csr_matrix_getrow(mat, static_cast<std::int32_t>(i)))
      if (j < 1 || j > mat.m)
        return "row " + number(i) + " has column " + number(j) + ", outside 1 to " + number(mat.m);
  return {};
}

}  // namespace

std::optional<std::string> csr_matrix_check(const csr_matrix& mat) {
  if (auto broken = broken_size(mat)) return broken;
  if (auto broken = broken_row_start(mat)) return broken;
  if (auto broken = broken_storage(mat)) return broken;
  return broken_column(mat);
}

}  // namespace csr_matrix_mod
