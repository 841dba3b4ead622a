// SPDX-License-Identifier: MIT
#include "../support/dense.hpp"
#include "../support/generators.hpp"
#include "../support/messages.hpp"
#include "../support/observe.hpp"
#include "../support/refusals.hpp"

#include <csr_matrix_mod/convert.hpp>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <bit>
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

// The storage request for the columns of both operands.
constexpr int room_for_both = 2;

using sum_routine = void (*)(const csr_matrix&, const csr_matrix&, csr_matrix&);

TEST(Sum, HoldsTheColumnsOfTheFirstOperandAndThenThoseOnlyTheSecondHas) {
  // [ 1  .  2  . ]   [ .  5  6  7 ]   [ 1  5  8  7 ]
  // [ .  .  .  . ] + [ 8  .  .  . ] = [ 8  .  .  . ]
  // [ .  3  .  . ]   [ .  .  .  . ]   [ .  3  .  . ]
  const csr_matrix mat1 = real_matrix(4, {{{3, 2}, {1, 1}}, {}, {{2, 3}}});
  const csr_matrix mat2 = real_matrix(4, {{{4, 7}, {3, 6}, {2, 5}}, {{1, 8}}, {}});
  csr_matrix mat3;
  expect_silent([&] { csr_matrix_sum(mat1, mat2, mat3); });
  EXPECT_EQ(mat3.n, 3);
  EXPECT_EQ(mat3.m, 4);
  EXPECT_EQ(entries_of(mat3), (entry_rows{{{3, 8}, {1, 1}, {4, 7}, {2, 5}}, {{1, 8}}, {{2, 3}}}));
  EXPECT_EQ(mat3.ja.length(), 6);
  EXPECT_EQ(mat3.a.length(), 6);
}

TEST(Sum, OfAMatrixAndItselfKeepsThePatternAndDoublesEveryValue) {
  const csr_matrix mat = real_matrix(3, {{{3, 0.1}, {1, -4}}, {}, {{2, 0}}}, 2);
  csr_matrix twice;
  expect_silent([&] { csr_matrix_sum(mat, mat, twice); });
  EXPECT_EQ(entries_of(twice), (entry_rows{{{3, 0.2}, {1, -8}}, {}, {{2, 0}}}));
  EXPECT_EQ(twice.ja.length(), 3);
}

TEST(Sum, StoresARepeatedColumnOnceWithItsValuesAddedInStoredOrder) {
  // Another order would give 2 or 1: 1e16 + 1 is 1e16.
  const csr_matrix mat1 = real_matrix(2, {{{2, 1e16}, {1, 5}, {2, 1}}});
  const csr_matrix mat2 = real_matrix(2, {{{2, -1e16}, {2, 1}}});
  csr_matrix mat3;
  expect_silent([&] { csr_matrix_sum(mat1, mat2, mat3); });
  EXPECT_EQ(entries_of(mat3), (entry_rows{{{2, 1}, {1, 5}}}));
  EXPECT_EQ(mat3.ja.length(), 2);
}

TEST(Sum, KeepsEntriesThatCancelAndTheSignOfAZeroThatMeetsNothing) {
  const csr_matrix mat1 = real_matrix(2, {{{1, 3}, {2, -0.0}}});
  const csr_matrix mat2 = real_matrix(2, {{{1, -3}}});
  csr_matrix mat3;
  expect_silent([&] { csr_matrix_sum(mat1, mat2, mat3); });
  EXPECT_EQ(entries_of(mat3), (entry_rows{{{1, 0.0}, {2, -0.0}}}));
}

