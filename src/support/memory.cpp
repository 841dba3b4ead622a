// SPDX-License-Identifier: MIT
#include "memory.hpp"

#include <algorithm>
#include <atomic>
#include <cstdlib>

namespace csr_matrix_mod::detail {

namespace {

std::atomic<refusal> current_refusal{nullptr};

bool refused(std::size_t bytes) noexcept {
  const refusal refuse = current_refusal.load(std::memory_order_relaxed);
  return refuse != nullptr && refuse(bytes);
}

// A request for nothing is storage too, so it must not come back null.
std::size_t at_least_one(std::size_t bytes) noexcept { return std::max<std::size_t>(bytes, 1); }

}  // namespace

void* obtain(std::size_t bytes) noexcept {
  return refused(bytes) ? nullptr : std::malloc(at_least_one(bytes));
}

void* obtain_zeroed(std::size_t bytes) noexcept {
  return refused(bytes) ? nullptr : std::calloc(at_least_one(bytes), 1);
}

void give_back(void* block) noexcept { std::free(block); }

void set_refusal(refusal refuse) noexcept { current_refusal.store(refuse); }

}  // namespace csr_matrix_mod::detail
