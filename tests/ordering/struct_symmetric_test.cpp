// SPDX-License-Identifier: MIT
#include "../support/generators.hpp"
#include "../support/messages.hpp"
#include "../support/observe.hpp"
#include "../support/refusals.hpp"

#include <csr_matrix_mod/ordering.hpp>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cstdio>
#include <set>

namespace {

using namespace csr_matrix_mod;
using tests::column_rows;
using tests::columns_of;
using tests::entry_rows;
using tests::observe;
using tests::pattern;
using tests::real_matrix;

struct answer {
  bool symmetric;
  std::string output;
};

answer ask(const csr_matrix& mat) {
  answer given{};
  const auto seen = observe([&] { given.symmetric = matrix_is_struct_symmetric(mat); });
  EXPECT_EQ(seen.stop, std::nullopt);
  given.output = seen.output;
  return given;
}

void expect_yes(const csr_matrix& mat) {
  const answer given = ask(mat);
  EXPECT_TRUE(given.symmetric);
  EXPECT_EQ(given.output, "");
}

void expect_no(const csr_matrix& mat, const std::string& line) {
  const answer given = ask(mat);
  EXPECT_FALSE(given.symmetric);
  EXPECT_EQ(given.output, line);
}

TEST(StructSymmetric, ADiagonalMatrixIs) { expect_yes(pattern(3, {{1}, {2}, {3}})); }

TEST(StructSymmetric, ATridiagonalMatrixIsWhateverItsValues) {
  // [ 2  1  .  . ]
  // [ 5  2  0  . ]
  // [ .  6  2  3 ]
  // [ .  .  7  2 ]
  expect_yes(real_matrix(
      4, {{{1, 2}, {2, 1}}, {{1, 5}, {2, 2}, {3, 0}}, {{2, 6}, {3, 2}, {4, 3}}, {{3, 7}, {4, 2}}},
      3));
}

TEST(StructSymmetric, ASymmetricMatrixWithUnsortedRowsIs) {
  // [ 1  1  1 ]
  // [ 1  .  . ]
  // [ 1  .  1 ]
  expect_yes(pattern(3, {{3, 1, 2}, {1}, {3, 1}}));
}

TEST(StructSymmetric, EmptyRowsAndColumnsDoNotMatter) {
  // [ .  .  . ]
  // [ .  1  . ]
  // [ .  .  . ]
  expect_yes(pattern(3, {{}, {2}, {}}));
}

TEST(StructSymmetric, RepeatedEntriesAreJudgedByMarksOnly) {
  expect_yes(pattern(2, {{1, 1, 2, 2}, {1, 2, 1, 2}}));
  expect_yes(pattern(2, {{1, 1}, {2}}));
}

TEST(StructSymmetric, ARectangularMatrixIsNotAndNoStorageIsAskedFor) {
  const csr_matrix mat = pattern(3, {{1}, {2}});
  const tests::refuse_allocation first(0);
  expect_no(mat, " nonsymmetric: n,m =            2           3\n");
  EXPECT_FALSE(tests::refuse_allocation::reached());
}

TEST(StructSymmetric, NamesTheFirstColumnThatHasNoCounterpart) {
  // [ 1  1 ]   row 1 of the transpose is position 1 only, row 2 positions 2 and 3
  // [ .  1 ]
  expect_no(pattern(2, {{2, 1}, {2}}), "non-symmetric entry          2         1\n");
}

TEST(StructSymmetric, APatternWithTheRowStartsOfItsTransposePassesUnexamined) {
  // [ .  1  . ]   not symmetric, but one entry in each row and in each column
  // [ .  .  1 ]
  // [ 1  .  . ]
  expect_yes(pattern(3, {{2}, {3}, {1}}));
}

TEST(StructSymmetric, IsSilentItselfWithoutEntries) {
  for (const std::size_t n : {std::size_t{0}, std::size_t{2}}) {
    const csr_matrix mat = pattern(static_cast<std::int32_t>(n), column_rows(n));
    const answer given = ask(mat);
    EXPECT_TRUE(given.symmetric);
    EXPECT_EQ(given.output, tests::no_entries_warning);
  }
}

TEST(StructSymmetric, StopsAtEveryShortage) {
  const column_rows rows{{1, 2}, {2}};  // which passes, though its transpose has other row starts
  const auto stops = tests::refuse_each_request(
      [&] { return pattern(2, rows); },
      [](const csr_matrix& mat) { EXPECT_TRUE(matrix_is_struct_symmetric(mat)); },
      [&](csr_matrix& mat) { EXPECT_EQ(columns_of(mat), rows); });
  EXPECT_EQ(stops, (std::vector<std::string>{"allocation error in csr_matrix_initial",
                                             "fail to allocate in is_symmetric"}));
}

// The test as it is defined, over sets: the stretch of stored columns as long as column i, one
// after the other, must lie within row i.
answer slow_answer(const column_rows& rows) {
  std::vector<std::int32_t> stored;
  for (const auto& row : rows) stored.insert(stored.end(), row.begin(), row.end());
  auto next = stored.begin();
  for (std::size_t row = 0; row < rows.size(); ++row) {
    const auto i = static_cast<std::int32_t>(row) + 1;
    const std::set<std::int32_t> columns(rows[row].begin(), rows[row].end());
    for (auto rest = std::count(stored.begin(), stored.end(), i); rest > 0; --rest, ++next) {
      if (columns.count(*next) != 0) continue;
      char line[64];
      std::snprintf(line, sizeof line, "non-symmetric entry %10d%10d\n", i, *next);
      return {false, line};
    }
  }
  return {true, ""};
}

bool has_entries(const column_rows& rows) {
  return std::any_of(rows.begin(), rows.end(), [](const auto& row) { return !row.empty(); });
}

RC_GTEST_PROP(StructSymmetricProperty, AnswersAsDefined, ()) {
  const auto n = *tests::any_size();
  const auto rows = columns_of(*tests::any_rows(n, n));
  RC_PRE(has_entries(rows));
  const answer expected = slow_answer(rows);
  const answer given = ask(pattern(n, rows, 1));
  RC_ASSERT(given.symmetric == expected.symmetric);
  RC_ASSERT(given.output == expected.output);
}

RC_GTEST_PROP(StructSymmetricProperty, EverySymmetricPatternIs, ()) {
  const auto n = *rc::gen::inRange<std::int32_t>(1, 10);
  column_rows rows(static_cast<std::size_t>(n));
  const auto put = [&](std::int32_t i, std::int32_t j) {
    rows[static_cast<std::size_t>(i - 1)].push_back(j);
  };
  put(1, 1);
  for (std::int32_t i = 2; i <= n; ++i)
    for (std::int32_t j = 1; j <= i; ++j) {
      if (!*rc::gen::arbitrary<bool>()) continue;
      put(i, j);
      if (i != j) put(j, i);
    }
  for (auto& row : rows)
    if (*rc::gen::arbitrary<bool>()) std::reverse(row.begin(), row.end());
  const answer given = ask(pattern(n, rows));
  RC_ASSERT(given.symmetric);
  RC_ASSERT(given.output.empty());
}

}  // namespace