TEST(Sum, IsAPatternWhenEitherOperandIs) {
  const csr_matrix real = real_matrix(2, {{{2, 5}}, {{1, 6}}});
  const csr_matrix bare = pattern(2, {{1, 2}, {}});
  for (const sum_routine sum : {csr_matrix_sum, csr_matrix_sum_nodiag}) {
    csr_matrix mat3;
    expect_silent([&] { sum(real, bare, mat3); });
    EXPECT_EQ(mat3.type, matrix_structure_only);
    EXPECT_FALSE(mat3.a.allocated());
    csr_matrix other;
    expect_silent([&] { sum(bare, real, other); });
    EXPECT_EQ(other.type, matrix_structure_only);
    EXPECT_FALSE(other.a.allocated());
    csr_matrix both;
    expect_silent([&] { sum(bare, bare, both); });
    EXPECT_EQ(both.type, matrix_structure_only);
  }
  csr_matrix mat3;
  expect_silent([&] { csr_matrix_sum(real, bare, mat3); });
  EXPECT_EQ(columns_of(mat3), (column_rows{{2, 1}, {1}}));
}

TEST(SumNodiag, SkipsTheDiagonalAndGivesEveryEntryTheValueOne) {
  // [ 1  2  . ]   [ 9  .  -2 ]   [ .  1  1 ]
  // [ .  .  . ] + [ .  7   . ] = [ .  .  . ]
  // [ 4  0  . ]   [ 4  .   . ]   [ 1  1  . ]
  const csr_matrix mat1 = real_matrix(3, {{{1, 1}, {2, 2}}, {}, {{2, 0}, {1, 4}, {2, 8}}});
  const csr_matrix mat2 = real_matrix(3, {{{3, -2}, {1, 9}}, {{2, 7}}, {{1, 4}}});
  csr_matrix mat3;
  expect_silent([&] { csr_matrix_sum_nodiag(mat1, mat2, mat3); });
  EXPECT_EQ(entries_of(mat3), (entry_rows{{{2, 1}, {3, 1}}, {}, {{2, 1}, {1, 1}}}));
  EXPECT_EQ(mat3.ja.length(), 4);
}

TEST(SumNodiag, OfDiagonalMatricesHasNoEntries) {
  const csr_matrix mat1 = real_matrix(2, {{{1, 1}}, {{2, 2}}});
  const csr_matrix mat2 = real_matrix(2, {{}, {{2, 2}, {2, 3}}});
  csr_matrix mat3;
  const auto seen = observe([&] { csr_matrix_sum_nodiag(mat1, mat2, mat3); });
  EXPECT_EQ(seen.output, tests::no_entries_warning);
  EXPECT_EQ(seen.stop, std::nullopt);
  EXPECT_EQ(entries_of(mat3), entry_rows(2));
  EXPECT_EQ(mat3.ja.length(), 1);
  EXPECT_EQ(mat3.a.length(), 1);
}

TEST(Sum, OfMatricesWithoutRowsHasNoRowsAndOneRowStart) {
  const csr_matrix mat = real_matrix(4, {});
  csr_matrix mat3;
  EXPECT_EQ(observe([&] { csr_matrix_sum(mat, mat, mat3); }).output, tests::no_entries_warning);
  EXPECT_EQ(mat3.n, 0);
  EXPECT_EQ(mat3.m, 4);
  EXPECT_EQ(mat3.ia.length(), 1);
  EXPECT_EQ(mat3.ia(1), 1);
}

TEST(Sum, OfRecordsThatHaveNothingYetReadsNothing) {
  csr_matrix mat;
  mat.m = 4;
  csr_matrix mat3;
  EXPECT_EQ(observe([&] { csr_matrix_sum(mat, mat, mat3); }).output, tests::no_entries_warning);
  EXPECT_EQ(mat3.n, 0);
  EXPECT_EQ(mat3.m, 4);
}

TEST(Sum, OfMatricesWithoutColumnsHasEmptyRows) {
  const csr_matrix mat = real_matrix(0, {{}, {}});
  csr_matrix mat3;
  EXPECT_EQ(observe([&] { csr_matrix_sum(mat, mat, mat3); }).output, tests::no_entries_warning);
  EXPECT_EQ(entries_of(mat3), entry_rows(2));
}

