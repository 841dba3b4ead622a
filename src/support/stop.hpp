// SPDX-License-Identifier: MIT
// How the library speaks and how it stops.
#pragma once

#include "free_layout.hpp"

#include <string_view>

namespace csr_matrix_mod {

// Stops the program with `message`, by way of the handler if one is set. Whoever calls this holds
// no lock: a handler may throw, or call back into the library.
[[noreturn]] void stop(std::string_view message);

// Stops with "allocation error in ROUTINE", and asks for no storage to say so.
[[noreturn]] void stop_without_storage(std::string_view routine);

// For stops whose reason has been written to standard output already.
inline constexpr std::string_view blank_message = " ";

// One line on standard output, as it stands.
void print_line(std::string_view line);

// One line on standard output in free layout. It needs no storage: it may go before a stop for want
// of it.
template <class... Item>
void print_free(const Item&... items) {
  short_text line;
  free_layout layout(line);
  (layout.put(items), ...);
  print_line(line.view());
}

}  // namespace csr_matrix_mod
