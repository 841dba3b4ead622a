// SPDX-License-Identifier: MIT
// Entries are counted in 64 bits and narrowed here, once, before storage is asked for.
#pragma once

#include "short_text.hpp"
#include "stop.hpp"

#include <cstdint>
#include <string_view>

namespace csr_matrix_mod {

// The last row start is one more than the number of entries and is a 32-bit integer too.
inline constexpr std::int64_t max_entries = 2147483646;

// Stops with "ROUTINE: COUNT entries do not fit, at most 2147483646".
[[nodiscard]] inline std::int32_t entry_count(std::int64_t count, std::string_view routine) {
  if (count > max_entries)
    stop(short_text()
             .append(routine)
             .append(": ")
             .append(count)
             .append(" entries do not fit, at most ")
             .append(max_entries)
             .view());
  return static_cast<std::int32_t>(count);
}

}  // namespace csr_matrix_mod
