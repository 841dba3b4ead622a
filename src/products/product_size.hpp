// SPDX-License-Identifier: MIT
// The size of a product in 64 bits, so that a routine can refuse one that does not fit in its own
// name.
#pragma once

#include "product_walk.hpp"

#include <csr_matrix_mod/csr_matrix.hpp>

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

// A bound for the size of a product with or without its diagonal: no row has more entries than
// paths or columns. Where right rows are about as long as each other it takes the longest for all,
// and looks at no left entry: a tenth of the time of a product of stencils. For some small products
// of stencils it is the size itself. 0 where there are no entries, or rows that do not follow each
// other: nothing is foreseen then.
[[nodiscard]] std::int64_t most_product_entries(const csr_matrix& m1, const csr_matrix& m2,
                                                std::int32_t ncol, products::diagonal which);

}  // namespace csr_matrix_mod
