// SPDX-License-Identifier: MIT
// Entries are counted in 64 bits and narrowed here, once, before storage is asked for.
#pragma once

#include <cstdint>
#include <string_view>

namespace csr_matrix_mod {

// The last row start is one more than the number of entries and is a 32-bit integer too.
inline constexpr std::int64_t max_entries = 2147483646;

// The most that fit: `max_entries`, unless a test has set less, so that it meets the limit with a
// handful of entries. 0 restores the usual limit.
[[nodiscard]] std::int64_t entry_limit() noexcept;
void set_entry_limit(std::int64_t most) noexcept;

// Stops with "ROUTINE: COUNT entries do not fit, at most 2147483646".
[[nodiscard]] std::int32_t entry_count(std::int64_t count, std::string_view routine);

}  // namespace csr_matrix_mod
