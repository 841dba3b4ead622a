// SPDX-License-Identifier: MIT
// What loading a matrix file promises beyond the files of tests/data: the record that it replaces,
// files cut anywhere, shortages of storage.
#include "../support/files.hpp"
#include "../support/matrices.hpp"
#include "../support/observe.hpp"
#include "../support/refusals.hpp"

#include <csr_matrix_mod/csr_matrix_mod.hpp>

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace {

using csr_matrix_mod::csr_matrix;
using tests::entry_rows;

using form_word = std::optional<std::string_view>;
constexpr std::string_view unformatted = "unformatted";

//     [ .   .  1.5 ]
//     [ .   .   .  ]
//     [ 2  .25  .  ]
const entry_rows three_rows = {{{3, 1.5}}, {}, {{1, 2.0}, {2, 0.25}}};

class Load : public testing::Test {
 protected:
  [[nodiscard]] std::string bytes_of(const csr_matrix& mat, form_word form) const {
    const std::int32_t unit = csr_matrix_mod::vacant_unit();
    csr_matrix_dump(path, mat, form);
    csr_matrix_mod::close_unit(unit);
    return tests::read_file(path);
  }

  [[nodiscard]] std::string stop_of(std::string_view bytes, form_word form) const {
    tests::write_file(path, bytes);
    csr_matrix mat;
    const auto seen = tests::observe([&] { csr_matrix_load(path, mat, form); });
    EXPECT_EQ(mat.ia.allocated(), !seen.stop.has_value());
    return seen.stop.value_or("loaded");
  }

  tests::temporary_folder folder;
  const std::string path = folder.path("matrix");
};

TEST_F(Load, ReplacesTheArraysOfTheRecordAndNotThoseOfItsAlias) {
  for (const form_word form : {form_word(), form_word(unformatted)}) {
    (void)bytes_of(tests::real_matrix(3, three_rows, 4), form);
    csr_matrix mat = tests::pattern(2, {{2}, {1}}, 3);
    csr_matrix other;
    csr_matrix_transfer(other, mat);
    tests::expect_silent([&] { csr_matrix_load(path, mat, form); });
    EXPECT_EQ(tests::entries_of(mat), three_rows);
    EXPECT_EQ(mat.ja.length(), 3);
    EXPECT_EQ(mat.a.length(), 3);
    EXPECT_EQ(tests::columns_of(other), (tests::column_rows{{2}, {1}}));
  }
}

TEST_F(Load, GivesAMatrixWithoutEntriesRoomForOneInSilence) {
  for (const form_word form : {form_word(), form_word(unformatted)}) {
    (void)bytes_of(tests::real_matrix(3, {{}, {}}, 1), form);
    csr_matrix mat;
    tests::expect_silent([&] { csr_matrix_load(path, mat, form); });
    EXPECT_EQ(tests::entries_of(mat), (entry_rows{{}, {}}));
    EXPECT_EQ(mat.ja.length(), 1);
    EXPECT_EQ(mat.a.length(), 1);
  }
}

// [ x x x ], with fields as short as they can be: a value may be blank, a column may not.
TEST_F(Load, TakesTheShortestFieldsThereAre) {
  const std::string sizes = "         1         3\n1\n4\n";
  EXPECT_EQ(stop_of(" T\n" + sizes + "1\n2\n3\n", {}), "loaded");
  EXPECT_EQ(stop_of(" F\n" + sizes + "1\n2\n3\n\n\n\n", {}), "loaded");
  EXPECT_EQ(stop_of(" F\n" + sizes + "1\n2\n3\n\n", {}),
            path + ": line 4: expected 3 entries, found only 7 bytes more");
}

TEST_F(Load, TakesNoUnit) {
  (void)bytes_of(tests::real_matrix(3, three_rows), {});
  const std::int32_t vacant = csr_matrix_mod::vacant_unit();
  csr_matrix mat;
  csr_matrix_load(path, mat);
  EXPECT_EQ(csr_matrix_mod::vacant_unit(), vacant);
}

TEST_F(Load, StopsOfAMissingFileBeforeItLooksAtTheFormWord) {
  csr_matrix mat;
  EXPECT_EQ(tests::observe([&] { csr_matrix_load(path, mat, "binary"); }).stop,
            path + ": cannot open for reading: No such file or directory");
}

TEST_F(Load, RefusesEveryOtherFormWord) {
  EXPECT_EQ(stop_of("", "binary"), "can not read this format!");
  EXPECT_EQ(stop_of("", ""), "can not read this format!");
}

TEST_F(Load, AcceptsNoBeginningOfAFileOfRecords) {
  for (const csr_matrix& mat :
       {tests::real_matrix(3, three_rows), tests::pattern(3, {{3}, {1, 2}})}) {
    const std::string bytes = bytes_of(mat, unformatted);
    for (std::size_t length = 0; length < bytes.size(); ++length)
      EXPECT_EQ(stop_of(bytes.substr(0, length), unformatted).rfind(path + ": record ", 0), 0U)
          << length << " bytes";
    EXPECT_EQ(stop_of(bytes, unformatted), "loaded");
  }
}

// Only what may be missing is missing: the end of the last line.
TEST_F(Load, AcceptsNoBeginningOfATextFile) {
  for (const csr_matrix& mat :
       {tests::real_matrix(3, three_rows), tests::pattern(3, {{3}, {1, 2}})}) {
    const std::string bytes = bytes_of(mat, {});
    for (std::size_t length = 0; length + 1 < bytes.size(); ++length)
      EXPECT_EQ(stop_of(bytes.substr(0, length), {}).rfind(path + ": line ", 0), 0U)
          << length << " bytes";
    EXPECT_EQ(stop_of(bytes.substr(0, bytes.size() - 1), {}), "loaded");
    EXPECT_EQ(stop_of(bytes, {}), "loaded");
  }
}

TEST_F(Load, StopsWhereThereIsNoStorageAndLeavesTheRecordAlone) {
  for (const form_word form : {form_word(), form_word(unformatted)}) {
    (void)bytes_of(tests::real_matrix(3, three_rows), form);
    const auto stops = tests::refuse_each_request(
        [] {
          return tests::real_matrix(2, {{{2, 8.0}}, {{1, 9.0}}}, 3);
        },
        [&](csr_matrix& mat) { csr_matrix_load(path, mat, form); },
        [](csr_matrix& mat) {
          EXPECT_EQ(tests::entries_of(mat), (entry_rows{{{2, 8.0}}, {{1, 9.0}}}));
          EXPECT_EQ(mat.ja.length(), 5);
          tests::expect_releasable(mat);
        });
    const std::string own = "allocation error in csr_matrix_load";
    EXPECT_EQ(stops, (std::vector<std::string>{path + ": cannot read: Cannot allocate memory", own,
                                               own, own}));
  }
}

}  // namespace
