// SPDX-License-Identifier: MIT
// The stop message of a call, cheap enough for a hundred thousand of them.
#pragma once

#include <csr_matrix_mod/support.hpp>

#include <optional>
#include <string>
#include <string_view>

namespace tests {

// Nothing when the call returned.
template <class Call>
std::optional<std::string> stop_of(const Call& call) {
  struct stopped {
    std::string message;
  };
  const auto before = csr_matrix_mod::set_stop_handler(
      [](std::string_view message) { throw stopped{std::string(message)}; });
  std::optional<std::string> message;
  try {
    call();
  } catch (const stopped& stop) {
    message = stop.message;
  }
  csr_matrix_mod::set_stop_handler(before);
  return message;
}

}  // namespace tests
