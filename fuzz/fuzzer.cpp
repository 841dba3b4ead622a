// SPDX-License-Identifier: MIT
// The entry point that libFuzzer calls.
#include "target.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::run({data, size});
  return 0;
}
