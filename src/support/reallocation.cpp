// SPDX-License-Identifier: MIT
#include <csr_matrix_mod/support.hpp>

#include <algorithm>

namespace csr_matrix_mod {

namespace {

template <class T>
std::int32_t expand(array_ref<T>& array, std::int32_t new_length) {
  array_ref<T> grown;
  if (!grown.allocate(new_length)) return 1;
  std::copy_n(array.data(), std::min(array.length(), grown.length()), grown.data());
  array = std::move(grown);
  return 0;
}

}  // namespace

std::int32_t iexpand1(array_ref<std::int32_t>& array, std::int32_t new_length) {
  return expand(array, new_length);
}

std::int32_t expand1(array_ref<double>& array, std::int32_t new_length) {
  return expand(array, new_length);
}

}  // namespace csr_matrix_mod
