// SPDX-License-Identifier: MIT
// A row whose columns lie near each other is sorted without comparing them: each sets a bit, and as
// many bits as are set before it is its place. Shuffled rows of 80 entries and more take 0.4 to 0.7
// of the time that ranks and radix take, those of 33 and more 0.7 to 1.
#pragma once

#include <cstdint>

namespace csr_matrix_mod {

// Puts a row in ascending order to `to` and `new_values`, which may be its own place or one before
// it; `values` is null for a pattern, `slots` and `room` have place for what is in the row. False,
// with nothing written to `to`, where the columns spread too far or one is repeated.
using near_columns = bool(const std::int32_t* columns, const double* values, std::int32_t length,
                          std::uint64_t* slots, double* room, std::int32_t* to, double* new_values);

// With the instruction that counts bits, where there is one.
[[nodiscard]] near_columns& sort_near_columns() noexcept;

}  // namespace csr_matrix_mod
