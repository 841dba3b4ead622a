// SPDX-License-Identifier: MIT
// Stops of the file layer: one line that names the file first.
#pragma once

#include "../support/short_text.hpp"
#include "../support/stop.hpp"

#include <cerrno>
#include <new>
#include <string>
#include <string_view>
#include <system_error>

namespace csr_matrix_mod {

// "NAME: WHAT"
[[noreturn]] inline void stop_at_file(std::string_view name, std::string_view what) {
  stop(std::string(name).append(": ").append(what));
}

// "NAME: WHAT: the system's reason"
[[noreturn]] inline void stop_at_file(std::string_view name, std::string_view what, int error) {
  stop_at_file(name, std::string(what).append(": ").append(
                         std::generic_category().message(error != 0 ? error : EIO)));
}

// Runs the body of a reader or writer. Names, messages and lines that cross a seam are strings:
// where there is no storage for one, the file cannot be read or written either, and the stop says
// so without asking for any.
template <class Body>
void at_file(std::string_view name, std::string_view failure, const Body& body) {
  try {
    body();
  } catch (const std::bad_alloc&) {
    stop(short_text()
             .append(name)
             .append(": ")
             .append(failure)
             .append(": Cannot allocate memory")
             .view());
  }
}

}  // namespace csr_matrix_mod
