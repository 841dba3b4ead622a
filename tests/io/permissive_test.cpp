// SPDX-License-Identifier: MIT
// Files that are read although no library wrote them so: every file in tests/data/permissive, with
// the matrix in text beside it (NAME.expected). Where csr_matrix_load asks for more, its stop
// message stands beside it too (NAME.load, FILE for the path). Adding a file adds a test.
#include "../support/files.hpp"
#include "../support/observe.hpp"
#include "gallery.hpp"

#include <csr_matrix_mod/exchange.hpp>
#include <csr_matrix_mod/io.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace {

namespace fs = std::filesystem;
using csr_matrix_mod::csr_matrix;

std::vector<fs::path> files() {
  std::vector<fs::path> found;
  for (const fs::directory_entry& each : fs::directory_iterator(TEST_DATA "/permissive"))
    if (each.path().extension() == ".csr" || each.path().extension() == ".csrb")
      found.push_back(each.path());
  std::sort(found.begin(), found.end());
  return found;
}

class Permissive : public ::testing::TestWithParam<fs::path> {
 protected:
  [[nodiscard]] static std::optional<std::string_view> form() {
    if (GetParam().extension() == ".csr") return {};
    return "unformatted";
  }
  [[nodiscard]] static std::string beside(const char* extension) {
    return tests::read_file(fs::path(GetParam()).replace_extension(extension).string());
  }
};

INSTANTIATE_TEST_SUITE_P(Files, Permissive, ::testing::ValuesIn(files()),
                         [](const auto& test) { return test.param.stem().string(); });

TEST_P(Permissive, IsRead) {
  const csr_matrix mat = tests::read_back(GetParam().string(), form(), 20, 20);
  EXPECT_EQ(tests::dumped(mat), beside(".expected"));
}

TEST_P(Permissive, IsLoadedIfItAgreesWithItself) {
  csr_matrix mat;
  const tests::observed seen =
      tests::observe([&] { csr_matrix_load(GetParam().string(), mat, form()); });
  if (!seen.stop) {
    EXPECT_FALSE(fs::exists(fs::path(GetParam()).replace_extension(".load")));
    EXPECT_EQ(tests::dumped(mat), beside(".expected"));
    return;
  }
  std::string line = beside(".load");
  line.replace(0, 4, GetParam().string());
  EXPECT_EQ(*seen.stop + "\n", line);
}

}  // namespace
