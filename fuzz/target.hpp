// SPDX-License-Identifier: MIT
// A target is one function. Linked with replay.cpp it runs on the files that it is given; linked
// with a fuzzer, on inputs that nobody thought of.
#pragma once

#include "scratch_file.hpp"

namespace fuzz {

// Returns if every claim holds for `contents`; else the process ends.
void run(bytes contents);

}  // namespace fuzz
