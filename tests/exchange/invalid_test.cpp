// SPDX-License-Identifier: MIT
// Every file of tests/data/invalid has one defect, which its name tells, and stops with the line
// beside it, in which FILE stands for the path. Adding the two files adds a test.
#include "../support/matrices.hpp"
#include "../support/observe.hpp"
#include "../support/refusals.hpp"
#include "data_files.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace {

class InvalidFile : public testing::TestWithParam<std::filesystem::path> {};

std::string with_path(const std::string& expectation, const std::string& path) {
  EXPECT_EQ(expectation.substr(0, 6), "FILE: ");
  EXPECT_EQ(expectation.find('\n'), expectation.size() - 1) << "one line, with its end";
  return path + expectation.substr(4, expectation.size() - 5);
}

//     [ .  8 ]
//     [ 9  . ]
TEST_P(InvalidFile, StopsWithOneLineAndLeavesTheRecordAlone) {
  csr_matrix_mod::csr_matrix mat = tests::real_matrix(2, {{{2, 8.0}}, {{1, 9.0}}}, 3);
  const auto seen = tests::observe([&] { tests::read_data_file(GetParam(), mat); });

  EXPECT_EQ(seen.stop.value_or("no stop"),
            with_path(tests::expectation_of(GetParam()), GetParam().string()));
  EXPECT_EQ(seen.output, "");
  EXPECT_EQ(mat.m, 2);
  EXPECT_EQ(tests::entries_of(mat), (tests::entry_rows{{{2, 8.0}}, {{1, 9.0}}}));
  EXPECT_EQ(mat.ja.length(), 5);
  tests::expect_releasable(mat);
}

INSTANTIATE_TEST_SUITE_P(Data, InvalidFile, testing::ValuesIn(tests::data_files("invalid")),
                         [](const auto& file) { return tests::test_name_of(file.param); });

}  // namespace
