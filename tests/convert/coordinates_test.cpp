// SPDX-License-Identifier: MIT
#include "../support/generators.hpp"
#include "../support/messages.hpp"
#include "../support/observe.hpp"
#include "../support/refusals.hpp"

#include <csr_matrix_mod/convert.hpp>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <limits>
#include <utility>

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

using integers = std::vector<std::int32_t>;
using values = std::vector<double>;

struct lists {
  std::int32_t nnz = -1;
  array_ref<std::int32_t> row, col;
  array_ref<double> val;
};

template <class T>
std::vector<T> elements(const array_ref<T>& array) {
  return {array.begin(), array.end()};
}

lists to_coo(const csr_matrix& mat) {
  lists out;
  expect_silent([&] { csr_matrix_to_coo(mat, out.nnz, out.row, out.col, out.val); });
  return out;
}

TEST(ToCoordinates, ListsTheEntriesRowByRowInStoredOrder) {
  // [ 10  .  20 ]   row 1 stored from right to left
  // [  .  30  0 ]   an explicit zero
  const lists out = to_coo(real_matrix(3, {{{3, 20}, {1, 10}}, {{2, 30}, {3, 0}}}));
  EXPECT_EQ(out.nnz, 4);
  EXPECT_EQ(elements(out.row), (integers{1, 1, 2, 2}));
  EXPECT_EQ(elements(out.col), (integers{3, 1, 2, 3}));
  EXPECT_EQ(elements(out.val), (values{20, 10, 30, 0}));
}

TEST(ToCoordinates, LeavesOutTheNumbersOfEmptyRows) {
  const lists out = to_coo(real_matrix(2, {{}, {{2, 5}}, {}, {{1, 6}, {1, 7}}, {}}));
  EXPECT_EQ(elements(out.row), (integers{2, 4, 4}));
  EXPECT_EQ(elements(out.col), (integers{2, 1, 1}));
  EXPECT_EQ(elements(out.val), (values{5, 6, 7}));
}

TEST(ToCoordinates, MakesTheListsAsLongAsTheEntriesWhateverTheCapacity) {
  const lists out = to_coo(real_matrix(2, {{{1, 1}}, {{2, 2}}}, 7));
  EXPECT_EQ(out.nnz, 2);
  EXPECT_EQ(out.row.length(), 2);
  EXPECT_EQ(out.col.length(), 2);
  EXPECT_EQ(out.val.length(), 2);
}

TEST(ToCoordinates, CreatesAListOfValuesEvenForAPattern) {
  const lists out = to_coo(pattern(2, {{2, 1}, {2}}));
  EXPECT_EQ(elements(out.row), (integers{1, 1, 2}));
  EXPECT_EQ(elements(out.col), (integers{2, 1, 2}));
  EXPECT_EQ(out.val.length(), 3);
}

TEST(ToCoordinates, OfAMatrixWithoutRowsAreEmptyLists) {
  const lists out = to_coo(real_matrix(4, {}));
  EXPECT_EQ(out.nnz, 0);
  EXPECT_TRUE(out.row.allocated());
  EXPECT_TRUE(out.col.allocated());
  EXPECT_TRUE(out.val.allocated());
  EXPECT_EQ(out.row.length() + out.col.length() + out.val.length(), 0);
}

TEST(ToCoordinates, ListsFromTheStartWhenTheFirstRowDoesNotStartAtOne) {
  csr_matrix mat = real_matrix(2, {{{1, 1}, {2, 2}}, {{2, 3}}});
  mat.ia(1) = 2;
  const lists out = to_coo(mat);
  EXPECT_EQ(out.nnz, 2);
  EXPECT_EQ(out.row.length(), 3);
  EXPECT_EQ(out.row(1), 1);
  EXPECT_EQ(out.row(2), 2);
  EXPECT_EQ(out.col(1), 2);
  EXPECT_EQ(out.val(2), 3.0);
}

