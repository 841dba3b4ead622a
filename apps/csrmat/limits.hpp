// SPDX-License-Identifier: MIT
// Sizes are worked out here before anything is allocated.
#pragma once

#include "../../src/support/entry_count.hpp"
#include "failure.hpp"

#include <unistd.h>

#include <cstdint>
#include <string>

namespace csrmat {

using csr_matrix_mod::max_entries;

// factor1 * factor2 of two counts; refused when there are more than fit, which `what` names.
inline std::int64_t fitting_product(std::int64_t factor1, std::int64_t factor2,
                                    const std::string& what) {
  if (factor1 != 0 && factor2 > max_entries / factor1)
    throw failure(what + " do not fit, at most " + std::to_string(max_entries));
  return factor1 * factor2;
}

// Refused when this machine does not have that much memory: better one line now than to be ended
// half-way by the system.
inline void require_memory(std::int64_t bytes, const std::string& what) {
  constexpr std::int64_t mega = 1000000;
  const std::int64_t present = std::int64_t{sysconf(_SC_PHYS_PAGES)} * sysconf(_SC_PAGESIZE);
  if (bytes > present)
    throw failure(what + " needs " + std::to_string(bytes / mega) +
                  " MB of memory, this machine has " + std::to_string(present / mega) + " MB");
}

// Columns without entries take no room in a file, but `integers` elements each in the work arrays
// of what is done.
inline void require_memory_for_columns(std::int32_t columns, std::int64_t integers,
                                       const std::string& what) {
  require_memory(integers * columns * std::int64_t{sizeof(std::int32_t)}, what);
}

}  // namespace csrmat
