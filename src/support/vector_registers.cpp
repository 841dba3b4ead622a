// SPDX-License-Identifier: MIT
#include "vector_registers.hpp"

#include <algorithm>
#include <atomic>

namespace csr_matrix_mod::detail {

namespace {

std::atomic<registers> current_limit{registers::of_64_bytes};

registers of_this_machine() noexcept {
#if CSR_MATRIX_MOD_WIDE_REGISTERS
  if (__builtin_cpu_supports("avx512f") != 0) return registers::of_64_bytes;
  if (__builtin_cpu_supports("avx2") != 0) return registers::of_32_bytes;
#endif
  return registers::of_16_bytes;
}

}  // namespace

registers widest_registers() noexcept {
  return std::min(of_this_machine(), current_limit.load(std::memory_order_relaxed));
}

void limit_registers(std::optional<registers> widest) noexcept {
  current_limit.store(widest.value_or(registers::of_64_bytes));
}

}  // namespace csr_matrix_mod::detail
