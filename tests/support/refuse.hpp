// SPDX-License-Identifier: MIT
// Storage that is not to be had: the k-th request (counted from 0) of the library is refused, for
// as long as this lives.
#pragma once

#include "../../src/support/memory.hpp"

#include <cstddef>

namespace tests {

class refuse_allocation {
 public:
  static constexpr int none = -1;
  static constexpr int all_behind = -2;  // as `another`: every request after the k-th

  explicit refuse_allocation(int k, int another = none) {
    requests = 0;
    refused = k;
    also_refused = another;
    reached_ = false;
    csr_matrix_mod::detail::set_refusal([](std::size_t) noexcept {
      const int request = requests++;
      reached_ = reached_ || request == refused;
      return request == refused || request == also_refused ||
             (also_refused == all_behind && request > refused);
    });
  }
  refuse_allocation(const refuse_allocation&) = delete;
  refuse_allocation& operator=(const refuse_allocation&) = delete;
  ~refuse_allocation() { csr_matrix_mod::detail::set_refusal(nullptr); }

  // Was there a k-th request?
  [[nodiscard]] static bool reached() { return reached_; }

 private:
  inline static int requests = 0;
  inline static int refused = none;
  inline static int also_refused = none;
  inline static bool reached_ = false;
};

}  // namespace tests
