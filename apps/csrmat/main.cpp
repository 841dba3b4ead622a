// SPDX-License-Identifier: MIT
#include "console.hpp"
#include "tool.hpp"

#include <cstdlib>

int main(int argc, char** argv) {
  return csrmat::guarded([=] {
    csrmat::console streams;
    const int status = csrmat::run(argc, argv);
    if (status == EXIT_SUCCESS) streams.finish();
    return status;
  });
}
