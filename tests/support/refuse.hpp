// SPDX-License-Identifier: MIT
// Storage that is not to be had: the k-th request (counted from 0) of the library is refused, for
// as long as this lives.
#pragma once

#include "../../src/support/memory.hpp"

#include <cstddef>

namespace tests {

class refuse_allocation {
 public:
  explicit refuse_allocation(int k) {
    countdown = k;
    reached_ = false;
    csr_matrix_mod::detail::set_refusal([](std::size_t) noexcept {
      if (countdown-- != 0) return false;
      reached_ = true;
      return true;
    });
  }
  refuse_allocation(const refuse_allocation&) = delete;
  refuse_allocation& operator=(const refuse_allocation&) = delete;
  ~refuse_allocation() { csr_matrix_mod::detail::set_refusal(nullptr); }

  // Was there a k-th request?
  [[nodiscard]] static bool reached() { return reached_; }

 private:
  inline static int countdown = 0;
  inline static bool reached_ = false;
};

}  // namespace tests
