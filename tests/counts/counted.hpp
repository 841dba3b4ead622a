// SPDX-License-Identifier: MIT
// How often, and for how many bytes, the library asks for storage during a call.
#pragma once

#include "../../src/support/memory.hpp"

#include <cstddef>
#include <cstdint>
#include <ostream>

namespace tests {

struct requests {
  std::int64_t count = 0;
  std::int64_t bytes = 0;

  friend bool operator==(const requests&, const requests&) = default;
  friend std::ostream& operator<<(std::ostream& out, const requests& of) {
    return out << of.count << " requests, " << of.bytes << " bytes";
  }
};

// Nothing is refused: the hook is asked before every request, and is told its size.
template <class Call>
requests counted(const Call& call) {
  static requests seen;
  seen = {};
  csr_matrix_mod::detail::set_refusal([](std::size_t bytes) noexcept {
    ++seen.count;
    seen.bytes += static_cast<std::int64_t>(bytes);
    return false;
  });
  call();
  csr_matrix_mod::detail::set_refusal(nullptr);
  return seen;
}

}  // namespace tests
