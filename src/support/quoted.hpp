// SPDX-License-Identifier: MIT
// Text of others in a message of ours.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace csr_matrix_mod {

// A byte that could upset a terminal, as \xNN.
[[nodiscard]] inline std::string coded(char c) {
  constexpr std::string_view hex = "0123456789abcdef";
  const auto byte = static_cast<unsigned char>(c);
  return {'\\', 'x', hex[byte >> 4], hex[byte & 15]};
}

// What was found in a file, between quotes: long text is cut, and what is not a printable character
// is coded.
[[nodiscard]] inline std::string quoted(std::string_view text) {
  constexpr std::size_t most = 40;
  std::string line = "'";
  for (const char c : text.substr(0, most))
    if (' ' <= c && c <= '~')
      line += c;
    else
      line += coded(c);
  return line.append(text.size() > most ? "'..." : "'");
}

}  // namespace csr_matrix_mod
