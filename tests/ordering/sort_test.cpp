// SPDX-License-Identifier: MIT
#include "../support/generators.hpp"
#include "../support/observe.hpp"
#include "../support/refusals.hpp"
#include "../support/registers.hpp"

#include <csr_matrix_mod/ordering.hpp>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <iterator>
#include <limits>
#include <numeric>
#include <random>

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

using integers = std::vector<std::int32_t>;
using values = std::vector<double>;

TEST(SortRow, MergesARepeatedColumnAndAddsItsValues) {
  std::int32_t len = 3;
  integers cols{5, 2, 5};
  values vals{1, 2, 3};
  expect_silent([&] { csr_matrix_sortrow(len, cols, vals); });
  EXPECT_EQ(len, 2);
  EXPECT_EQ(cols, (integers{2, 5, 5}));  // what follows is stale
  EXPECT_EQ(vals, (values{2, 4, 3}));
}

TEST(SortRow, AddsValuesThatMeetInStoredOrder) {
  // Another order would give 2 or 0: 1e16 + 1 is 1e16.
  std::int32_t len = 5;
  integers cols{7, 7, 3, 7, 7};
  values vals{1e16, 1, 8, -1e16, 1};
  expect_silent([&] { csr_matrix_sortrow(len, cols, vals); });
  EXPECT_EQ(len, 2);
  EXPECT_EQ(vals[0], 8.0);
  EXPECT_EQ(vals[1], 1.0);
}

TEST(SortRow, LooksAtNoMoreThanTheRow) {
  std::int32_t len = 2;
  integers cols{4, 3, 2, 1};
  values vals{4, 3, 2, 1};
  expect_silent([&] { csr_matrix_sortrow(len, cols, vals); });
  EXPECT_EQ(cols, (integers{3, 4, 2, 1}));
  EXPECT_EQ(vals, (values{3, 4, 2, 1}));
}

TEST(SortRow, LeavesARowOfNoneOrOneEntryUntouched) {
  for (std::int32_t length : {-1, 0, 1}) {
    std::int32_t len = length;
    integers cols{9, 4};
    values vals{-0.0, 2};
    expect_silent([&] { csr_matrix_sortrow(len, cols, vals); });
    expect_silent([&] { csr_matrix_sortrow_noval(len, cols); });
    EXPECT_EQ(len, length);
    EXPECT_EQ(cols, (integers{9, 4}));
    EXPECT_EQ(vals, (values{-0.0, 2}));
  }
}

TEST(SortRowNoval, MergesRepeatedColumns) {
  std::int32_t len = 5;
  integers cols{5, 2, 5, 1, 2};
  expect_silent([&] { csr_matrix_sortrow_noval(len, cols); });
  EXPECT_EQ(len, 3);
  EXPECT_EQ(cols, (integers{1, 2, 5, 5, 5}));
}

TEST(SortRow, StopsAtEveryShortage) {
  struct row {
    std::int32_t len = 2;
    integers cols{2, 1};
    values vals{5, 6};
  };
  const auto untouched = [](row& given) { EXPECT_EQ(given.len, 2); };
  EXPECT_EQ(
      tests::refuse_each_request(
          [] { return row{}; },
          [](row& given) { csr_matrix_sortrow(given.len, given.cols, given.vals); }, untouched),
      std::vector<std::string>(2, "allocation error in csr_matrix_sortrow"));
  EXPECT_EQ(tests::refuse_each_request(
                [] { return row{}; },
                [](row& given) { csr_matrix_sortrow_noval(given.len, given.cols); }, untouched),
            std::vector<std::string>(1, "allocation error in csr_matrix_sortrow_noval"));
}

TEST(Sort, OnlyReordersWithinRowsWhenNoColumnRepeats) {
  // [ 1  .  2 ]   stored from right to left, two slots to spare
  // [ .  .  . ]
  // [ .  3  0 ]
  csr_matrix mat = real_matrix(3, {{{3, 2}, {1, 1}}, {}, {{3, 0}, {2, 3}}}, 2);
  const std::int32_t* const storage = mat.ja.data();
  expect_silent([&] { csr_matrix_sort(mat); });
  EXPECT_EQ(entries_of(mat), (entry_rows{{{1, 1}, {3, 2}}, {}, {{2, 3}, {3, 0}}}));
  EXPECT_EQ(mat.ja.length(), 6);
  EXPECT_EQ(mat.a.length(), 6);
  EXPECT_EQ(mat.ja.data(), storage);
}

