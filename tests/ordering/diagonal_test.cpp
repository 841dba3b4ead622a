// SPDX-License-Identifier: MIT
#include "../support/generators.hpp"
#include "../support/observe.hpp"

#include <csr_matrix_mod/ordering.hpp>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>

namespace {

using namespace csr_matrix_mod;
using tests::column_rows;
using tests::columns_of;
using tests::entries_of;
using tests::entry;
using tests::entry_rows;
using tests::expect_silent;
using tests::observe;
using tests::pattern;
using tests::real_matrix;

TEST(RemoveDiagonal, LeavesTheOtherEntriesAndTheCapacity) {
  // [ 1  2 ]      [ .  2 ]
  // [ 3  4 ]  ->  [ 3  . ]
  csr_matrix mat = real_matrix(2, {{{1, 1}, {2, 2}}, {{1, 3}, {2, 4}}});
  expect_silent([&] { csr_matrix_remove_diag(mat); });
  EXPECT_EQ(entries_of(mat), (entry_rows{{{2, 2}}, {{1, 3}}}));
  EXPECT_EQ(mat.ia(2), 2);
  EXPECT_EQ(mat.ia(3), 3);
  EXPECT_EQ(mat.ja.length(), 4);
  EXPECT_EQ(mat.a.length(), 4);
}

TEST(RemoveDiagonal, RemovesEveryCopyOfARepeatedDiagonalEntry) {
  csr_matrix mat = real_matrix(3, {{}, {{2, 1}, {3, 2}, {2, 3}, {2, 4}}, {{3, 5}}});
  expect_silent([&] { csr_matrix_remove_diag(mat); });
  EXPECT_EQ(entries_of(mat), (entry_rows{{}, {{3, 2}}, {}}));
}

TEST(RemoveDiagonal, LeavesEmptyRowsOfADiagonalMatrix) {
  csr_matrix mat = real_matrix(3, {{{1, 1}}, {{2, 2}}, {{3, 3}}});
  expect_silent([&] { csr_matrix_remove_diag(mat); });
  EXPECT_EQ(entries_of(mat), entry_rows(3));
  EXPECT_EQ(mat.ja.length(), 3);
}

TEST(RemoveDiagonal, OfAPatternTouchesNoValues) {
  csr_matrix mat = pattern(4, {{1, 4}, {3, 2}}, 3);
  expect_silent([&] { csr_matrix_remove_diag(mat); });
  EXPECT_EQ(columns_of(mat), (column_rows{{4}, {3}}));
  EXPECT_EQ(mat.ja.length(), 7);
}

TEST(RemoveDiagonal, LeavesAMatrixWithoutRowsAlone) {
  csr_matrix mat;  // no row start at all
  expect_silent([&] { csr_matrix_remove_diag(mat); });
  EXPECT_FALSE(mat.ia.allocated());
}

TEST(RemoveDiagonal, TakesTheFirstRowToBeginAtOne) {
  csr_matrix mat = real_matrix(2, {{{2, 5}, {1, 6}}});
  mat.ia(1) = 2;
  expect_silent([&] { csr_matrix_remove_diag(mat); });
  EXPECT_EQ(mat.ia(1), 2);
  EXPECT_EQ(mat.ia(2), 2);
  EXPECT_EQ(mat.ja(1), 2);
}

RC_GTEST_PROP(RemoveDiagonalProperty, KeepsJustTheEntriesOffTheDiagonal, ()) {
  const auto m = *tests::any_size();
  const auto rows = *tests::any_rows(*tests::any_size(), m);
  entry_rows expected;
  for (const auto& row : rows) {
    const auto i = static_cast<std::int32_t>(expected.size()) + 1;
    expected.emplace_back();
    for (const entry& e : row)
      if (e.column != i) expected.back().push_back(e);
  }
  csr_matrix mat = real_matrix(m, rows, 2);
  csr_matrix bare = pattern(m, columns_of(rows), 2);
  const std::int64_t capacity = mat.ja.length();
  expect_silent([&] { csr_matrix_remove_diag(mat); });
  expect_silent([&] { csr_matrix_remove_diag(bare); });
  RC_ASSERT(entries_of(mat) == expected);
  RC_ASSERT(columns_of(bare) == columns_of(expected));
  RC_ASSERT(mat.ja.length() == capacity);
  RC_ASSERT(mat.a.length() == capacity);
}

TEST(MoveDiagonal, SwapsItWithTheEntryThatStoodFirst) {
  csr_matrix mat = real_matrix(5, {{{1, 7}}, {{1, 8}, {2, -0.0}}, {{1, 10}, {3, 30}, {5, 50}}}, 1);
  expect_silent([&] { csr_matrix_movediag(mat); });
  EXPECT_EQ(entries_of(mat),
            (entry_rows{{{1, 7}}, {{2, -0.0}, {1, 8}}, {{3, 30}, {1, 10}, {5, 50}}}));
  EXPECT_EQ(mat.ja.length(), 7);
}

TEST(MoveDiagonal, MovesOnlyTheFirstOfARepeatedDiagonalEntry) {
  csr_matrix mat = real_matrix(3, {{{3, 1}, {1, 2}, {2, 3}, {1, 4}}});
  expect_silent([&] { csr_matrix_movediag(mat); });
  EXPECT_EQ(entries_of(mat), (entry_rows{{{1, 2}, {3, 1}, {2, 3}, {1, 4}}}));
}

TEST(MoveDiagonal, StopsAtARowWithoutDiagonalAfterTheRowsBeforeItAreDone) {
  csr_matrix mat = real_matrix(3, {{{2, 1}, {1, 2}}, {{1, 3}, {3, 4}}, {{1, 5}, {3, 6}}});
  const auto seen = observe([&] { csr_matrix_movediag(mat); });
  EXPECT_EQ(seen.output, " no diagonal element exist in row            2 !\n");
  EXPECT_EQ(seen.stop, " ");
  EXPECT_EQ(entries_of(mat), (entry_rows{{{1, 2}, {2, 1}}, {{1, 3}, {3, 4}}, {{1, 5}, {3, 6}}}));
}

TEST(MoveDiagonal, StopsAtAnEmptyRow) {
  csr_matrix mat = real_matrix(2, {{}, {{1, 3}, {2, 4}}});
  EXPECT_EQ(observe([&] { csr_matrix_movediag(mat); }).output,
            " no diagonal element exist in row            1 !\n");
}

TEST(MoveDiagonal, HasNothingToDoWithoutRows) {
  csr_matrix mat = real_matrix(2, {});
  expect_silent([&] { csr_matrix_movediag(mat); });
  EXPECT_EQ(entries_of(mat), entry_rows{});
}

RC_GTEST_PROP(MoveDiagonalProperty, ChangesTwoPlacesOfARowAtMost, ()) {
  const auto n = *tests::any_size();
  auto rows = *tests::any_rows(n, n);
  entry_rows expected;
  for (auto& row : rows) {
    const auto i = static_cast<std::int32_t>(expected.size()) + 1;
    const auto at = *rc::gen::inRange<std::size_t>(0, row.size() + 1);
    row.insert(row.begin() + static_cast<std::ptrdiff_t>(at), entry{i, *tests::any_value()});
    expected.push_back(row);
    const auto diagonal = std::find_if(expected.back().begin(), expected.back().end(),
                                       [i](const entry& e) { return e.column == i; });
    std::iter_swap(expected.back().begin(), diagonal);
  }
  csr_matrix mat = real_matrix(n, rows, 1);
  expect_silent([&] { csr_matrix_movediag(mat); });
  RC_ASSERT(entries_of(mat) == expected);
}

}  // namespace