TEST(ToCoordinates, StopsAtEveryShortageWithTheReferencesUnchanged) {
  struct arguments {
    csr_matrix mat;
    lists out;
  };
  const entry_rows rows{{{2, 1}}, {{1, 2}}};
  const auto stops = tests::refuse_each_request(
      [&] {
        arguments given{real_matrix(2, rows), {}};
        EXPECT_TRUE(given.out.row.allocate(5));
        return given;
      },
      [](arguments& given) {
        csr_matrix_to_coo(given.mat, given.out.nnz, given.out.row, given.out.col, given.out.val);
      },
      [&](arguments& given) {
        EXPECT_EQ(entries_of(given.mat), rows);
        EXPECT_EQ(given.out.row.length(), 5);
        EXPECT_FALSE(given.out.col.allocated());
        EXPECT_FALSE(given.out.val.allocated());
      });
  EXPECT_EQ(stops, std::vector<std::string>(3, "allocation error in csr_matrix_to_coo"));
}

TEST(FromCoordinates, GathersListsInAnyOrderOfRowsAndKeepsTheirOrder) {
  // [ 2  .  1 ]   (1,3) is given before (1,1)
  // [ .  3  . ]
  // [ .  .  . ]
  const integers row{1, 2, 1};
  const integers col{3, 2, 1};
  const values val{1, 3, 2};
  csr_matrix mat;
  expect_silent([&] { coo_to_csr_format(3, 3, row, col, val, mat, matrix_real, 3); });
  EXPECT_EQ(mat.n, 3);
  EXPECT_EQ(mat.m, 3);
  EXPECT_EQ(entries_of(mat), (entry_rows{{{3, 1}, {1, 2}}, {{2, 3}}, {}}));
  EXPECT_EQ(mat.ja.length(), 3);
  EXPECT_EQ(mat.a.length(), 3);
}

TEST(FromCoordinates, StoresAPairThatIsGivenTwiceTwice) {
  const integers row{2, 1, 2, 2};
  const integers col{1, 1, 1, 2};
  const values val{5, -0.0, 6, 7};
  csr_matrix mat;
  expect_silent([&] { coo_to_csr_format(2, 4, row, col, val, mat, {}, 2); });
  EXPECT_EQ(entries_of(mat), (entry_rows{{{1, -0.0}}, {{1, 5}, {1, 6}, {2, 7}}}));
}

TEST(FromCoordinates, TakesTheLargestColumnPresentWhenNoneIsGiven) {
  const integers row{1, 1};
  const integers col{4, 2};
  const values val{1, 2};
  csr_matrix mat;
  expect_silent([&] { coo_to_csr_format(1, 2, row, col, val, mat); });
  EXPECT_EQ(mat.m, 4);
  EXPECT_EQ(mat.type, matrix_real);
}

TEST(FromCoordinates, FindsTheLargestColumnWhereverItStands) {
  for (const std::size_t nnz : {1U, 2U, 3U, 15U, 16U, 17U, 31U, 32U, 50U})
    for (std::size_t largest = 0; largest < nnz; ++largest) {
      const integers row(nnz, 1);
      integers col(nnz);
      for (std::size_t k = 0; k < nnz; ++k) col[k] = static_cast<std::int32_t>(k % 5) + 1;
      col[largest] = 9;
      csr_matrix mat;
      expect_silent([&] {
        coo_to_csr_format(1, static_cast<std::int32_t>(nnz), row, col, {}, mat,
                          matrix_structure_only);
      });
      EXPECT_EQ(mat.m, 9) << "entry " << largest << " of " << nnz;
    }
}

TEST(FromCoordinates, LooksAtNoMoreThanTheGivenNumberOfEntries) {
  const integers row{1, 2, 9};
  const integers col{1, 2, 9};
  const values val{1, 2, 9};
  csr_matrix mat;
  expect_silent([&] { coo_to_csr_format(2, 2, row, col, val, mat); });
  EXPECT_EQ(mat.m, 2);
  EXPECT_EQ(entries_of(mat), (entry_rows{{{1, 1}}, {{2, 2}}}));
}

TEST(FromCoordinates, NeverReadsTheValuesOfAPattern) {
  const integers row{2, 1};
  const integers col{1, 2};
  csr_matrix mat;
  expect_silent([&] { coo_to_csr_format(2, 2, row, col, {}, mat, matrix_structure_only); });
  EXPECT_EQ(mat.type, matrix_structure_only);
  EXPECT_FALSE(mat.a.allocated());
  EXPECT_EQ(columns_of(mat), (column_rows{{2}, {1}}));
}