TEST(Sum, StopsWhenTheShapesDifferWithTheResultUntouched) {
  const csr_matrix tall = real_matrix(2, {{{1, 1}}, {}, {}});
  const csr_matrix square = real_matrix(2, {{{1, 1}}, {}});
  const csr_matrix wide = real_matrix(3, {{{1, 1}}, {}});
  for (const sum_routine sum : {csr_matrix_sum, csr_matrix_sum_nodiag}) {
    csr_matrix mat3 = real_matrix(1, {{{1, 5}}});
    const auto rows = observe([&] { sum(tall, square, mat3); });
    EXPECT_EQ(rows.output, " n =            3           2  m =            2           2\n");
    EXPECT_EQ(rows.stop, "try to sum two matrix of different row/column size");
    const auto columns = observe([&] { sum(square, wide, mat3); });
    EXPECT_EQ(columns.output, " n =            2           2  m =            2           3\n");
    EXPECT_EQ(columns.stop, "try to sum two matrix of different row/column size");
    EXPECT_EQ(entries_of(mat3), (entry_rows{{{1, 5}}}));
  }
}

TEST(Sum, StopsAtEveryShortageWithTheOperandsUntouched) {
  struct arguments {
    csr_matrix mat1, mat2, mat3;
  };
  const entry_rows rows1{{{2, 1}, {2, 4}}, {{1, 2}}};
  const entry_rows rows2{{{1, 3}}, {}};
  const auto stops = [&](sum_routine sum, int always) {
    return tests::stops_by_request(
        [&] {
          return arguments{real_matrix(2, rows1), real_matrix(2, rows2), {}};
        },
        [&](arguments& given) { sum(given.mat1, given.mat2, given.mat3); },
        [&](arguments& given) {
          EXPECT_EQ(entries_of(given.mat1), rows1);
          EXPECT_EQ(entries_of(given.mat2), rows2);
          tests::expect_releasable(given.mat3);
        },
        always);
  };
  const std::string row_starts = "allocation error in csr_matrix_initial";
  const std::string entries = "allocation error in csr_matrix_allocate";
  const std::pair<sum_routine, std::string> both[] = {
      {csr_matrix_sum, "csr_matrix_sum"}, {csr_matrix_sum_nodiag, "csr_matrix_sum_nodiag"}};
  for (const auto& [sum, routine] : both) {
    const std::string marker = "allocation error in " + routine;
    // Room for the entries of both operands, which is cut in the end; or, where it is refused, for
    // the entries of the sum.
    EXPECT_EQ(stops(sum, tests::refuse_allocation::none),
              (std::vector<std::string>{row_starts, marker, tests::no_stop, tests::no_stop, entries,
                                        entries}));
    EXPECT_EQ(stops(sum, room_for_both),
              (std::vector<std::string>{row_starts, marker, tests::no_stop, entries, entries}));
  }
}

#ifdef NDEBUG  // two thousand million entries take their time otherwise
// Every other row of both operands is the same stretch of storage, so that little of it is needed.
TEST(Sum, StopsWhenItsEntriesWouldNotFit) {
  constexpr std::int32_t length = 1 << 20;
  constexpr std::int32_t n = 1 << 11;
  const auto all_but_empty = [&](std::int32_t first_column) {
    csr_matrix mat;
    mat.n = n;
    mat.m = 2 * length;
    mat.type = matrix_structure_only;
    EXPECT_TRUE(mat.ia.allocate(n + 1));
    EXPECT_TRUE(mat.ja.allocate(length));
    for (std::int32_t i = 1; i <= n + 1; ++i) mat.ia(i) = i % 2 == 1 ? 1 : length + 1;
    for (std::int32_t k = 1; k <= length; ++k) mat.ja(k) = first_column + k - 1;
    return mat;
  };
  const csr_matrix mat1 = all_but_empty(1);
  const csr_matrix mat2 = all_but_empty(length + 1);
  csr_matrix mat3;
  EXPECT_EQ(observe([&] { csr_matrix_sum(mat1, mat2, mat3); }).stop,
            "csr_matrix_sum: 2147483648 entries do not fit, at most 2147483646");
  EXPECT_FALSE(mat3.ja.allocated());
}
#endif

