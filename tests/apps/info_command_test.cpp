// SPDX-License-Identifier: MIT
#include "csrmat.hpp"

#include <unistd.h>

#include <cstdint>

namespace {

using tests::csrmat;
using tests::expect_quiet;
using tests::matrix_folder;

std::string info(const std::string& file) {
  const auto seen = csrmat({"info", file});
  EXPECT_EQ(seen.status, 0);
  EXPECT_EQ(seen.err, "");
  return seen.out;
}

TEST(Info, TellsEverythingAboutAMatrix) {
  const matrix_folder folder;
  // The test of the library lets a matrix pass whose rows are as long as its columns.
  // Columns 1 and 3 stand in two rows each, but not in the same ones; column 2 in one only.
  EXPECT_EQ(info(folder.path("square.mtx")),
            "rows                          3\n"
            "columns                       3\n"
            "entries                       5\n"
            "longest row                   2\n"
            "shortest row                  1\n"
            "kind                          values\n"
            "well formed                   yes\n"
            "structurally symmetric        no: (1, 2) without (2, 1)\n"
            "matrix_is_struct_symmetric    true\n"
            "condensed columns             2\n");
}

TEST(Info, RepeatsTheLineOfTheSymmetryTest) {
  const matrix_folder folder;
  folder.write("upper.mtx", "%%MatrixMarket matrix coordinate pattern general\n2 2 1\n1 2\n");
  const std::string out = info(folder.path("upper.mtx"));
  EXPECT_NE(out.find("matrix_is_struct_symmetric    false: non-symmetric entry          2"
                     "         2\n"),
            std::string::npos)
      << out;
}

TEST(Info, TellsAGraphFromAMatrix) {
  const matrix_folder folder;
  const std::string out = info(folder.path("graph.mtx"));
  EXPECT_NE(out.find("kind                          structure only\n"), std::string::npos);
  EXPECT_NE(out.find("structurally symmetric        yes\n"), std::string::npos);
  EXPECT_NE(out.find("matrix_is_struct_symmetric    true\n"), std::string::npos);
  // Columns 1 and 3 become one; column 2 stays.
  EXPECT_NE(out.find("condensed columns             1\n"), std::string::npos) << out;
}

TEST(Info, CondensesColumnsThatAreGivenTwiceAsOnce) {
  const matrix_folder folder;
  expect_quiet({"clean", folder.path("repeated.mtx"), folder.path("cleaned.mtx")});
  const auto condensed = [&](const char* name) {
    const std::string out = info(folder.path(name));
    return out.substr(out.find("condensed columns"));
  };
  EXPECT_EQ(condensed("repeated.mtx"), condensed("cleaned.mtx"));
}

TEST(Info, CallsARectangleUnsymmetric) {
  const matrix_folder folder;
  const std::string out = info(folder.path("wide.mtx"));
  EXPECT_NE(out.find("structurally symmetric        no: not square\n"), std::string::npos);
  EXPECT_NE(out.find("matrix_is_struct_symmetric    false: nonsymmetric: n,m = "),
            std::string::npos);
}

TEST(Info, HasRoomForAMatrixWithoutEntriesAndNothingToRemark) {
  const matrix_folder folder;
  const std::string out = info(folder.path("empty.mtx"));
  EXPECT_NE(out.find("longest row                   0\n"), std::string::npos);
  EXPECT_NE(out.find("structurally symmetric        yes\n"), std::string::npos);
  EXPECT_EQ(out.find("allocating"), std::string::npos);
}

TEST(Info, RefusesColumnsThatThisMachineCannotCondense) {
  constexpr std::int64_t bytes = std::int64_t{28} * 2147483646;
  if (std::int64_t{sysconf(_SC_PHYS_PAGES)} * sysconf(_SC_PAGESIZE) >= bytes)
    GTEST_SKIP() << "this machine can";
  const matrix_folder folder;
  folder.write("wide.mtx", "%%MatrixMarket matrix coordinate pattern general\n1 2147483646 0\n");
  tests::expect_refusal_about(
      {"info", folder.path("wide.mtx")},
      "wide.mtx: condensing its columns needs 60129 MB of memory, this machine has ");
}

}  // namespace
