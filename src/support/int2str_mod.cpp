// SPDX-License-Identifier: MIT
#include <csr_matrix_mod/support.hpp>

#include <charconv>

namespace csr_matrix_mod {

std::int32_t digit(std::int32_t value) {
  std::int32_t digits = 1;
  for (; value >= 10; value /= 10) ++digits;
  return digits;
}

std::string int2str(std::int32_t value, std::int32_t nd) {
  if (nd <= 0) return {};
  char text[12];  // a sign and ten digits
  const auto [end, error] = std::to_chars(text, text + sizeof text, value);
  const auto width = static_cast<std::size_t>(nd);
  const auto length = static_cast<std::size_t>(end - text);
  if (length > width) return std::string(width, '*');
  return std::string(width - length, ' ').append(text, length);
}

}  // namespace csr_matrix_mod
