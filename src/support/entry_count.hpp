// SPDX-License-Identifier: MIT
// Entries are counted in 64 bits and narrowed here, once, before storage is asked for.
#pragma once

#include "stop.hpp"

#include <cstdint>
#include <string>
#include <string_view>

namespace csr_matrix_mod {

// The last row start is one more than the number of entries and is a 32-bit integer too.
inline constexpr std::int64_t max_entries = 2147483646;

// Stops with "ROUTINE: COUNT entries do not fit, at most 2147483646".
[[nodiscard]] inline std::int32_t entry_count(std::int64_t count, std::string_view routine) {
  if (count > max_entries)
    stop(std::string(routine) + ": " + std::to_string(count) + " entries do not fit, at most " +
         std::to_string(max_entries));
  return static_cast<std::int32_t>(count);
}

}  // namespace csr_matrix_mod