TEST(Sort, ShrinksTheStorageToTheEntriesWhenAColumnRepeats) {
  csr_matrix mat = real_matrix(3, {{{3, 1}, {3, 2}}, {{1, 4}}}, 5);
  expect_silent([&] { csr_matrix_sort(mat); });
  EXPECT_EQ(entries_of(mat), (entry_rows{{{3, 3}}, {{1, 4}}}));
  EXPECT_EQ(mat.ja.length(), 2);
  EXPECT_EQ(mat.a.length(), 2);
  EXPECT_EQ(mat.n, 2);
  EXPECT_EQ(mat.m, 3);
}

TEST(Sort, ClosesTheGapsBehindEveryRow) {
  csr_matrix mat = real_matrix(
      4, {{}, {{2, 1}, {2, 1}, {2, 1}}, {{4, 4}, {1, 1}, {4, 4}}, {{3, 7}, {2, 6}, {1, 5}}, {}});
  expect_silent([&] { csr_matrix_sort(mat); });
  EXPECT_EQ(entries_of(mat),
            (entry_rows{{}, {{2, 3}}, {{1, 1}, {4, 8}}, {{1, 5}, {2, 6}, {3, 7}}, {}}));
  EXPECT_EQ(mat.ja.length(), 6);
}

TEST(Sort, LeavesAMatrixWithoutRowsOrWithoutEntriesAsItIs) {
  csr_matrix no_rows = real_matrix(3, {}, 2);
  expect_silent([&] { csr_matrix_sort(no_rows); });
  EXPECT_EQ(entries_of(no_rows), entry_rows{});
  EXPECT_EQ(no_rows.ja.length(), 2);

  csr_matrix no_entries = real_matrix(0, {{}, {}}, 1);
  expect_silent([&] { csr_matrix_sort(no_entries); });
  EXPECT_EQ(entries_of(no_entries), entry_rows(2));
  EXPECT_EQ(no_entries.ja.length(), 1);
}

TEST(Sort, OfAPatternTouchesNoValues) {
  csr_matrix mat = pattern(3, {{3, 1, 3}, {2, 1}});
  ASSERT_TRUE(mat.a.allocate(1));
  mat.a(1) = 42;
  expect_silent([&] { csr_matrix_sort(mat); });
  EXPECT_EQ(columns_of(mat), (column_rows{{1, 3}, {1, 2}}));
  EXPECT_EQ(mat.ja.length(), 4);
  EXPECT_EQ(mat.a.length(), 1);
  EXPECT_EQ(mat.a(1), 42.0);
}

TEST(Sort, StopsAtEveryShortageWithARecordThatCanBeReleased) {
  const auto stops = tests::refuse_each_request(
      [] {
        return real_matrix(2, {{{2, 1}, {2, 2}}, {}, {{1, 3}}});
      },
      csr_matrix_sort, [](csr_matrix& mat) { tests::expect_releasable(mat); });
  const std::string in_row = "allocation error in csr_matrix_sortrow";
  const std::string shrinking = "allocation error in csr_matrix_allocate";
  EXPECT_EQ(stops, (std::vector<std::string>{in_row, in_row, in_row, shrinking, shrinking}));
}

TEST(Sort, OfAPatternStopsAtEveryShortage) {
  const auto stops = tests::refuse_each_request(
      [] {
        return pattern(2, {{2, 2}, {1}});
      },
      csr_matrix_sort, [](csr_matrix& mat) { tests::expect_releasable(mat); });
  const std::string in_row = "allocation error in csr_matrix_sortrow_noval";
  EXPECT_EQ(stops, (std::vector<std::string>{in_row, in_row, in_row,
                                             "allocation error in csr_matrix_allocate"}));
}

TEST(Sort, LeavesTheMatrixAsItIsOrSortedWhereARequestIsRefused) {
  const entry_rows rows{{{2, 1}, {1, 2}}, {{2, 3}, {1, 4}, {2, 5}}};
  for (int request = 0; request < 5; ++request) {
    csr_matrix mat = real_matrix(2, rows);
    const tests::refuse_allocation refuse(request);
    EXPECT_NE(observe([&] { csr_matrix_sort(mat); }).stop, std::nullopt);
    const bool for_temporaries = request < 3;
    EXPECT_EQ(entries_of(mat),
              for_temporaries ? rows : (entry_rows{{{1, 2}, {2, 1}}, {{1, 4}, {2, 8}}}));
    EXPECT_EQ(mat.a.length(), 5);
  }
}

