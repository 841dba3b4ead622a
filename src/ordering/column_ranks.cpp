// SPDX-License-Identifier: MIT
#include "column_ranks.hpp"

#include "../support/vector_registers.hpp"

namespace csr_matrix_mod {

namespace {

bool rank_16(const std::int32_t* column, std::int32_t length, std::int32_t* place) {
  return rank_columns<16>(column, length, (length + 7) / 8 * 8, place);
}

#if CSR_MATRIX_MOD_WIDE_REGISTERS

[[gnu::target("avx2")]] bool rank_32(const std::int32_t* column, std::int32_t length,
                                     std::int32_t* place) {
  return rank_columns<32>(column, length, (length + 15) / 16 * 16, place);
}

#endif

}  // namespace

const column_ranks& ranks_in_widest_registers() noexcept {
  static constexpr column_ranks of_16_bytes{64, rank_16};
#if CSR_MATRIX_MOD_WIDE_REGISTERS
  static constexpr column_ranks of_32_bytes{128, rank_32};
  if (detail::widest_registers() >= detail::registers::of_32_bytes) return of_32_bytes;
#endif
  return of_16_bytes;
}

}  // namespace csr_matrix_mod
