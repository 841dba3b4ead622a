// SPDX-License-Identifier: MIT
// Free layout: the items of a line as a Fortran processor's list-directed output renders them, so
// that logs and listings of mixed programs line up.
#pragma once

#include "short_text.hpp"

#include <cstdint>
#include <string>
#include <string_view>

namespace csr_matrix_mod {

// Appends one line's items to a text, a std::string or a short_text. Every line begins with one
// blank; a blank separates two items unless both are text.
template <class Text>
class free_layout {
 public:
  explicit free_layout(Text& line) : line_(line) { line_.append(" "); }

  void put(std::string_view text);
  void put(const char* text) { put(std::string_view(text)); }
  void put(std::int32_t value);  // 11 columns
  void put(double value);        // 25 columns, 17 digits
  void put(bool value);          // T or F

 private:
  enum class item { none, text, other };

  void separate(item next);

  Text& line_;
  item last_ = item::none;
};

extern template class free_layout<std::string>;
extern template class free_layout<short_text>;

}  // namespace csr_matrix_mod
