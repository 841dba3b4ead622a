// SPDX-License-Identifier: MIT
// Lines that many routines bring about.
#pragma once

namespace tests {

// What asking for storage for 0 entries writes.
inline constexpr const char* no_entries_warning =
    " try to allocating            0  nonzeros in csr_matrix_allocate!\nset to 1\n";

}  // namespace tests
