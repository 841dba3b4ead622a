// SPDX-License-Identifier: MIT
// Where all storage of the library comes from. `detail::obtain` and `detail::give_back` are
// declared beside `array_ref`, which needs them in its header.
#pragma once

#include <csr_matrix_mod/support.hpp>

#include <cstddef>

namespace csr_matrix_mod::detail {

// As `obtain`, with every byte zero: the system hands out zero pages without touching them.
[[nodiscard]] void* obtain_zeroed(std::size_t bytes) noexcept;

// Asked before each request when set; true refuses it. Tests fail the k-th allocation through this.
using refusal = bool (*)(std::size_t bytes) noexcept;
void set_refusal(refusal refuse) noexcept;

}  // namespace csr_matrix_mod::detail
