// SPDX-License-Identifier: MIT
// Matrices that nobody thought of: unsorted rows, repeated columns, empty first and last rows, a
// dense row, explicit zeros, values whose sums depend on the order of the additions.
#pragma once

#include "matrices.hpp"

#include <rapidcheck.h>

#include <cstdint>

namespace tests {

// n rows over m columns; all rows are empty when m is 0.
rc::Gen<entry_rows> any_rows(std::int32_t n, std::int32_t m);

// 0 to 12, small sizes more often.
rc::Gen<std::int32_t> any_size();

// Finite doubles of all magnitudes between 1e-8 and 1e8, both zeros and small integers.
rc::Gen<double> any_value();

rc::Gen<std::vector<double>> any_vector(std::int32_t length);

}  // namespace tests
