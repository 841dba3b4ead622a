// SPDX-License-Identifier: MIT
// The size of a product in 64 bits, so that a routine can refuse one that does not fit in its own
// name.
#pragma once

#include <csr_matrix_mod/support.hpp>

#include <cstdint>

namespace csr_matrix_mod {

// As `matmul_size`, which narrows the result.
[[nodiscard]] std::int64_t product_size(std::int32_t n, std::int32_t ncol,
                                        array_view<const std::int32_t> ia,
                                        array_view<const std::int32_t> ja,
                                        array_view<const std::int32_t> ib,
                                        array_view<const std::int32_t> jb);

// As `matmul_size_graph`, which narrows the result.
[[nodiscard]] std::int64_t product_size_graph(std::int32_t n, std::int32_t ncol,
                                              array_view<const std::int32_t> ia,
                                              array_view<const std::int32_t> ja,
                                              array_view<const std::int32_t> ib,
                                              array_view<const std::int32_t> jb);

// No row has more entries than paths or columns: the sum of these bounds.
[[nodiscard]] std::int64_t most_product_entries(std::int32_t n, std::int32_t ncol,
                                                array_view<const std::int32_t> ia,
                                                array_view<const std::int32_t> ja,
                                                array_view<const std::int32_t> ib);

}  // namespace csr_matrix_mod
