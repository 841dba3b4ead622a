// SPDX-License-Identifier: MIT
// The one place that asks how wide the vector registers of this machine are. What is written for
// wider ones than every machine has stands beside the same for those of 16 bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

// Code for wider registers than the library is built for, in functions that say so.
#if defined(__x86_64__) && (defined(__GNUC__) || defined(__clang__))
#define CSR_MATRIX_MOD_WIDE_REGISTERS 1
#else
#define CSR_MATRIX_MOD_WIDE_REGISTERS 0
#endif

namespace csr_matrix_mod::detail {

// A vector of doubles. GCC 12 takes the attribute of an alias that depends on a template's argument
// for none.
template <std::size_t Bytes>
struct vector_of {
  typedef double type __attribute__((vector_size(Bytes)));  // NOLINT(modernize-use-using)
};

// Who has those of 32 bytes can count bits in one instruction too.
enum class registers : std::uint8_t { of_16_bytes, of_32_bytes, of_64_bytes };

// The widest that the processor and the system let a program use, 16 bytes where none are wider.
[[nodiscard]] registers widest_registers() noexcept;

// No wider ones than `widest`, all again when it is empty: so tests run what narrower machines run.
void limit_registers(std::optional<registers> widest) noexcept;

}  // namespace csr_matrix_mod::detail
