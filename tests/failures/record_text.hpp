// SPDX-License-Identifier: MIT
// A record as text: all that a caller may read of it, bit for bit, and its capacity.
#pragma once

#include <csr_matrix_mod/csr_matrix.hpp>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string>

namespace tests {

inline void append(std::string& text, std::int32_t integer) {
  text.append(" ").append(std::to_string(integer));
}

inline void append(std::string& text, double value) {
  char digits[40];
  std::snprintf(digits, sizeof digits, " %a", value);
  text.append(digits);
}

template <class T>
std::string text_of(const csr_matrix_mod::array_ref<T>& array, std::int64_t length) {
  if (!array.allocated()) return " null";
  std::string text = " (" + std::to_string(array.length()) + ")";
  for (std::int64_t k = 1; k <= std::min(length, array.length()); ++k) append(text, array(k));
  return text;
}

inline std::string text_of(const csr_matrix_mod::csr_matrix& mat) {
  const bool rows = mat.n >= 0 && mat.ia.length() > mat.n;
  const std::int64_t nnz = rows ? csr_matrix_num_nz(mat) : 0;
  return std::to_string(mat.n) + " x " + std::to_string(mat.m) + " type " +
         std::to_string(mat.type) + text_of(mat.ia, std::int64_t{mat.n} + 1) +
         text_of(mat.ja, nnz) + text_of(mat.a, nnz) + "\n";
}

}  // namespace tests