TEST(FromCoordinates, WithoutEntriesMakesNoColumnsUnlessTheyAreGiven) {
  csr_matrix mat;
  const auto seen = observe([&] { coo_to_csr_format(2, 0, {}, {}, {}, mat); });
  EXPECT_EQ(seen.output, tests::no_entries_warning);
  EXPECT_EQ(mat.m, 0);
  EXPECT_EQ(entries_of(mat), entry_rows(2));
  EXPECT_EQ(mat.ja.length(), 1);
  EXPECT_EQ(mat.a.length(), 1);

  EXPECT_EQ(observe([&] { coo_to_csr_format(0, 0, {}, {}, {}, mat, {}, 5); }).output,
            tests::no_entries_warning);
  EXPECT_EQ(mat.m, 5);
  EXPECT_EQ(entries_of(mat), entry_rows{});
}

TEST(FromCoordinates, WithFewerThanNoEntriesNamesTheNumberInTheWarning) {
  csr_matrix mat;
  const auto seen = observe([&] { coo_to_csr_format(1, -3, {}, {}, {}, mat); });
  EXPECT_EQ(seen.output,
            " try to allocating           -3  nonzeros in csr_matrix_allocate!\nset to 1\n");
  EXPECT_EQ(entries_of(mat), entry_rows(1));
}

TEST(FromCoordinates, StopsBeforeAnythingWhenTheEntriesDoNotFit) {
  csr_matrix mat = real_matrix(1, {{{1, 1}}});
  const auto seen = observe([&] {
    coo_to_csr_format(1, std::numeric_limits<std::int32_t>::max(), {}, {}, {}, mat, {}, 1);
  });
  EXPECT_EQ(seen.stop, "coo_to_csr_format: 2147483647 entries do not fit, at most 2147483646");
  EXPECT_EQ(entries_of(mat), (entry_rows{{{1, 1}}}));
}

TEST(FromCoordinates, StopsAtEveryShortage) {
  const integers row{2, 1};
  const integers col{1, 2};
  const values val{1, 2};
  const auto stops = tests::refuse_each_request(
      [] { return csr_matrix{}; },
      [&](csr_matrix& mat) { coo_to_csr_format(2, 2, row, col, val, mat); },
      [](csr_matrix& mat) { tests::expect_releasable(mat); });
  EXPECT_EQ(stops, (std::vector<std::string>{"allocation error in csr_matrix_initial",
                                             "allocation error in csr_matrix_allocate",
                                             "allocation error in csr_matrix_allocate"}));
}

RC_GTEST_PROP(CoordinatesProperty, ThereAndBackGivesTheSameRowsInTheSameOrder, ()) {
  const auto n = *tests::any_size();
  const auto m = *tests::any_size();
  const auto rows = *tests::any_rows(n, m);
  const csr_matrix mat = real_matrix(m, rows, *rc::gen::inRange(0, 4));
  lists out;
  csr_matrix back;
  csr_matrix bare;
  observe([&] {
    csr_matrix_to_coo(mat, out.nnz, out.row, out.col, out.val);
    coo_to_csr_format(n, out.nnz, out.row, out.col, out.val, back, mat.type, m);
    coo_to_csr_format(n, out.nnz, out.row, out.col, {}, bare, matrix_structure_only, m);
  });
  RC_ASSERT(entries_of(back) == rows);
  RC_ASSERT(columns_of(bare) == columns_of(rows));
  RC_ASSERT(back.n == n);
  RC_ASSERT(back.m == m);
  RC_ASSERT(back.ja.length() == std::max(out.nnz, 1));
}

entry_rows dealt_out(std::int32_t n, const integers& row, const integers& col, const values& val) {
  entry_rows rows(static_cast<std::size_t>(n));
  for (std::size_t k = 0; k < row.size(); ++k)
    rows[static_cast<std::size_t>(row[k] - 1)].push_back({col[k], val[k]});
  return rows;
}