TEST(Sort, AsksForNothingWhereEveryRowAscends) {
  csr_matrix mat = real_matrix(3, {{}, {{1, 1}, {3, 2}}, {}, {{2, 3}}, {}}, 1);
  const tests::refuse_allocation refuse(0);
  expect_silent([&] { csr_matrix_sort(mat); });
  EXPECT_FALSE(tests::refuse_allocation::reached());
}

// Each row as `csr_matrix_sortrow` sorts it.
entry_rows sorted_one_by_one(entry_rows rows) {
  for (auto& row : rows) {
    std::vector<std::int32_t> cols;
    std::vector<double> vals;
    for (const entry& e : row) {
      cols.push_back(e.column);
      vals.push_back(e.value);
    }
    auto len = static_cast<std::int32_t>(row.size());
    csr_matrix_sortrow(len, cols, vals);
    row.resize(static_cast<std::size_t>(len));
    for (std::size_t k = 0; k < row.size(); ++k) row[k] = {cols[k], vals[k]};
  }
  return rows;
}

void expect_sorted_one_by_one(std::int32_t m, const entry_rows& rows) {
  const entry_rows expected = sorted_one_by_one(rows);
  tests::in_registers_of_every_width([&] {
    csr_matrix mat = real_matrix(m, rows);
    csr_matrix bare = pattern(m, columns_of(rows));
    expect_silent([&] { csr_matrix_sort(mat); });
    expect_silent([&] { csr_matrix_sort(bare); });
    EXPECT_EQ(entries_of(mat), expected);
    EXPECT_EQ(columns_of(bare), columns_of(expected));
  });
}

// Rows of every length from 0 to 299 and some longer ones, in the order of a multiplicative walk.
// All columns of a row are different if there are 4e8, which differ in every byte; some, most or
// all are the same if there are 150, 7 or 1.
TEST(Sort, OrdersRowsOfEveryLengthAsOneByOne) {
  for (const std::int32_t m : {400000000, 150, 7, 1}) {
    entry_rows rows;
    std::int64_t walk = 1;
    for (std::size_t length = 0; length < 304; ++length) {
      auto& row = rows.emplace_back(length < 300 ? length : 1000 * (length - 299));
      for (entry& e : row) {
        walk = walk * 48271 % 2147483647;
        e = {static_cast<std::int32_t>(walk % m) + 1, 1e-3 * static_cast<double>(walk % 99991)};
      }
      if (!row.empty()) row.back().value = -0.0;
    }
    expect_sorted_one_by_one(m, rows);
  }
}

// `length` different columns of the `spread` from `low` on, the first and the last among them, in
// no order.
std::vector<entry> near_row(std::int32_t length, std::int32_t spread, std::int32_t low) {
  integers between(static_cast<std::size_t>(spread - 2));
  std::iota(between.begin(), between.end(), low + 1);
  std::minstd_rand walk(static_cast<unsigned>(length + spread));
  integers columns{low, low + (spread - 1)};
  std::sample(between.begin(), between.end(), std::back_inserter(columns), length - 2, walk);
  std::shuffle(columns.begin(), columns.end(), walk);
  std::vector<entry> row;
  for (const std::int32_t column : columns) row.push_back({column, 1.0 / (column % 1013 + 1)});
  return row;
}

// Some of them spread a column further than others, one has a column twice, one a column at the
// other end of the matrix.
TEST(Sort, OrdersRowsWhoseColumnsLieNearEachOther) {
  constexpr std::int32_t m = std::numeric_limits<std::int32_t>::max();
  entry_rows rows;
  for (const std::int32_t length : {33, 48, 64, 65, 100, 128, 129, 511, 512, 513, 4096, 4097})
    for (const std::int32_t spread :
         {length, length + 1, 64 * ((length + 63) / 64), 1024, 1025, 16 * length, 16 * length + 1,
          128 * length, 128 * length + 1, 65535, 65536, 65537}) {
      if (spread < length || spread > 128 * length + 1 || spread > 65537) continue;
      rows.push_back(near_row(length, spread, 1));
      rows.push_back(near_row(length, spread, m - spread + 1));
      for (const std::size_t k : {std::size_t{1}, rows.back().size() / 3, rows.back().size() - 1}) {
        rows.push_back(near_row(length, spread, 1000));
        rows.back()[k].column = rows.back()[k - 1].column;
        rows.push_back(near_row(length, spread, 1000));
        rows.back()[k].column = m;
        rows.push_back(near_row(length, spread, m - spread));
        rows.back()[k].column = 1;
      }
    }
  expect_sorted_one_by_one(m, rows);
}

