// SPDX-License-Identifier: MIT
#include "entry_count.hpp"

#include "short_text.hpp"
#include "stop.hpp"

#include <atomic>

namespace csr_matrix_mod {

namespace {

std::atomic<std::int64_t> current_limit{max_entries};

}  // namespace

std::int64_t entry_limit() noexcept { return current_limit.load(std::memory_order_relaxed); }

void set_entry_limit(std::int64_t most) noexcept {
  current_limit.store(most > 0 ? most : max_entries);
}

std::int32_t entry_count(std::int64_t count, std::string_view routine) {
  if (count > entry_limit())
    stop(short_text()
             .append(routine)
             .append(": ")
             .append(count)
             .append(" entries do not fit, at most ")
             .append(entry_limit())
             .view());
  return static_cast<std::int32_t>(count);
}

}  // namespace csr_matrix_mod