// Rows of every length below 40, so that vector registers are filled once, often and in part; with
// values whose sums depend on the order of the additions.
entry_rows ascending_rows() {
  entry_rows rows;
  for (std::int32_t length = 0; length < 40; ++length) {
    auto& row = rows.emplace_back();
    for (std::int32_t j = 1; j <= length; ++j) row.push_back({2 * j, (j % 3 - 1) * 1e15 + 0.1 * j});
  }
  return rows;
}

TEST(Sum, AddsRowsWithTheSameColumnsAndRowsThatDifferInOnePlace) {
  const entry_rows rows = ascending_rows();
  for (std::size_t place = 0; place < 40; ++place) {
    entry_rows others = rows;
    entry_rows repeated = rows;
    for (auto& row : others)
      if (place < row.size()) row[place] = {row[place].column + 1, -0.0};
    for (auto& row : repeated)
      if (0 < place && place < row.size()) row[place].column = row[place - 1].column;
    for (const auto& [one, other] :
         {std::pair(rows, others), std::pair(others, rows), std::pair(repeated, repeated)}) {
      const csr_matrix mat1 = real_matrix(80, one);
      const csr_matrix mat2 = real_matrix(80, other);
      csr_matrix mat3;
      expect_silent([&] { csr_matrix_sum(mat1, mat2, mat3); });
      EXPECT_EQ(entries_of(mat3), tests::dense::sum(one, other, 80));
      EXPECT_EQ(mat3.a.length(), csr_matrix_num_nz(mat3));
    }
  }
}

// Rows are compared some at a time: 50 with the same columns, but for one that has an entry more,
// another column, another order, a column twice, or one that stands in the next row instead.
TEST(Sum, FindsTheOneRowOfManyThatDiffers) {
  entry_rows rows;
  for (std::int32_t i = 0; i < 50; ++i) {
    auto& row = rows.emplace_back();
    for (std::int32_t j = 1; j <= i * 7 % 5; ++j) row.push_back({i % 3 + 2 * j, 1e15 - 0.1 * i});
  }
  const csr_matrix mat1 = real_matrix(20, rows);
  for (std::size_t i = 0; i < rows.size(); ++i)
    for (int change = 0; change < 5; ++change) {
      entry_rows others = rows;
      auto& row = others[i];
      if (change == 0) row.push_back({20, 0.5});
      if (change > 0 && row.size() < 2) continue;
      if (change == 1) ++row.back().column;
      if (change == 2) std::reverse(row.begin(), row.end());
      if (change == 3) row.back().column = row.front().column;
      if (change == 4) {
        if (i + 1 == rows.size()) continue;
        others[i + 1].insert(others[i + 1].begin(), row.back());
        row.pop_back();
      }
      const csr_matrix mat2 = real_matrix(20, others);
      csr_matrix mat3;
      expect_silent([&] { csr_matrix_sum(mat1, mat2, mat3); });
      ASSERT_EQ(entries_of(mat3), tests::dense::sum(rows, others, 20)) << i << ", " << change;
      expect_silent([&] { csr_matrix_sum(mat2, mat2, mat3); });
      ASSERT_EQ(entries_of(mat3), tests::dense::sum(others, others, 20)) << i << ", " << change;
    }
}