// The rows are looked at some at a time: 600 of them with 0 to 3 entries, one of them out of order.
TEST(Sort, FindsTheOneRowThatIsOutOfOrder) {
  entry_rows rows;
  for (std::int32_t i = 0; i < 600; ++i) {
    auto& row = rows.emplace_back();
    for (std::int32_t j = 1; j <= i % 4; ++j) row.push_back({j + i % 3, 1.0 / (i + j)});
  }
  expect_sorted_one_by_one(9, rows);
  for (std::size_t i = 2; i < rows.size(); ++i) {
    if (rows[i].size() < 2) continue;
    entry_rows one_reversed = rows;
    std::reverse(one_reversed[i].begin(), one_reversed[i].end());
    expect_sorted_one_by_one(9, one_reversed);
    entry_rows one_repeated = rows;
    one_repeated[i].back().column = one_repeated[i].front().column;
    expect_sorted_one_by_one(9, one_repeated);
  }
}

TEST(Sort, FindsTheOneRowThatIsOutOfOrderAmongNearlyEmptyOnes) {
  for (std::size_t i = 0; i < 100; ++i) {
    entry_rows rows(100);
    for (std::size_t k = 1; k < rows.size(); k += 3)
      rows[k] = {{static_cast<std::int32_t>(k % 9) + 1, 0.5}};
    rows[i] = {{2, 0.1}, {1, 0.2}};
    expect_sorted_one_by_one(9, rows);
    rows[i] = {{2, 0.1}, {2, 0.2}};
    expect_sorted_one_by_one(9, rows);
  }
}

TEST(Sort, StartsAtPositionOneWhateverTheFirstRowStart) {
  csr_matrix mat = real_matrix(3, {{{1, 9}, {1, 1}, {3, 2}}, {{2, 3}}});
  mat.ia(1) = 2;  // the first entry belongs to no row
  expect_silent([&] { csr_matrix_sort(mat); });
  EXPECT_EQ(entries_of(mat), (entry_rows{{{1, 1}, {3, 2}}, {{2, 3}}}));
  EXPECT_EQ(mat.ja.length(), 3);
}

// A stable sort, then values added from the left.
std::vector<entry> sorted_and_merged(std::vector<entry> row) {
  std::stable_sort(row.begin(), row.end(), [](const entry& left, const entry& right) {
    return left.column < right.column;
  });
  std::vector<entry> merged;
  for (const entry& e : row) {
    if (!merged.empty() && merged.back().column == e.column)
      merged.back().value += e.value;
    else
      merged.push_back(e);
  }
  return merged;
}

RC_GTEST_PROP(SortProperty, IsAStableSortFollowedByAMerge, ()) {
  const auto m = *tests::any_size();
  const auto rows = *tests::any_rows(*tests::any_size(), m);
  const auto spare = *rc::gen::inRange(0, 4);
  entry_rows expected;
  std::size_t before = 0;
  std::size_t after = 0;
  for (const auto& row : rows) {
    expected.push_back(sorted_and_merged(row));
    before += row.size();
    after += expected.back().size();
  }
  csr_matrix mat = real_matrix(m, rows, spare);
  csr_matrix bare = pattern(m, columns_of(rows), spare);
  expect_silent([&] { csr_matrix_sort(mat); });
  expect_silent([&] { csr_matrix_sort(bare); });
  RC_ASSERT(entries_of(mat) == expected);
  RC_ASSERT(columns_of(bare) == columns_of(expected));
  const auto capacity =
      static_cast<std::int64_t>(after) + (before == after ? std::int64_t{spare} : 0);
  RC_ASSERT(mat.ja.length() == capacity);
  RC_ASSERT(mat.a.length() == capacity);
  RC_ASSERT(bare.ja.length() == capacity);
}

}  // namespace
