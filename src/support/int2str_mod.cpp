// SPDX-License-Identifier: MIT
#include "fields.hpp"

#include <csr_matrix_mod/support.hpp>

namespace csr_matrix_mod {

std::int32_t digit(std::int32_t value) {
  std::int32_t digits = 1;
  for (; value >= 10; value /= 10) ++digits;
  return digits;
}

std::string int2str(std::int32_t value, std::int32_t nd) {
  if (nd <= 0) return {};
  std::string text(static_cast<std::size_t>(nd), ' ');
  put_integer(text.data(), value, nd);
  return text;
}

}  // namespace csr_matrix_mod
