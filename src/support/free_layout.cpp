// SPDX-License-Identifier: MIT
#include "free_layout.hpp"

#include "fields.hpp"

#include <csr_matrix_mod/support.hpp>

namespace csr_matrix_mod {

void free_layout::separate(item next) {
  if (last_ != item::none && !(last_ == item::text && next == item::text)) line_ += ' ';
  last_ = next;
}

void free_layout::put(std::string_view text) {
  separate(item::text);
  line_ += text;
}

void free_layout::put(std::int32_t value) {
  separate(item::other);
  line_ += int2str(value, 11);
}

void free_layout::put(double value) {
  separate(item::other);
  char field[list_directed.width];
  put_general(field, value, list_directed);
  line_.append(field, sizeof field);
}

void free_layout::put(bool value) {
  separate(item::other);
  line_ += value ? 'T' : 'F';
}

}  // namespace csr_matrix_mod
