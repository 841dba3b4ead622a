// SPDX-License-Identifier: MIT
#include "console.hpp"
#include "tool.hpp"
#include "unfinished_file.hpp"

#include <csignal>
#include <cstdlib>

int main(int argc, char** argv) {
  // A file that may not grow is a failed write like any other, not the end.
  std::signal(SIGXFSZ, SIG_IGN);
  csrmat::remove_unfinished_files_on_signals();
  return csrmat::guarded([=] {
    csrmat::console streams;
    const int status = csrmat::run(argc, argv);
    if (status == EXIT_SUCCESS) streams.finish();
    return status;
  });
}