// So large that rows are added past the cache; some of them differ, so that the others begin and
// end anywhere in a line, and some are longer than what is added at a time.
TEST(Sum, AddsMatricesLargerThanTheCache) {
  constexpr std::int32_t m = 700;
  entry_rows rows;
  for (std::int32_t entries = 0; entries < 1 << 21;) {
    const auto i = static_cast<std::int32_t>(rows.size());
    const std::int32_t length = i % 1000 < 2 ? m : 20 + i % 19;
    auto& row = rows.emplace_back();
    for (std::int32_t j = 1; j <= length; ++j) row.push_back({j, 1e15 - 0.1 * (i % 97) * j});
    entries += length;
  }
  entry_rows others = rows;
  entry_rows expected = rows;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    for (std::size_t k = 0; k < rows[i].size(); ++k) {
      others[i][k].value = 0.3 * rows[i][k].value;
      expected[i][k].value = rows[i][k].value + others[i][k].value;
    }
    if (i % 61 != 0) continue;
    ++others[i].back().column;
    expected[i].back() = rows[i].back();
    expected[i].push_back(others[i].back());
  }
  const csr_matrix mat1 = real_matrix(m + 1, rows);
  const csr_matrix mat2 = real_matrix(m + 1, others);
  csr_matrix mat3;
  expect_silent([&] { csr_matrix_sum(mat1, mat2, mat3); });
  EXPECT_TRUE(entries_of(mat3) == expected);
  expect_silent([&] { csr_matrix_sum(mat1, pattern(m + 1, columns_of(others)), mat3); });
  EXPECT_TRUE(columns_of(mat3) == columns_of(expected));
}

// The same columns in an order that does not ascend, in rows as long as short ones and longer; none
// is repeated, or one of them anywhere else in the row. Another order would give other values.
TEST(Sum, AddsEqualRowsThatDoNotAscend) {
  constexpr std::int32_t m = 60;
  constexpr std::int32_t odd = 20;
  for (std::int32_t length = 2; length <= 18; ++length)
    for (std::int32_t first = 0; first < length; ++first)
      for (std::int32_t again = first; again < length; again += 1 + length / 9) {
        entry_rows rows;
        for (std::int32_t i = 0; i < 40; ++i) {
          auto& row = rows.emplace_back();
          for (std::int32_t k = 0; k < length; ++k)
            row.push_back({1 + (i + (k * 7 + 3) % 19 * 3) % m, (k % 3 - 1) * 1e15 + 0.1 * k});
        }
        rows[odd][static_cast<std::size_t>(again)].column =
            rows[odd][static_cast<std::size_t>(first)].column;
        const csr_matrix mat = real_matrix(m, rows);
        csr_matrix twice;
        observe([&] { csr_matrix_sum(mat, mat, twice); });
        ASSERT_EQ(entries_of(twice), tests::dense::sum(rows, rows, m))
            << length << ", " << first << ", " << again;
      }
}

// Every pair of lengths around that of short rows, with columns of which many, few or none are
// those of the other row, up to the last row and the last slot there is, with room for more entries
// than there are and without; values as above.
TEST(Sum, AddsShortRowsThatShareSomeColumns) {
  constexpr std::int32_t m = 200;
  for (const std::int32_t step : {1, 2, 3, 7}) {
    entry_rows rows1;
    entry_rows rows2;
    for (std::int32_t length = 0; length < 19; ++length)
      for (std::int32_t other = 0; other < 19; ++other) {
        auto& row1 = rows1.emplace_back();
        auto& row2 = rows2.emplace_back();
        for (std::int32_t k = 0; k < length; ++k)
          row1.push_back({1 + 3 * k + k % 3, (k % 3 - 1) * 1e15 + 0.1 * k});
        for (std::int32_t k = 0; k < other; ++k)
          row2.push_back({1 + step * k + length % 2, k % 5 == 0 ? -0.0 : 1e15 - 0.3 * k});
      }
    for (; rows1.size() > 8; rows1.resize(rows1.size() - 8)) {
      rows2.resize(rows1.size());
      const csr_matrix mat1 = real_matrix(m, rows1);
      const csr_matrix mat2 = real_matrix(m, rows2);
      const entry_rows expected = tests::dense::sum(rows1, rows2, m);
      csr_matrix mat3;
      observe([&] { csr_matrix_sum(mat1, mat2, mat3); });
      EXPECT_EQ(entries_of(mat3), expected);
      csr_matrix exact;
      const tests::refuse_allocation refuse(room_for_both);
      observe([&] { csr_matrix_sum(mat1, mat2, exact); });
      EXPECT_EQ(entries_of(exact), expected);
      csr_matrix bare;
      observe([&] { csr_matrix_sum(pattern(m, columns_of(rows1)), mat2, bare); });
      EXPECT_EQ(columns_of(bare), columns_of(expected));
    }
  }
}

