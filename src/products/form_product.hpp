// SPDX-License-Identifier: MIT
// From the passes of a product to its record, whose row starts have room already.
#pragma once

#include "../csr_matrix/one_pass.hpp"
#include "../support/entry_count.hpp"

#include <csr_matrix_mod/csr_matrix.hpp>

#include <cstdint>
#include <string_view>

namespace csr_matrix_mod::products {

// Either way the result is the same to the last bit, its capacity included. `count` and `fill` are
// the two passes; `routine` is blamed for a count that does not fit.
template <class Count, class Fill>
void form_product(csr_matrix& result, std::int64_t most, std::string_view routine,
                  const Count& count, const Fill& fill) {
  if (formed_in_one_pass(result, most, fill)) return;
  csr_matrix_allocate(result, entry_count(count(), routine));
  fill();
}

}  // namespace csr_matrix_mod::products
