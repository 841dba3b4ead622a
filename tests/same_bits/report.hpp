// SPDX-License-Identifier: MIT
// What each routine has given so far, as one digest a routine.
#pragma once

#include "digest.hpp"

#include <map>
#include <string>

namespace same_bits {

using report = std::map<std::string, digest>;

void support_routines(report& results);
void record_routines(report& results);
void ordering_routines(report& results);
void convert_routines(report& results);
void product_routines(report& results);
// In the present folder, which is to be empty.
void file_routines(report& results);

}  // namespace same_bits
