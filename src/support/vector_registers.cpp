// SPDX-License-Identifier: MIT
#include "vector_registers.hpp"

#include <algorithm>
#include <atomic>

namespace csr_matrix_mod::detail {

namespace {

std::atomic<registers> current_limit{registers::of_64_bytes};

registers of_this_machine() noexcept {
#if CSR_MATRIX_MOD_WIDE_REGISTERS
  const bool wide = __builtin_cpu_supports("avx2") != 0 && __builtin_cpu_supports("popcnt") != 0;
  const bool widest = wide && __builtin_cpu_supports("avx512f") != 0;
  return widest ? registers::of_64_bytes : wide ? registers::of_32_bytes : registers::of_16_bytes;
#else
  return registers::of_16_bytes;
#endif
}

}  // namespace

registers widest_registers() noexcept {
  return std::min(of_this_machine(), current_limit.load(std::memory_order_relaxed));
}

void limit_registers(std::optional<registers> widest) noexcept {
  current_limit.store(widest.value_or(registers::of_64_bytes));
}

}  // namespace csr_matrix_mod::detail
