// SPDX-License-Identifier: MIT
// Every file of tests/data/valid is read as the listing beside it tells: a line for the matrix, a
// line for each row with column=value in stored order. Adding the two files adds a test.
#include "../../src/io/stream.hpp"
#include "../support/observe.hpp"
#include "data_files.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>

namespace {

using csr_matrix_mod::csr_matrix;

std::string entry_text(const csr_matrix& mat, std::int32_t k) {
  std::string column = " " + std::to_string(mat.ja(k));
  if (mat.type == csr_matrix_mod::matrix_structure_only) return column;
  char value[32];
  std::snprintf(value, sizeof value, "=%.17g", mat.a(k));
  return column + value;
}

std::string listing_of(const csr_matrix& mat) {
  EXPECT_EQ(csr_matrix_check(mat).value_or("well formed"), "well formed");
  std::string text = std::to_string(mat.n) + " x " + std::to_string(mat.m) +
                     (mat.type == csr_matrix_mod::matrix_real ? ", real\n" : ", structure only\n");
  for (std::int32_t i = 1; i <= mat.n; ++i) {
    text += std::to_string(i) + ":";
    for (std::int32_t k = mat.ia(i); k < mat.ia(i + 1); ++k) text += entry_text(mat, k);
    text += "\n";
  }
  return text;
}

void expect_exact_capacity(const csr_matrix& mat) {
  const std::int64_t capacity = std::max(csr_matrix_num_nz(mat), 1);
  EXPECT_EQ(mat.ia.length(), mat.n + 1);
  EXPECT_EQ(mat.ja.length(), capacity);
  if (mat.type == csr_matrix_mod::matrix_real)
    EXPECT_EQ(mat.a.length(), capacity);
  else
    EXPECT_FALSE(mat.a.allocated());
}

class ValidFile : public testing::TestWithParam<std::filesystem::path> {
 protected:
  void TearDown() override { csr_matrix_mod::set_buffer_size(0); }
};

TEST_P(ValidFile, IsReadInSilenceIntoStorageOfItsSize) {
  csr_matrix mat;
  tests::expect_silent([&] { tests::read_data_file(GetParam(), mat); });
  EXPECT_EQ(listing_of(mat), tests::expectation_of(GetParam()));
  expect_exact_capacity(mat);
}

TEST_P(ValidFile, IsReadThroughBuffersOfAnySize) {
  for (const std::size_t bytes : {1U, 2U, 3U, 5U, 16U, 61U}) {
    csr_matrix_mod::set_buffer_size(bytes);
    csr_matrix mat;
    tests::expect_silent([&] { tests::read_data_file(GetParam(), mat); });
    EXPECT_EQ(listing_of(mat), tests::expectation_of(GetParam())) << bytes;
  }
}

INSTANTIATE_TEST_SUITE_P(Data, ValidFile, testing::ValuesIn(tests::data_files("valid")),
                         [](const auto& file) { return tests::test_name_of(file.param); });

}  // namespace
