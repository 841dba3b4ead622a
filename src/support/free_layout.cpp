// SPDX-License-Identifier: MIT
#include "free_layout.hpp"

#include "fields.hpp"

namespace csr_matrix_mod {

namespace {

constexpr int integer_columns = 11;

}  // namespace

template <class Text>
void free_layout<Text>::separate(item next) {
  if (last_ != item::none && !(last_ == item::text && next == item::text)) line_.append(" ");
  last_ = next;
}

template <class Text>
void free_layout<Text>::put(std::string_view text) {
  separate(item::text);
  line_.append(text);
}

template <class Text>
void free_layout<Text>::put(std::int32_t value) {
  separate(item::other);
  char field[integer_columns];
  put_integer(field, value, integer_columns);
  line_.append(std::string_view(field, sizeof field));
}

template <class Text>
void free_layout<Text>::put(double value) {
  separate(item::other);
  char field[static_cast<std::size_t>(list_directed.width)];
  put_general(field, value, list_directed);
  line_.append(std::string_view(field, sizeof field));
}

template <class Text>
void free_layout<Text>::put(bool value) {
  separate(item::other);
  line_.append(value ? "T" : "F");
}

template class free_layout<std::string>;
template class free_layout<short_text>;

}  // namespace csr_matrix_mod
