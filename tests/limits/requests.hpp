// SPDX-License-Identifier: MIT
// What a call asks for before it stops.
#pragma once

#include "../../src/support/entry_count.hpp"
#include "../../src/support/memory.hpp"
#include "../support/observe.hpp"

#include <csr_matrix_mod/csr_matrix.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace tests {

// A record has room for so many entries at most, as long as this lives.
class lowered_entry_limit {
 public:
  explicit lowered_entry_limit(std::int64_t most) { csr_matrix_mod::set_entry_limit(most); }
  lowered_entry_limit(const lowered_entry_limit&) = delete;
  lowered_entry_limit& operator=(const lowered_entry_limit&) = delete;
  ~lowered_entry_limit() { csr_matrix_mod::set_entry_limit(0); }
};

struct stopped_call {
  std::optional<std::string> stop;
  std::size_t largest_request;  // in bytes, 0 if nothing was asked for
};

// Runs `call`; a request of more than `granted` bytes is refused.
template <class Call>
stopped_call stopped(const Call& call, std::size_t granted = std::size_t{1} << 20) {
  static std::size_t largest;
  static std::size_t most;
  largest = 0;
  most = granted;
  csr_matrix_mod::detail::set_refusal([](std::size_t bytes) noexcept {
    largest = std::max(largest, bytes);
    return bytes > most;
  });
  const observed seen = observe(call);
  csr_matrix_mod::detail::set_refusal(nullptr);
  return {seen.stop, largest};
}

}  // namespace tests