void expect_dealt_out(std::int32_t n, const integers& row) {
  integers col;
  values val;
  for (std::size_t k = 0; k < row.size(); ++k) {
    col.push_back(static_cast<std::int32_t>(k % 97) + 1);
    val.push_back(static_cast<double>(k));
  }
  csr_matrix mat;
  csr_matrix bare;
  const auto nnz = static_cast<std::int32_t>(row.size());
  expect_silent([&] { coo_to_csr_format(n, nnz, row, col, val, mat); });
  expect_silent([&] { coo_to_csr_format(n, nnz, row, col, {}, bare, matrix_structure_only); });
  const entry_rows expected = dealt_out(n, row, col, val);
  EXPECT_EQ(entries_of(mat), expected);
  EXPECT_EQ(columns_of(bare), columns_of(expected));
  EXPECT_EQ(mat.a.length(), nnz);
}

// Lists in row order are copied, and are looked at some entries at a time to find out: rows 3, 6, 9
// and so on with 3 entries each, one of which changes places with another row's.
TEST(FromCoordinates, FindsTheOneEntryThatIsOutOfRowOrder) {
  integers row;
  for (std::int32_t k = 0; k < 2200; ++k) row.push_back(k / 3 * 3 + 3);
  expect_dealt_out(2300, row);
  for (std::size_t k = 3; k < row.size(); k += k % 1024 < 8 || k % 1024 > 1016 ? 1U : 211U) {
    integers one_back = row;
    std::swap(one_back[k], one_back[k - 3]);
    expect_dealt_out(2300, one_back);
  }
}

// Row starts are looked through some at a time too, for rows without entries.
TEST(FromCoordinates, FindsTheRowsWithoutEntries) {
  for (std::int32_t empty = 1; empty <= 2100; empty += empty % 1024 < 4 ? 1 : 97) {
    integers row;
    for (std::int32_t i = 1; i <= 2100; ++i)
      if (i != empty) row.push_back(i);
    expect_dealt_out(2100, row);
    expect_dealt_out(2100 + empty, row);
  }
}

// Larger than the cache: rows far apart, and rows near those of the entries before.
TEST(FromCoordinates, DealsLongListsOut) {
  constexpr std::int32_t n = 20011;
  integers scattered;
  integers near;
  std::int64_t walk = 1;
  for (std::int32_t k = 0; k < 40 * n; ++k) {
    walk = walk * 48271 % 2147483647;
    scattered.push_back(static_cast<std::int32_t>(walk % n) + 1);
    near.push_back((k / 40 + k % 40 * 500) % n + 1);
  }
  expect_dealt_out(n, scattered);
  expect_dealt_out(n, near);
}

// So large that they are copied past the cache: lists in row order, some rows without entries, and
// lists whose last entry alone is out of order.
TEST(FromCoordinates, CopiesListsLargerThanTheCache) {
  constexpr std::int32_t nnz = (1 << 21) + 61;
  constexpr std::int32_t n = nnz / 50 + 1;
  integers row;
  row.reserve(nnz);
  for (std::int32_t k = 0; k < nnz; ++k) row.push_back(k / 150 * 3 + (k % 150 < 31 ? 1 : 2));
  expect_dealt_out(n, row);
  row.back() = 1;
  expect_dealt_out(n, row);
}

// The lists dealt out one by one to the rows they name.
RC_GTEST_PROP(CoordinatesProperty, DealsTheListsOutToTheRows, ()) {
  const auto n = *rc::gen::inRange<std::int32_t>(1, 9);
  const auto nnz = *rc::gen::inRange<std::int32_t>(1, 30);
  const auto count = static_cast<std::size_t>(nnz);
  const auto row = *rc::gen::container<integers>(count, rc::gen::inRange<std::int32_t>(1, n + 1));
  const auto col = *rc::gen::container<integers>(count, rc::gen::inRange<std::int32_t>(1, 9));
  const auto val = *tests::any_vector(nnz);
  const entry_rows expected = dealt_out(n, row, col, val);
  csr_matrix mat;
  expect_silent([&] { coo_to_csr_format(n, nnz, row, col, val, mat); });
  RC_ASSERT(entries_of(mat) == expected);
  RC_ASSERT(mat.m == *std::max_element(col.begin(), col.end()));
  RC_ASSERT(mat.ja.length() == nnz);
}

}  // namespace
