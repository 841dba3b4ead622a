// SPDX-License-Identifier: MIT
// csr_matrix_dump: the two encodings, the choice by word, the units it leaves.
#include "../support/files.hpp"
#include "../support/observe.hpp"
#include "gallery.hpp"
#include "units.hpp"

#include <csr_matrix_mod/io.hpp>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <string>

namespace {

using csr_matrix_mod::csr_matrix;
using csr_matrix_mod::csr_matrix_dump;
using csr_matrix_mod::vacant_unit;
using tests::dumped;

// [ 1.5   .   -2e-5 ]
// [  .    .     .   ]
// [  .  1e300   .   ]
csr_matrix sample() { return tests::real_matrix(3, {{{1, 1.5}, {3, -2e-5}}, {}, {{2, 1e300}}}); }
csr_matrix sample_pattern() { return tests::pattern(3, {{1, 3}, {}, {2}}); }

const char* const sample_text =
    " F\n"
    "         3         3\n"
    "         1\n"
    "         3\n"
    "         3\n"
    "         4\n"
    "         1\n"
    "         3\n"
    "\n"
    "         2\n"
    "       1.5000000    \n"
    "     -0.20000000E-04\n"
    "\n"
    "      0.10000000+301\n";

TEST(Dump, WritesTextWithAnEmptyLineForAnEmptyRow) { EXPECT_EQ(dumped(sample()), sample_text); }

TEST(Dump, WritesTextForTheWordFormattedAndForAnyUnknownOne) {
  for (const char* const word : {"FORMATTED", "formatted", "UNFORMATTED", "Dump", "",
                                 "unformatted2", "i", "gnuplots", " dump"})
    EXPECT_EQ(dumped(sample(), word), sample_text) << word;
}

TEST(Dump, WritesThreeLinesOfTextForAMatrixWithoutRows) {
  EXPECT_EQ(dumped(tests::real_matrix(4, {})), " F\n         0         4\n         1\n");
}

TEST(Dump, WritesNoValuesOfAStructureOnlyMatrix) {
  EXPECT_EQ(dumped(sample_pattern()),
            " T\n"
            "         3         3\n"
            "         1\n"
            "         3\n"
            "         3\n"
            "         4\n"
            "         1\n"
            "         3\n"
            "\n"
            "         2\n");
}

TEST(Dump, FillsAFieldThatOverflowsWithAsterisks) {
  csr_matrix mat = tests::pattern(1, {{1}});
  mat.ja(1) = std::numeric_limits<std::int32_t>::min();
  EXPECT_EQ(dumped(mat, "ij"), "         1**********\n");
}

template <class... Number>
std::string bytes_of(const Number&... numbers) {
  std::string bytes;
  (bytes.append(reinterpret_cast<const char*>(&numbers), sizeof numbers), ...);
  return bytes;
}

TEST(Dump, WritesFiveRecordsEachBetweenItsLengths) {
  EXPECT_EQ(dumped(sample(), "unformatted"),
            bytes_of(4, 0, 4) + bytes_of(8, 3, 3, 8) + bytes_of(16, 1, 3, 3, 4, 16) +
                bytes_of(12, 1, 3, 2, 12) + bytes_of(24, 1.5, -2e-5, 1e300, 24));
}

TEST(Dump, WritesFourRecordsOfAStructureOnlyMatrix) {
  EXPECT_EQ(dumped(sample_pattern(), "unformatted"), bytes_of(4, 1, 4) + bytes_of(8, 3, 3, 8) +
                                                         bytes_of(16, 1, 3, 3, 4, 16) +
                                                         bytes_of(12, 1, 3, 2, 12));
}

TEST(Dump, WritesRecordsOfNothingForAMatrixWithoutEntries) {
  EXPECT_EQ(dumped(tests::real_matrix(2, {}), "unformatted"),
            bytes_of(4, 0, 4) + bytes_of(8, 0, 2, 8) + bytes_of(4, 1, 4) + bytes_of(0, 0) +
                bytes_of(0, 0));
}

// There is no row start then that would tell the number of entries.
TEST(Dump, WritesNoRowStartsOfAMatrixOfMinus1Rows) {
  csr_matrix mat;
  csr_matrix_initial(-1, mat, 2);
  EXPECT_EQ(dumped(mat, "unformatted"), bytes_of(4, 0, 4) + bytes_of(8, -1, 2, 8) + bytes_of(0, 0) +
                                            bytes_of(0, 0) + bytes_of(0, 0));
}

TEST(Dump, IgnoresBlanksBehindAWord) {
  EXPECT_EQ(dumped(sample(), "unformatted   "), dumped(sample(), "unformatted"));
  EXPECT_EQ(dumped(sample(), "ij "), dumped(sample(), "ij"));
}

TEST(Dump, WritesTheEntriesAndNotTheSpareCapacity) {
  const csr_matrix spare = tests::real_matrix(3, {{{1, 1.5}, {3, -2e-5}}, {}, {{2, 1e300}}}, 4);
  for (const char* const word : {"text", "unformatted", "dump", "ij", "ija"})
    EXPECT_EQ(dumped(spare, word), dumped(sample(), word)) << word;
}

TEST(Dump, EmptiesAFileThatIsLongerBefore) {
  const tests::temporary_folder folder;
  tests::write_file(folder.path("out"), std::string(1000, 'x'));
  csr_matrix_dump(folder.path("out"), sample());
  EXPECT_EQ(tests::read_file(folder.path("out")), sample_text);
}

TEST(Dump, ClosesItsUnit) {
  const tests::temporary_folder folder;
  const std::int32_t unit = vacant_unit();
  for (const char* const word : {"text", "unformatted", "dump", "ij", "ija"}) {
    csr_matrix_dump(folder.path("out"), sample(), word);
    EXPECT_EQ(vacant_unit(), unit) << word;
  }
  for (const char* const word : {"unformatted", "ij", "ija", "hypergraph"}) {
    csr_matrix_dump(folder.path("out"), sample_pattern(), word);
    EXPECT_EQ(vacant_unit(), unit) << word;
  }
}

TEST(Dump, LeavesTheUnitOpenAfterTextOrRowsOfAStructureOnlyMatrix) {
  const tests::temporary_folder folder;
  for (const char* const word : {"FORMATTED", "dump"}) {
    const std::int32_t unit = vacant_unit();
    csr_matrix_dump(folder.path("out"), sample_pattern(), word);
    EXPECT_EQ(vacant_unit(), unit + 1) << word;
    csr_matrix_mod::close_unit(unit);
    EXPECT_EQ(vacant_unit(), unit) << word;
  }
}

TEST(Dump, HasWrittenEverythingWhileTheUnitIsStillOpen) {
  const tests::temporary_folder folder;
  const std::int32_t unit = vacant_unit();
  csr_matrix_dump(folder.path("out"), sample_pattern());
  const std::string text = tests::read_file(folder.path("out"));
  csr_matrix_mod::close_unit(unit);
  EXPECT_EQ(text, dumped(sample_pattern()));
}

TEST(Dump, TakesTheFileNameAsGiven) {
  const tests::temporary_folder folder;
  csr_matrix_dump(folder.path("blank "), sample());
  EXPECT_EQ(tests::read_file(folder.path("blank ")), sample_text);
}

TEST(Dump, StopsWhereTheFileCannotBeOpened) {
  const tests::temporary_folder folder;
  const std::string missing = folder.path("no/such/folder");
  const std::int32_t unit = vacant_unit();
  EXPECT_EQ(tests::observe([&] { csr_matrix_dump(missing, sample()); }).stop,
            missing + ": cannot open for writing: No such file or directory");
  EXPECT_EQ(tests::observe([&] { csr_matrix_dump(folder.path("."), sample()); }).stop,
            folder.path(".") + ": cannot open for writing: Is a directory");
  EXPECT_EQ(vacant_unit(), unit);
}

TEST(Dump, StopsWhereTheDeviceIsFullAndReleasesTheUnit) {
  const std::int32_t unit = vacant_unit();
  for (const char* const word : {"text", "unformatted", "dump", "ij", "ija", "hypergraph"})
    EXPECT_EQ(tests::observe([&] { csr_matrix_dump("/dev/full", sample(), word); }).stop,
              "/dev/full: cannot write: No space left on device")
        << word;
  EXPECT_EQ(tests::observe([&] { csr_matrix_dump("/dev/full", sample_pattern()); }).stop,
            "/dev/full: cannot write: No space left on device");
  EXPECT_EQ(vacant_unit(), unit);
}

TEST(Dump, StopsWhenNoUnitIsVacant) {
  const tests::all_units_taken taken;
  const tests::temporary_folder folder;
  EXPECT_EQ(tests::observe([&] { csr_matrix_dump(folder.path("out"), sample()); }).stop,
            "no vacant unit exists!");
}

}  // namespace
