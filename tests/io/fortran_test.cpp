// SPDX-License-Identifier: MIT
// Files pass between this library and Fortran programs in both directions, byte for byte.
#include "../../src/io/records.hpp"

#include "../support/files.hpp"
#include "../support/observe.hpp"
#include "../support/process.hpp"
#include "gallery.hpp"

#include <csr_matrix_mod/exchange.hpp>

#include <gtest/gtest.h>

#include <string>

namespace {

using csr_matrix_mod::csr_matrix;
using tests::dumped;
using tests::named_matrix;

// What a Fortran program makes of the file `bytes`.
std::string rewritten(const std::string& program, const std::string& bytes, const std::string& form,
                      const std::string& layout) {
  const tests::temporary_folder folder;
  tests::write_file(folder.path("in"), bytes);
  const tests::process_result run =
      tests::run_process({program, folder.path("in"), form, folder.path("out"), layout});
  EXPECT_EQ(run.status, 0) << run.err;
  return run.status == 0 ? tests::read_file(folder.path("out")) : "";
}

std::string written_by_fortran(const csr_matrix& mat, const std::string& layout) {
  return rewritten(FORTRAN_MATRIX_FILE, dumped(mat, "unformatted"), "unformatted", layout);
}

class Fortran : public ::testing::TestWithParam<const char*> {};

TEST_P(Fortran, WritesTheSameBytes) {
  SKIP_WITHOUT(FORTRAN_MATRIX_FILE);
  for (const named_matrix& each : tests::gallery())
    EXPECT_EQ(dumped(each.mat, GetParam()), written_by_fortran(each.mat, GetParam())) << each.name;
}

INSTANTIATE_TEST_SUITE_P(Layouts, Fortran,
                         ::testing::Values("text", "unformatted", "dump", "ij", "ija"),
                         [](const auto& test) { return std::string(test.param); });

TEST(FortranFiles, WrittenThereAreReadHere) {
  SKIP_WITHOUT(FORTRAN_MATRIX_FILE);
  for (const named_matrix& each : tests::gallery()) {
    const tests::temporary_folder folder;
    tests::write_file(folder.path("text"), written_by_fortran(each.mat, "text"));
    tests::write_file(folder.path("records"), written_by_fortran(each.mat, "unformatted"));
    const std::int64_t rows = each.mat.n;
    const std::int64_t entries = each.mat.ja.length();
    const csr_matrix text = tests::read_back(folder.path("text"), {}, rows, entries);
    const csr_matrix records =
        tests::read_back(folder.path("records"), "unformatted", rows, entries);
    EXPECT_EQ(dumped(text), dumped(each.mat)) << each.name;
    EXPECT_EQ(dumped(records, "unformatted"), dumped(each.mat, "unformatted")) << each.name;
  }
}

TEST(FortranFiles, OfTextWrittenHereAreReadThere) {
  SKIP_WITHOUT(FORTRAN_MATRIX_FILE);
  for (const named_matrix& each : tests::gallery())
    EXPECT_EQ(rewritten(FORTRAN_MATRIX_FILE, dumped(each.mat), "text", "text"), dumped(each.mat))
        << each.name;
}

// Records of more than 16 bytes are split.
TEST(FortranFiles, HoldTheSameSubrecords) {
  SKIP_WITHOUT(FORTRAN_MATRIX_FILE);
  for (const named_matrix& each : tests::gallery()) {
    csr_matrix_mod::set_subrecord_size(16);
    const std::string split = dumped(each.mat, "unformatted");
    csr_matrix_mod::set_subrecord_size(0);
    EXPECT_EQ(rewritten(FORTRAN_SMALL_SUBRECORDS, split, "unformatted", "unformatted"), split)
        << each.name;
    EXPECT_EQ(rewritten(FORTRAN_SMALL_SUBRECORDS, split, "unformatted", "text"), dumped(each.mat))
        << each.name;
  }
}

TEST(FortranFiles, OfSubrecordsAreReadHereWhateverTheirSizeThere) {
  SKIP_WITHOUT(FORTRAN_MATRIX_FILE);
  for (const named_matrix& each : tests::gallery()) {
    const tests::temporary_folder folder;
    tests::write_file(folder.path("split"),
                      rewritten(FORTRAN_SMALL_SUBRECORDS, dumped(each.mat, "unformatted"),
                                "unformatted", "unformatted"));
    csr_matrix loaded;
    tests::expect_silent([&] { csr_matrix_load(folder.path("split"), loaded, "unformatted"); });
    EXPECT_EQ(dumped(loaded, "unformatted"), dumped(each.mat, "unformatted")) << each.name;
  }
}

TEST(FortranFiles, HoldALongRowOnOneLineOfAListing) {
  SKIP_WITHOUT(FORTRAN_MATRIX_FILE);
  std::vector<tests::entry> row;
  for (std::int32_t j = 1; j <= 3000; ++j) row.push_back({j, 1.0 / j});
  const csr_matrix mat = tests::real_matrix(3000, {row});
  EXPECT_EQ(dumped(mat, "dump"), written_by_fortran(mat, "dump"));
}

}  // namespace
