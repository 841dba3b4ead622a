// SPDX-License-Identifier: MIT
#include "memory.hpp"

#include <csr_matrix_mod/support.hpp>

namespace csr_matrix_mod {

namespace {

template <class T>
std::int32_t expand(array_ref<T>& array, std::int32_t new_length) {
  return detail::storage_access::resize(array, new_length) ? 0 : 1;
}

}  // namespace

std::int32_t iexpand1(array_ref<std::int32_t>& array, std::int32_t new_length) {
  return expand(array, new_length);
}

std::int32_t expand1(array_ref<double>& array, std::int32_t new_length) {
  return expand(array, new_length);
}

}  // namespace csr_matrix_mod
