// SPDX-License-Identifier: MIT
// Text that needs no storage: what is said where there may be none to be had.
#pragma once

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace csr_matrix_mod {

// Room for the longest path of a file and the words around it; what goes beyond is cut.
class short_text {
 public:
  short_text& append(std::string_view text) noexcept {
    const std::size_t length = std::min(text.size(), text_.size() - length_);
    std::copy_n(text.data(), length, text_.data() + length_);
    length_ += length;
    return *this;
  }
  short_text& append(std::int64_t number) noexcept {
    char digits[20];
    const char* const end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    return append(std::string_view(digits, static_cast<std::size_t>(end - digits)));
  }

  [[nodiscard]] std::string_view view() const noexcept { return {text_.data(), length_}; }

 private:
  std::array<char, 4608> text_;
  std::size_t length_ = 0;
};

}  // namespace csr_matrix_mod
