// SPDX-License-Identifier: MIT
// Stops of the file layer: one line that names the file first.
#pragma once

#include "../support/stop.hpp"

#include <cerrno>
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

}  // namespace csr_matrix_mod
