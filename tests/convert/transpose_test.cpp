// SPDX-License-Identifier: MIT
#include "../support/dense.hpp"
#include "../support/generators.hpp"
#include "../support/messages.hpp"
#include "../support/mirrored.hpp"
#include "../support/observe.hpp"
#include "../support/refusals.hpp"

#include <csr_matrix_mod/convert.hpp>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>

namespace {

using namespace csr_matrix_mod;
using tests::column_rows;
using tests::columns_of;
using tests::entries_of;
using tests::entry_rows;
using tests::expect_silent;
using tests::observe;
using tests::pattern;
using tests::real_matrix;

TEST(Transpose, TurnsRowsIntoColumns) {
  // [ 10  .  20 ]        [ 10   . ]
  // [  .  30  . ]   ->   [  .  30 ]
  //                      [ 20   . ]
  const csr_matrix mat = real_matrix(3, {{{1, 10}, {3, 20}}, {{2, 30}}});
  csr_matrix mat_t;
  expect_silent([&] { csr_matrix_transpose(mat, mat_t); });
  EXPECT_EQ(mat_t.n, 3);
  EXPECT_EQ(mat_t.m, 2);
  EXPECT_EQ(mat_t.ia.length(), 4);
  EXPECT_EQ(entries_of(mat_t), (entry_rows{{{1, 10}}, {{2, 30}}, {{1, 20}}}));
}

TEST(Transpose, GivesAnEmptyRowForAnEmptyColumn) {
  // [ .  1  . ]
  // [ .  2  . ]
  const csr_matrix mat = real_matrix(3, {{{2, 1}}, {{2, 2}}});
  csr_matrix mat_t;
  expect_silent([&] { csr_matrix_transpose(mat, mat_t); });
  EXPECT_EQ(entries_of(mat_t), (entry_rows{{}, {{1, 1}, {2, 2}}, {}}));
}

TEST(Transpose, GivesAnEmptyColumnForEmptyFirstAndLastRows) {
  // [ .  . ]
  // [ 5  6 ]
  // [ .  . ]
  const csr_matrix mat = real_matrix(2, {{}, {{2, 6}, {1, 5}}, {}});
  csr_matrix mat_t;
  expect_silent([&] { csr_matrix_transpose(mat, mat_t); });
  EXPECT_EQ(mat_t.m, 3);
  EXPECT_EQ(entries_of(mat_t), (entry_rows{{{2, 5}}, {{2, 6}}}));
}

TEST(Transpose, SortsItsRowsWhateverTheOrderOfTheInput) {
  // [ 3  2  1 ]   stored from right to left
  // [ 6  5  4 ]
  const csr_matrix mat = real_matrix(3, {{{3, 1}, {2, 2}, {1, 3}}, {{3, 4}, {2, 5}, {1, 6}}});
  csr_matrix mat_t;
  expect_silent([&] { csr_matrix_transpose(mat, mat_t); });
  EXPECT_EQ(entries_of(mat_t), (entry_rows{{{1, 3}, {2, 6}}, {{1, 2}, {2, 5}}, {{1, 1}, {2, 4}}}));
}

TEST(Transpose, KeepsRepeatedEntriesInStoredOrder) {
  const csr_matrix mat = real_matrix(2, {{{2, 1}, {1, 2}, {2, 3}, {2, -0.0}}});
  csr_matrix mat_t;
  expect_silent([&] { csr_matrix_transpose(mat, mat_t); });
  EXPECT_EQ(entries_of(mat_t), (entry_rows{{{1, 2}}, {{1, 1}, {1, 3}, {1, -0.0}}}));
}

TEST(Transpose, OfAPatternIsAPatternWithoutValues) {
  const csr_matrix mat = pattern(2, {{2}, {2, 1}});
  csr_matrix mat_t;
  expect_silent([&] { csr_matrix_transpose(mat, mat_t); });
  EXPECT_EQ(mat_t.type, matrix_structure_only);
  EXPECT_FALSE(mat_t.a.allocated());
  EXPECT_EQ(columns_of(mat_t), (column_rows{{2}, {1, 2}}));
}

TEST(Transpose, GivesEmptyTrailingRowsWhenMoreColumnsAreAskedFor) {
  const csr_matrix mat = real_matrix(2, {{{2, 7}}});
  csr_matrix mat_t;
  expect_silent([&] { csr_matrix_transpose(mat, mat_t, 4); });
  EXPECT_EQ(mat_t.n, 4);
  EXPECT_EQ(entries_of(mat_t), (entry_rows{{}, {{1, 7}}, {}, {}}));
}

TEST(Transpose, RunsOverFewerRowsWhenTheLastColumnsAreEmpty) {
  const csr_matrix mat = real_matrix(5, {{{2, 7}}});
  csr_matrix mat_t;
  expect_silent([&] { csr_matrix_transpose(mat, mat_t, 2); });
  EXPECT_EQ(mat_t.n, 2);
  EXPECT_EQ(entries_of(mat_t), (entry_rows{{}, {{1, 7}}}));
}

TEST(Transpose, OfAMatrixWithoutEntriesWarnsAndHasOneSlot) {
  const csr_matrix mat = real_matrix(2, {{}, {}, {}});
  csr_matrix mat_t;
  const auto seen = observe([&] { csr_matrix_transpose(mat, mat_t); });
  EXPECT_EQ(seen.output, tests::no_entries_warning);
  EXPECT_EQ(seen.stop, std::nullopt);
  EXPECT_EQ(entries_of(mat_t), entry_rows(2));
  EXPECT_EQ(mat_t.m, 3);
  EXPECT_EQ(mat_t.ja.length(), 1);
  EXPECT_EQ(mat_t.a.length(), 1);
}

TEST(Transpose, OfAMatrixWithoutRowsHasItsRowsAllEmpty) {
  const csr_matrix mat = real_matrix(3, {});
  csr_matrix mat_t;
  EXPECT_EQ(observe([&] { csr_matrix_transpose(mat, mat_t); }).output, tests::no_entries_warning);
  EXPECT_EQ(mat_t.m, 0);
  EXPECT_EQ(entries_of(mat_t), entry_rows(3));
}

TEST(Transpose, OfAMatrixWithoutColumnsHasNoRows) {
  const csr_matrix mat = pattern(0, {{}, {}});
  csr_matrix mat_t;
  EXPECT_EQ(observe([&] { csr_matrix_transpose(mat, mat_t); }).output, tests::no_entries_warning);
  EXPECT_EQ(mat_t.n, 0);
  EXPECT_EQ(mat_t.m, 2);
  EXPECT_EQ(mat_t.ia.length(), 1);
  EXPECT_EQ(mat_t.ia(1), 1);
}

TEST(Transpose, OverFewerThanNoRowsWritesNoRowStart) {
  const csr_matrix mat = real_matrix(3, {});
  csr_matrix mat_t;
  EXPECT_EQ(observe([&] { csr_matrix_transpose(mat, mat_t, -1); }).output,
            tests::no_entries_warning);
  EXPECT_EQ(mat_t.n, -1);
  EXPECT_EQ(mat_t.ia.length(), 0);
}

TEST(Transpose, DropsWhatTheResultHeldBefore) {
  const csr_matrix mat = pattern(1, {{1}});
  csr_matrix mat_t = real_matrix(3, {{{1, 1}, {3, 2}}, {}});
  expect_silent([&] { csr_matrix_transpose(mat, mat_t); });
  EXPECT_FALSE(mat_t.a.allocated());
  EXPECT_EQ(columns_of(mat_t), (column_rows{{1}}));
}

TEST(Transpose, StopsAtEveryShortageWithTheInputUntouched) {
  struct arguments {
    csr_matrix mat, mat_t;
  };
  const entry_rows rows{{{2, 1}, {1, 2}}, {}, {{2, 3}}};
  const auto stops = tests::refuse_each_request(
      [&] {
        return arguments{real_matrix(2, rows), {}};
      },
      [](arguments& given) { csr_matrix_transpose(given.mat, given.mat_t); },
      [&](arguments& given) {
        EXPECT_EQ(entries_of(given.mat), rows);
        tests::expect_releasable(given.mat_t);
      });
  EXPECT_EQ(stops, (std::vector<std::string>{"allocation error in csr_matrix_initial",
                                             "allocation error in csr_matrix_allocate",
                                             "allocation error in csr_matrix_allocate"}));
}

RC_GTEST_PROP(TransposeProperty, IsTheOneWrittenPlaceByPlace, ()) {
  const auto n = *tests::any_size();
  const auto m = *tests::any_size();
  const auto rows = *tests::any_rows(n, m);
  const auto spare = *rc::gen::inRange(0, 4);
  const entry_rows expected = tests::dense::transpose(rows, m);
  const csr_matrix mat = real_matrix(m, rows, spare);
  const csr_matrix bare = pattern(m, columns_of(rows), spare);
  csr_matrix mat_t;
  csr_matrix bare_t;
  observe([&] { csr_matrix_transpose(mat, mat_t); });
  observe([&] { csr_matrix_transpose(bare, bare_t); });
  RC_ASSERT(entries_of(mat_t) == expected);
  RC_ASSERT(columns_of(bare_t) == columns_of(expected));
  RC_ASSERT(mat_t.m == n);
  RC_ASSERT(bare_t.m == n);
  RC_ASSERT(mat_t.ja.length() == std::max(csr_matrix_num_nz(mat), 1));
  RC_ASSERT(mat_t.a.length() == mat_t.ja.length());
  RC_ASSERT(bare_t.ja.length() == mat_t.ja.length());
  RC_ASSERT(entries_of(mat) == rows);
}

void expect_transpose(const entry_rows& rows, std::int32_t n) {
  const entry_rows expected = tests::dense::transpose(rows, n);
  const csr_matrix mat = real_matrix(n, rows, 1);
  csr_matrix mat_t;
  csr_matrix bare_t;
  csr_matrix counted_t;
  observe([&] {
    csr_matrix_transpose(mat, mat_t);
    csr_matrix_transpose(pattern(n, columns_of(rows)), bare_t);
    csr_matrix_transpose(mat, counted_t, n + 1);  // no square matrix: nothing to mirror
  });
  RC_ASSERT(entries_of(mat_t) == expected);
  RC_ASSERT(columns_of(bare_t) == columns_of(expected));
  RC_ASSERT(mat_t.m == n);
  RC_ASSERT(mat_t.ja.length() == counted_t.ja.length());
  RC_ASSERT(mat_t.a.length() == counted_t.a.length());
  // The one slot of a matrix without entries holds anything.
  const std::int32_t nnz = csr_matrix_num_nz(mat_t);
  RC_ASSERT(std::equal(mat_t.ja.begin(), mat_t.ja.begin() + nnz, counted_t.ja.begin()));
  RC_ASSERT(std::equal(mat_t.ia.begin(), mat_t.ia.end(), counted_t.ia.begin()));
  RC_ASSERT(entries_of(mat) == rows);
}

// Patterns that are symmetric keep their columns, so patterns that are, and nearly are, are tried.
RC_GTEST_PROP(TransposeProperty, OfASymmetricPatternIsTheOneCountedToo, ()) {
  const auto n = *rc::gen::inRange<std::int32_t>(1, 40);
  entry_rows rows = tests::mirrored_rows(n);
  expect_transpose(rows, n);
  tests::spoil(rows);
  expect_transpose(rows, n);
}

// Larger than the cache: columns far apart, those of a symmetric pattern too, columns near those of
// the rows before, and a symmetric pattern near the diagonal.
TEST(Transpose, OfALargeMatrixHoldsEveryEntryInItsColumn) {
  constexpr std::int32_t n = 20011;
  entry_rows scattered(n);
  entry_rows near(n);
  std::int64_t walk = 1;
  for (std::int32_t i = 0; i < n; ++i)
    for (std::int32_t k = 0; k < 40; ++k) {
      walk = walk * 48271 % 2147483647;
      const auto value = static_cast<double>(walk);
      scattered[static_cast<std::size_t>(i)].push_back(
          {static_cast<std::int32_t>(walk % n) + 1, value});
      near[static_cast<std::size_t>(i)].push_back({(i + 500 * k) % n + 1, value});
    }
  for (const entry_rows& rows :
       {scattered, tests::mirrored_all_over(n, 24), near, tests::mirrored_band(n, 20)}) {
    entry_rows expected(n);
    for (std::int32_t i = 1; i <= n; ++i)
      for (const tests::entry& e : rows[static_cast<std::size_t>(i - 1)])
        expected[static_cast<std::size_t>(e.column - 1)].push_back({i, e.value});
    csr_matrix mat_t;
    csr_matrix bare_t;
    expect_silent([&] { csr_matrix_transpose(real_matrix(n, rows), mat_t); });
    expect_silent([&] { csr_matrix_transpose(pattern(n, columns_of(rows)), bare_t); });
    EXPECT_EQ(entries_of(mat_t), expected);
    EXPECT_EQ(columns_of(bare_t), columns_of(expected));
  }
}

// Rows of up to three entries, so many that their ends surprise, with a long one at the end; then
// one of them begins before the row before, and shares entries with others.
TEST(Transpose, OfShortUnevenRowsHoldsEveryEntryInItsColumn) {
  constexpr std::int32_t n = 1 << 14;
  constexpr std::int32_t m = 1000;
  std::uint32_t state = 1;
  const auto any_below = [&state](std::uint32_t end) {
    state = state * 1664525U + 1013904223U;
    return static_cast<std::int32_t>((state >> 16U) % end);
  };
  for (const std::int32_t last : {0, 2, 9}) {
    entry_rows rows(n);
    for (std::int32_t i = 0; i < n; ++i)
      for (std::int32_t left = i == n - 1 ? last : any_below(4); left > 0; --left)
        rows[static_cast<std::size_t>(i)].push_back({any_below(m) + 1, any_below(1000) + 0.5});
    csr_matrix mat = real_matrix(m, rows);
    csr_matrix mat_t;
    csr_matrix_transpose(mat, mat_t);
    EXPECT_EQ(entries_of(mat_t), tests::dense::transpose(rows, m));
    const csr_matrix bare = pattern(m, columns_of(rows));
    csr_matrix_transpose(bare, mat_t);
    EXPECT_EQ(columns_of(mat_t), columns_of(tests::dense::transpose(rows, m)));

    tests::begin_two_rows_earlier(mat, rows, n / 2);
    csr_matrix_transpose(mat, mat_t);
    EXPECT_EQ(entries_of(mat_t), tests::dense::transpose(rows, m));
  }
}

TEST(Transpose, OfShortUnevenRowsSkipsOneThatEndsBeforeItBegins) {
  constexpr std::size_t n = 1 << 14;
  entry_rows rows(n);
  for (std::size_t i = 0; i < n; ++i)
    for (std::size_t left = (i * i / 7 + 2) % 4; left > 0; --left)
      rows[i].push_back({static_cast<std::int32_t>(i * left % 1000) + 1, 0.5});
  csr_matrix mat = real_matrix(1000, rows);
  tests::end_before_it_begins(mat, rows, n / 2);
  csr_matrix mat_t;
  csr_matrix_transpose(mat, mat_t);
  EXPECT_EQ(entries_of(mat_t), tests::dense::transpose(rows, 1000));
}

RC_GTEST_PROP(TransposeProperty, TwiceIsTheMatrixWithEveryRowSorted, ()) {
  const auto m = *tests::any_size();
  auto rows = *tests::any_rows(*tests::any_size(), m);
  const csr_matrix mat = real_matrix(m, rows);
  csr_matrix mat_t;
  csr_matrix back;
  observe([&] {
    csr_matrix_transpose(mat, mat_t);
    csr_matrix_transpose(mat_t, back);
  });
  for (auto& row : rows)
    std::stable_sort(row.begin(), row.end(),
                     [](const tests::entry& left, const tests::entry& right) {
                       return left.column < right.column;
                     });
  RC_ASSERT(entries_of(back) == rows);
}

}  // namespace
