// SPDX-License-Identifier: MIT
// Is a result the right one? Nothing is timed that has not been looked at.
#pragma once

#include "matrix.hpp"

namespace bench {

enum class verdict : char {
  same_bits,  // every row start, column and value, the order of entries included
  reordered,  // the same values to the bit, entries of a row in another order
  rounded,    // the same entries, values within rounding: they were added in another order
  refused     // anything else
};

const char* name(verdict found);

verdict compare(const answer& expected, const answer& found);

}  // namespace bench
