// SPDX-License-Identifier: MIT
// From the passes of a product to its record, whose row starts have room already.
#pragma once

#include "../csr_matrix/one_pass.hpp"
#include "../support/entry_count.hpp"
#include "../support/scratch.hpp"

#include <csr_matrix_mod/csr_matrix.hpp>

#include <cstdint>
#include <string_view>

namespace csr_matrix_mod::products {

// Either way the result is the same to the last bit, its capacity included. `count` and `fill` are
// the two passes, the second with a marker of `ncol` columns; `routine` is blamed for a count that
// does not fit, `kernel` for want of a marker. One pass takes its marker first, for there may be
// none beside the room for `most` entries.
template <class Count, class Fill>
void form_product(csr_matrix& result, std::int32_t ncol, std::int64_t most,
                  std::string_view routine, std::string_view kernel, const Count& count,
                  const Fill& fill) {
  {
    scratch<std::int32_t> marker;
    if (marker.allocate(ncol, contents::zero) &&
        formed_in_one_pass(result, most, [&] { fill(marker.data()); }))
      return;
  }
  csr_matrix_allocate(result, entry_count(count(), routine));
  scratch<std::int32_t> marker(ncol, contents::zero, kernel);
  fill(marker.data());
}

}  // namespace csr_matrix_mod::products