// Rows of a lower and of an upper triangle, which share the diagonal or nothing, either way around;
// in some matrices one row in twenty does not ascend, or ends in the columns of the other.
TEST(Sum, AddsRowsThatLieOneBehindTheOther) {
  constexpr std::int32_t n = 400;
  for (const bool diagonal : {true, false})
    for (const std::int32_t broken : {0, 1, 2}) {
      entry_rows lower(n);
      entry_rows upper(n);
      for (std::int32_t i = 1; i <= n; ++i) {
        auto& below = lower[static_cast<std::size_t>(i - 1)];
        auto& above = upper[static_cast<std::size_t>(i - 1)];
        for (std::int32_t k = i * 5 % 7; k > 0; --k)
          if (i - 3 * k >= 1) below.push_back({i - 3 * k, 1e15 - 0.1 * k});
        if (diagonal) below.push_back({i, 0.1 * i});
        if (diagonal) above.push_back({i, 1e15 + i});
        for (std::int32_t k = 1; k <= i * 3 % 8; ++k)
          if (i + 2 * k <= n) above.push_back({i + 2 * k, -0.0});
        if (i % 20 != 7) continue;
        if (broken == 1) std::reverse(below.begin(), below.end());
        if (broken == 2 && i < n) below.push_back({n, 0.5});
      }
      const csr_matrix mat1 = real_matrix(n, lower);
      const csr_matrix mat2 = real_matrix(n, upper);
      csr_matrix mat3;
      expect_silent([&] { csr_matrix_sum(mat1, mat2, mat3); });
      EXPECT_EQ(entries_of(mat3), tests::dense::sum(lower, upper, n)) << diagonal << broken;
      expect_silent([&] { csr_matrix_sum(mat2, mat1, mat3); });
      EXPECT_EQ(entries_of(mat3), tests::dense::sum(upper, lower, n)) << diagonal << broken;
      expect_silent([&] { csr_matrix_sum(mat2, pattern(n, columns_of(lower)), mat3); });
      EXPECT_EQ(columns_of(mat3), columns_of(tests::dense::sum(upper, lower, n)));
    }
}

// The last row is one entry of the sum, so that there is no slot to spare behind the first.
TEST(Sum, AddsAShortRowThatFillsTheRoomThereIs) {
  entry_rows rows1(2);
  entry_rows rows2(2);
  for (std::int32_t k = 1; k <= 13; ++k) {
    rows1[0].push_back({2 * k, 1.0 * k});
    rows2[0].push_back({2 * k + 1, -1.0 * k});
    rows1[1].push_back({1, 0.5});
    rows2[1].push_back({1, 0.25});
  }
  const csr_matrix mat1 = real_matrix(30, rows1);
  const csr_matrix mat2 = real_matrix(30, rows2);
  csr_matrix mat3;
  const tests::refuse_allocation refuse(room_for_both);
  expect_silent([&] { csr_matrix_sum(mat1, mat2, mat3); });
  EXPECT_EQ(entries_of(mat3), tests::dense::sum(rows1, rows2, 30));
  EXPECT_EQ(mat3.a.length(), 27);
}

