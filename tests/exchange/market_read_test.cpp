// SPDX-License-Identifier: MIT
// What reading a Matrix Market file promises beyond the files of tests/data: the record that it
// replaces, files cut anywhere, shortages of storage.
#include "../../src/io/stream.hpp"
#include "../support/files.hpp"
#include "../support/matrices.hpp"
#include "../support/observe.hpp"
#include "../support/refusals.hpp"

#include <csr_matrix_mod/csr_matrix_mod.hpp>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace {

using csr_matrix_mod::csr_matrix;
using tests::entry_rows;

const std::string general_head = "%%MatrixMarket matrix coordinate real general\n";
const std::string symmetric_head = "%%MatrixMarket matrix coordinate real symmetric\n";

class ReadMarket : public testing::Test {
 protected:
  void TearDown() override { csr_matrix_mod::set_buffer_size(0); }

  [[nodiscard]] std::string file(std::string_view bytes) const {
    tests::write_file(path, bytes);
    return path;
  }

  tests::temporary_folder folder;
  const std::string path = folder.path("matrix.mtx");
};

//     [ 1  2  . ]
//     [ 2  .  4 ]
//     [ .  4  5 ]
const std::string three_by_three =
    symmetric_head + "% a comment\n3 3 4\n1 1 1\n2 1 2\n3 2 4\n3 3 5\n";
const entry_rows rows_of_three_by_three = {
    {{1, 1.0}, {2, 2.0}}, {{1, 2.0}, {3, 4.0}}, {{2, 4.0}, {3, 5.0}}};

TEST_F(ReadMarket, PutsAnEntryAndItsMirrorImageWhereTheEntryStands) {
  csr_matrix mat;
  tests::expect_silent(
      [&] { csr_matrix_read_market(file(symmetric_head + "3 3 3\n3 1 7\n2 1 8\n1 1 9\n"), mat); });
  EXPECT_EQ(tests::entries_of(mat),
            (entry_rows{{{3, 7.0}, {2, 8.0}, {1, 9.0}}, {{1, 8.0}}, {{1, 7.0}}}));
}

TEST_F(ReadMarket, ReplacesTheArraysOfTheRecordAndNotThoseOfItsAlias) {
  csr_matrix mat = tests::real_matrix(2, {{{2, 8.0}}, {{1, 9.0}}}, 3);
  csr_matrix other;
  csr_matrix_transfer(other, mat);
  tests::expect_silent([&] { csr_matrix_read_market(file(three_by_three), mat); });
  EXPECT_EQ(mat.m, 3);
  EXPECT_EQ(tests::entries_of(mat), rows_of_three_by_three);
  EXPECT_EQ(tests::entries_of(other), (entry_rows{{{2, 8.0}}, {{1, 9.0}}}));
}

TEST_F(ReadMarket, GivesAPatternNoValuesEvenWhereTheRecordHadSome) {
  csr_matrix mat = tests::real_matrix(1, {{{1, 8.0}}});
  tests::expect_silent([&] {
    csr_matrix_read_market(file("%%MatrixMarket matrix coordinate pattern general\n1 2 1\n1 2\n"),
                           mat);
  });
  EXPECT_EQ(mat.type, csr_matrix_mod::matrix_structure_only);
  EXPECT_FALSE(mat.a.allocated());
  EXPECT_EQ(tests::columns_of(mat), (tests::column_rows{{2}}));
}

TEST_F(ReadMarket, StopsAtAFileThatIsNotThere) {
  csr_matrix mat;
  EXPECT_EQ(tests::observe([&] { csr_matrix_read_market(path, mat); }).stop,
            path + ": cannot open for reading: No such file or directory");
}

TEST_F(ReadMarket, StopsAtADirectory) {
  csr_matrix mat;
  EXPECT_EQ(tests::observe([&] { csr_matrix_read_market("/tmp", mat); }).stop,
            "/tmp: cannot open for reading: Is a directory");
}

TEST_F(ReadMarket, StopsAtAFileThatCannotBeRead) {
  csr_matrix mat;
  EXPECT_EQ(tests::observe([&] { csr_matrix_read_market("/proc/self/mem", mat); }).stop,
            "/proc/self/mem: cannot read: Input/output error");
}

TEST_F(ReadMarket, TakesNoUnit) {
  const std::int32_t vacant = csr_matrix_mod::vacant_unit();
  csr_matrix mat;
  csr_matrix_read_market(file(three_by_three), mat);
  EXPECT_EQ(csr_matrix_mod::vacant_unit(), vacant);
}

// A pipe does not tell its size; it is read to its end before storage is asked for.
TEST_F(ReadMarket, ReadsAPipe) {
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  csr_matrix mat;
  std::thread writer([&] { tests::write_file(path, three_by_three); });
  tests::expect_silent([&] { csr_matrix_read_market(path, mat); });
  writer.join();
  EXPECT_EQ(tests::entries_of(mat), rows_of_three_by_three);
}

