// SPDX-License-Identifier: MIT
// Every width of vector registers that this machine has, one after the other: what is written for
// wide ones has to give the same as what every machine runs.
#pragma once

#include "../../src/support/vector_registers.hpp"

#include <gtest/gtest.h>

#include <optional>

namespace tests {

// Calls back with no wider registers than those of 16, of 32 and of 64 bytes.
template <class Call>
void in_registers_of_every_width(const Call& call) {
  using csr_matrix_mod::detail::limit_registers;
  using csr_matrix_mod::detail::registers;
  struct limit {
    explicit limit(registers widest) { limit_registers(widest); }
    limit(const limit&) = delete;
    limit& operator=(const limit&) = delete;
    ~limit() { limit_registers(std::nullopt); }
  };
  for (const registers widest :
       {registers::of_16_bytes, registers::of_32_bytes, registers::of_64_bytes}) {
    const testing::ScopedTrace where(__FILE__, __LINE__, testing::PrintToString(widest));
    const limit while_called(widest);
    call();
  }
}

}  // namespace tests