// A value that meets nothing keeps its bits, those of a NaN included.
TEST(Sum, KeepsTheBitsOfWhatIsNotAddedInShortRows) {
  const auto nan = std::bit_cast<double>(std::uint64_t{0x7ff0000000000123});
  entry_rows rows1(20);
  entry_rows rows2(20);
  for (auto& row : rows1) row = {{2, 1.5}, {4, nan}};
  for (auto& row : rows2) row = {{1, nan}, {2, 2.5}, {5, -nan}};
  const csr_matrix mat1 = real_matrix(5, rows1);
  const csr_matrix mat2 = real_matrix(5, rows2);
  csr_matrix mat3;
  expect_silent([&] { csr_matrix_sum(mat1, mat2, mat3); });
  ASSERT_EQ(csr_matrix_num_nz(mat3), 80);
  const auto bits = [&](std::int32_t k) { return std::bit_cast<std::uint64_t>(mat3.a(k)); };
  for (std::int32_t k = 1; k <= 80; k += 4) {
    EXPECT_EQ(mat3.a(k), 4.0);
    EXPECT_EQ(bits(k + 1), std::uint64_t{0x7ff0000000000123});
    EXPECT_EQ(bits(k + 2), std::uint64_t{0x7ff0000000000123});
    EXPECT_EQ(bits(k + 3), std::uint64_t{0xfff0000000000123});
  }
}

struct operands {
  std::int32_t n, m;
  entry_rows rows1, rows2;
  int spare;
};

operands any_operands() {
  const auto n = *tests::any_size();
  const auto m = *tests::any_size();
  return {n, m, *tests::any_rows(n, m), *tests::any_rows(n, m), *rc::gen::inRange(0, 4)};
}

void expect_sum(sum_routine sum, const operands& given, const entry_rows& expected) {
  const csr_matrix mat1 = real_matrix(given.m, given.rows1, given.spare);
  const csr_matrix mat2 = real_matrix(given.m, given.rows2);
  const csr_matrix bare1 = pattern(given.m, columns_of(given.rows1));
  const csr_matrix bare2 = pattern(given.m, columns_of(given.rows2), given.spare);
  csr_matrix mat3;
  csr_matrix bare3;
  observe([&] { sum(mat1, mat2, mat3); });
  observe([&] { sum(bare1, bare2, bare3); });
  RC_ASSERT(entries_of(mat3) == expected);
  RC_ASSERT(columns_of(bare3) == columns_of(expected));
  RC_ASSERT(mat3.ja.length() == std::max(csr_matrix_num_nz(mat3), 1));
  RC_ASSERT(mat3.a.length() == mat3.ja.length());
  RC_ASSERT(bare3.ja.length() == mat3.ja.length());
  RC_ASSERT(entries_of(mat1) == given.rows1);
  RC_ASSERT(entries_of(mat2) == given.rows2);
}

void expect_same_in_two_passes(sum_routine sum, const csr_matrix& mat1, const csr_matrix& mat2) {
  csr_matrix one;
  csr_matrix two;
  const auto seen = observe([&] { sum(mat1, mat2, one); });
  tests::observed refused;
  {
    const tests::refuse_allocation refuse(room_for_both);
    refused = observe([&] { sum(mat1, mat2, two); });
  }
  RC_PRE(csr_matrix_num_nz(one) > 0);  // else there is one way only
  RC_ASSERT(refused.stop == std::nullopt && refused.output == seen.output);
  RC_ASSERT(entries_of(two) == entries_of(one));
  RC_ASSERT(two.ja.length() == one.ja.length() && two.a.length() == one.a.length());
}

RC_GTEST_PROP(SumProperty, IsTheSameInOnePassAndInTwo, ()) {
  const operands given = any_operands();
  const csr_matrix mat1 = real_matrix(given.m, given.rows1, given.spare);
  const csr_matrix mat2 = real_matrix(given.m, *rc::gen::element(given.rows1, given.rows2));
  expect_same_in_two_passes(*rc::gen::element<sum_routine>(csr_matrix_sum, csr_matrix_sum_nodiag),
                            mat1, mat2);
}

RC_GTEST_PROP(SumProperty, IsTheAdditionPlaceByPlace, ()) {
  const operands given = any_operands();
  expect_sum(csr_matrix_sum, given, tests::dense::sum(given.rows1, given.rows2, given.m));
}

RC_GTEST_PROP(SumProperty, WithoutDiagonalIsTheUnionOfThePlaces, ()) {
  const operands given = any_operands();
  expect_sum(csr_matrix_sum_nodiag, given,
             tests::dense::union_nodiag(given.rows1, given.rows2, given.m));
}

}  // namespace