TEST_F(ReadMarket, RefusesAPipeThatPromisesMoreThanItGives) {
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  const auto stop_of = [&](const std::string& size) {
    csr_matrix mat;
    std::thread writer([&] { tests::write_file(path, general_head + size + "\n1 1 1\n"); });
    const auto seen = tests::observe([&] { csr_matrix_read_market(path, mat); });
    writer.join();
    return seen.stop.value_or("read");
  };
  for (const std::size_t bytes : {0U, 1U}) {
    csr_matrix_mod::set_buffer_size(bytes);
    EXPECT_EQ(stop_of("3 3 2147483646"),
              path + ": line 2: expected 2147483646 entries, found only 6 bytes more");
    EXPECT_EQ(stop_of("2147483646 3 1"),
              path +
                  ": line 2: expected at most 134217728 rows in a file as short as this, found "
                  "2147483646");
  }
}

// Only what may be missing is missing: the end of the last line.
void expect_no_beginning_accepted(const std::string& text, const std::string& path) {
  for (std::size_t bytes = 0; bytes + 1 < text.size(); ++bytes) {
    tests::write_file(path, std::string_view(text).substr(0, bytes));
    csr_matrix mat;
    const auto seen = tests::observe([&] { csr_matrix_read_market(path, mat); });
    ASSERT_TRUE(seen.stop.has_value()) << bytes << " bytes were accepted";
    EXPECT_EQ(seen.stop->rfind(path + ": line ", 0), 0U) << *seen.stop;
    EXPECT_EQ(seen.stop->find('\n'), std::string::npos);
    EXPECT_FALSE(mat.ia.allocated());
  }
  for (const std::size_t bytes : {text.size() - 1, text.size()}) {
    tests::write_file(path, std::string_view(text).substr(0, bytes));
    csr_matrix mat;
    tests::expect_silent([&] { csr_matrix_read_market(path, mat); });
    EXPECT_NE(csr_matrix_num_nz(mat), 0);
  }
}

TEST_F(ReadMarket, AcceptsNoBeginningOfACoordinateFile) {
  expect_no_beginning_accepted(three_by_three, path);
  expect_no_beginning_accepted(
      "%%MatrixMarket matrix coordinate pattern general\n2 2 2\n1 1\n2 2\n", path);
}

TEST_F(ReadMarket, AcceptsNoBeginningOfAnArrayFile) {
  expect_no_beginning_accepted("%%MatrixMarket matrix array real general\n2 2\n1\n2\n3\n4\n", path);
}

// Whatever byte is damaged, the result is a well-formed record or a single line.
TEST_F(ReadMarket, SurvivesAnyDamageToASingleByte) {
  for (std::size_t at = 0; at < three_by_three.size(); ++at)
    for (const char damage : {'\0', '\n', ' ', '-', '9', '%', '\xff'}) {
      std::string text = three_by_three;
      text[at] = damage;
      csr_matrix mat;
      const auto seen = tests::observe([&] { csr_matrix_read_market(file(text), mat); });
      EXPECT_EQ(seen.output, "");
      if (seen.stop)
        EXPECT_FALSE(mat.ia.allocated());
      else
        EXPECT_EQ(csr_matrix_check(mat).value_or("well formed"), "well formed") << text;
    }
}

// The stops of all refusals; the record passed in stays as it was.
std::vector<std::string> stops_of_refusals(const std::string& path) {
  return tests::refuse_each_request(
      [] {
        return tests::real_matrix(2, {{{2, 8.0}}, {{1, 9.0}}}, 3);
      },
      [&](csr_matrix& mat) { csr_matrix_read_market(path, mat); },
      [](csr_matrix& mat) {
        EXPECT_EQ(tests::entries_of(mat), (entry_rows{{{2, 8.0}}, {{1, 9.0}}}));
        EXPECT_EQ(mat.ja.length(), 5);
        tests::expect_releasable(mat);
      });
}

TEST_F(ReadMarket, StopsWhereThereIsNoStorageAndLeavesTheRecordAlone) {
  const std::string lists = "allocation error in csr_matrix_read_market";
  EXPECT_EQ(stops_of_refusals(file(three_by_three)),
            (std::vector<std::string>{path + ": cannot read: Cannot allocate memory", lists, lists,
                                      lists, "allocation error in csr_matrix_initial",
                                      "allocation error in csr_matrix_allocate",
                                      "allocation error in csr_matrix_allocate"}));
}

TEST_F(ReadMarket, StopsWhereThereIsNoStorageForAMatrixWithoutEntries) {
  const std::string own = "allocation error in csr_matrix_read_market";
  EXPECT_EQ(stops_of_refusals(file(general_head + "2 2 0\n")),
            (std::vector<std::string>{path + ": cannot read: Cannot allocate memory", own, own, own,
                                      "allocation error in csr_matrix_initial", own, own}));
}

}  // namespace
