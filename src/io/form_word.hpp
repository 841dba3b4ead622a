// SPDX-License-Identifier: MIT
// Form and format words are compared exactly, but for blanks behind them.
#pragma once

#include <algorithm>
#include <string_view>

namespace csr_matrix_mod {

[[nodiscard]] constexpr bool is_word(std::string_view given, std::string_view word) noexcept {
  return given.starts_with(word) && given.find_first_not_of(' ', word.size()) == given.npos;
}

}  // namespace csr_matrix_mod
