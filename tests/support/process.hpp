// SPDX-License-Identifier: MIT
// Another program as its user sees it: exit status and both streams.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace tests {

struct process_result {
  int status;  // exit status; 128 + signal when a signal ended it
  std::string out;
  std::string err;
};

// argv[0] is looked up in PATH; standard input is empty.
process_result run_process(const std::vector<std::string>& argv);

}  // namespace tests

// Skips a test by name where the program that it compares with is not on the system; its path is
// then empty.
#define SKIP_WITHOUT(program)            \
  if (std::string_view(program).empty()) \
  GTEST_SKIP() << "the program behind " #program " is missing"
