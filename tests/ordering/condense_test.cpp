// SPDX-License-Identifier: MIT
#include "../support/generators.hpp"
#include "../support/observe.hpp"
#include "../support/refusals.hpp"

#include <csr_matrix_mod/ordering.hpp>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <limits>
#include <map>
#include <set>
#include <unordered_map>

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

TEST(Condense, MergesColumnsWithTheSameRowsAndAddsTheirWeights) {
  // [ x  x  x  . ]   columns 1 and 2 become one; column 4 has one entry and goes. Row 1 parts
  // [ x  x  .  . ]   columns 1 to 3 from 4, row 2 parts 1 and 2 from 3: the new columns are
  // [ .  .  x  x ]   1 for 3, and 2 for 1 and 2.
  csr_matrix mat = pattern(4, {{1, 2, 3}, {1, 2}, {3, 4}});
  integers weight{10, 20, 5, 40, 77};
  expect_silent([&] { csr_matrix_condense(mat, weight); });
  EXPECT_EQ(mat.n, 3);
  EXPECT_EQ(mat.m, 2);
  EXPECT_EQ(mat.type, matrix_structure_only);
  EXPECT_EQ(columns_of(mat), (column_rows{{2, 1}, {2}, {1}}));
  EXPECT_EQ(weight, (integers{5, 30, 5, 40, 77}));
}

TEST(Condense, KeepsASpareSlotWithWhatStoodThere) {
  csr_matrix mat = pattern(4, {{1, 2, 3}, {1, 2}, {3, 4}});
  integers weight{1, 1, 1, 1};
  expect_silent([&] { csr_matrix_condense(mat, weight); });
  EXPECT_EQ(csr_matrix_num_nz(mat), 4);
  EXPECT_EQ(mat.ja.length(), 5);
  EXPECT_EQ(mat.ja(5), 2);
}

TEST(Condense, GrowsTheStorageByOneSlotWhenEveryEntryIsKept) {
  // [ x  . ]   row 1 parts column 1 from column 2, which stays in the older class
  // [ x  x ]
  // [ .  x ]
  csr_matrix mat = pattern(2, {{1}, {1, 2}, {2}});
  integers weight{3, 4};
  expect_silent([&] { csr_matrix_condense(mat, weight); });
  EXPECT_EQ(columns_of(mat), (column_rows{{2}, {2, 1}, {1}}));
  EXPECT_EQ(mat.ja.length(), 5);
  EXPECT_EQ(weight, (integers{4, 3}));
}

TEST(Condense, CutsSpareCapacityDownToOneSlot) {
  csr_matrix mat = pattern(1, {{1}, {}, {1}}, 9);
  integers weight{6};
  expect_silent([&] { csr_matrix_condense(mat, weight); });
  EXPECT_EQ(columns_of(mat), (column_rows{{1}, {}, {1}}));
  EXPECT_EQ(mat.ja.length(), 3);
  EXPECT_EQ(mat.ja(3), -77);
  EXPECT_EQ(weight, integers{6});
}

TEST(Condense, DropsColumnsWithFewerThanTwoEntriesAndTheirWeights) {
  // [ x  .  . ]
  // [ .  .  x ]
  csr_matrix mat = pattern(3, {{1}, {3}});
  integers weight{1, 2, 3};
  expect_silent([&] { csr_matrix_condense(mat, weight); });
  EXPECT_EQ(mat.m, 0);
  EXPECT_EQ(columns_of(mat), column_rows(2));
  EXPECT_EQ(weight, (integers{1, 2, 3}));
  EXPECT_EQ(mat.ja.length(), 1);
}

TEST(Condense, KeepsOneEntryForTwoColumnsOfAClassWhereTheFirstStood) {
  csr_matrix mat = pattern(3, {{3, 2, 1}, {1, 2, 3}, {2}});
  integers weight{1, 2, 4};
  expect_silent([&] { csr_matrix_condense(mat, weight); });
  EXPECT_EQ(columns_of(mat), (column_rows{{1, 2}, {1, 2}, {2}}));
  EXPECT_EQ(weight, (integers{5, 2, 4}));
}

TEST(Condense, AddsWeightsModuloTheRangeOfIntegers) {
  constexpr std::int32_t largest = std::numeric_limits<std::int32_t>::max();
  csr_matrix mat = pattern(2, {{1, 2}, {2, 1}});
  integers weight{largest, 2};
  expect_silent([&] { csr_matrix_condense(mat, weight); });
  EXPECT_EQ(weight, (integers{std::numeric_limits<std::int32_t>::min() + 1, 2}));
}

TEST(Condense, OfAMatrixWithoutRowsHasNoColumns) {
  csr_matrix mat = pattern(3, {});
  integers weight{1, 2, 3};
  expect_silent([&] { csr_matrix_condense(mat, weight); });
  EXPECT_EQ(mat.m, 0);
  EXPECT_EQ(mat.ia(1), 1);
  EXPECT_EQ(weight, (integers{1, 2, 3}));
}

TEST(Condense, CountsARepeatedColumnAsOftenAsItStands) {
  // Column 1 stands in one row only, but twice: it is kept.
  csr_matrix mat = pattern(3, {{1, 1}, {2}});
  integers weight{10, 20, 30};
  expect_silent([&] { csr_matrix_condense(mat, weight); });
  EXPECT_EQ(mat.m, 1);
  EXPECT_EQ(columns_of(mat), (column_rows{{1}, {}}));
  EXPECT_EQ(weight, (integers{10, 20, 30}));
}

TEST(Condense, DropsClassesThatARepeatedColumnHasLeftEmpty) {
  // Rows 1 and 4 make the class of column 1 look larger than it is, so rows 2 and 5 part column 1
  // from nothing: four classes come about for three columns.
  csr_matrix mat = pattern(3, {{1, 1}, {1}, {2}, {1, 1}, {1}});
  integers weight{10, 20, 30};
  expect_silent([&] { csr_matrix_condense(mat, weight); });
  EXPECT_EQ(mat.m, 1);
  EXPECT_EQ(columns_of(mat), (column_rows{{1}, {1}, {}, {1}, {1}}));
  EXPECT_EQ(weight, (integers{10, 20, 30}));
}

TEST(Condense, StopsAtAMatrixWithValues) {
  const entry_rows rows{{{1, 1}}, {{1, 2}}};
  csr_matrix mat = real_matrix(1, rows);
  integers weight{1};
  const auto seen = observe([&] { csr_matrix_condense(mat, weight); });
  EXPECT_EQ(seen.output, "");
  EXPECT_EQ(seen.stop, "try condensing matrix with values!");
  EXPECT_EQ(entries_of(mat), rows);
}

TEST(Condense, LooksAtTheValuesBeforeTheWeights) {
  csr_matrix mat = real_matrix(1, {{{1, 1}}});
  EXPECT_EQ(observe([&] { csr_matrix_condense(mat, {}); }).stop,
            "try condensing matrix with values!");
}

TEST(Condense, StopsAtTooFewWeights) {
  csr_matrix mat = pattern(3, {{1, 2}, {1, 2}});
  integers weight{1, 2};
  const auto seen = observe([&] { csr_matrix_condense(mat, weight); });
  EXPECT_EQ(seen.output, "");
  EXPECT_EQ(seen.stop, " size of col_wgt too small");
  EXPECT_EQ(columns_of(mat), (column_rows{{1, 2}, {1, 2}}));
}

TEST(Condense, WarnsOfAMatrixWithoutColumnsAndChangesNothing) {
  for (const std::int32_t m : {0, -2}) {
    csr_matrix mat = pattern(m, {}, 4);
    integers weight{5};
    const auto seen = observe([&] { csr_matrix_condense(mat, weight); });
    EXPECT_EQ(seen.output, "warning: try condensing a matrix of 0 columns!\n");
    EXPECT_EQ(seen.stop, std::nullopt);
    EXPECT_EQ(mat.m, m);
    EXPECT_EQ(mat.ja.length(), 4);
    EXPECT_EQ(weight, integers{5});
  }
}

TEST(Condense, StopsAtEveryShortageWithTheWeightsUntouched) {
  struct arguments {
    csr_matrix mat;
    integers weight;
  };
  const column_rows rows{{1, 2}, {2, 1, 3}};
  int refused = 0;
  const auto stops = tests::refuse_each_request(
      [&] {
        return arguments{pattern(3, rows), {1, 2, 3}};
      },
      [](arguments& given) { csr_matrix_condense(given.mat, given.weight); },
      [&](arguments& given) {
        EXPECT_EQ(given.weight, (integers{1, 2, 3}));
        if (refused++ < 6) {
          EXPECT_EQ(columns_of(given.mat), rows);
        }
        tests::expect_releasable(given.mat);
      });
  const std::string temporary = "allocation error in csr_matrix_condense";
  std::vector<std::string> expected(6, temporary);
  expected.emplace_back("allocation error in csr_matrix_allocate");
  EXPECT_EQ(stops, expected);
}

struct condensed {
  column_rows rows;
  integers weight;
  std::int32_t m;
};

// What is left when column j has become number[j], 0 for a column that is dropped.
condensed renumbered(const column_rows& rows, const integers& weight, const integers& number) {
  const auto at = [](const integers& list, std::int32_t j) {
    return list[static_cast<std::size_t>(j - 1)];
  };
  condensed result{
      {}, weight, number.empty() ? 0 : *std::max_element(number.begin(), number.end())};
  for (const auto& row : rows) {
    result.rows.emplace_back();
    auto& kept = result.rows.back();
    for (const std::int32_t j : row)
      if (at(number, j) != 0 && std::count(kept.begin(), kept.end(), at(number, j)) == 0)
        kept.push_back(at(number, j));
  }
  std::fill_n(result.weight.begin(), result.m, 0);
  for (std::size_t j = 0; j < number.size(); ++j)
    if (number[j] != 0) result.weight[static_cast<std::size_t>(number[j] - 1)] += weight[j];
  return result;
}

// The classes as sets of columns in order of creation: a row takes its columns out of each set that
// is not wholly in it, in the order in which it meets the sets.
integers numbers_by_sets(const column_rows& rows, std::int32_t m) {
  using columns = std::set<std::int32_t>;
  std::vector<columns> classes(1);
  for (std::int32_t j = 1; j <= m; ++j) classes[0].insert(j);
  for (const auto& row : rows) {
    const columns in_row(row.begin(), row.end());
    std::set<std::size_t> met;
    for (const std::int32_t j : row) {
      std::size_t cl = 0;
      while (classes[cl].count(j) == 0) ++cl;
      if (!met.insert(cl).second) continue;
      columns inside;
      columns outside;
      for (const std::int32_t member : classes[cl])
        (in_row.count(member) != 0 ? inside : outside).insert(member);
      if (outside.empty()) continue;
      classes[cl] = outside;
      met.insert(classes.size());
      classes.push_back(inside);
    }
  }
  integers number(static_cast<std::size_t>(m), 0);
  std::int32_t kept = 0;
  for (const columns& members : classes) {
    const std::int32_t j = *members.begin();
    const auto degree = std::count_if(rows.begin(), rows.end(), [j](const auto& row) {
      return std::count(row.begin(), row.end(), j) != 0;
    });
    if (degree < 2) continue;
    ++kept;
    for (const std::int32_t member : members) number[static_cast<std::size_t>(member - 1)] = kept;
  }
  return number;
}

// The classes counted with repeats, in maps that no index can leave.
integers numbers_by_counting(const column_rows& rows, std::int32_t m) {
  std::unordered_map<std::int32_t, std::int32_t> degree, cls, size, seen, home;
  std::map<std::int32_t, std::int32_t> class_degree;
  for (std::int32_t j = 1; j <= m; ++j) cls[j] = 1;
  size[1] = m;
  std::int32_t classes = 1;
  std::int32_t i = 0;
  for (const auto& row : rows) {
    ++i;
    for (const std::int32_t j : row) {
      ++degree[j];
      --size.at(cls.at(j));
    }
    for (const std::int32_t j : row) {
      const std::int32_t before = cls.at(j);
      if (seen[before] == i) {
        cls[j] = home.at(before);
        ++size.at(cls.at(j));
      } else {
        const std::int32_t after = size.at(before) <= 0 ? before : ++classes;
        seen[before] = seen[after] = i;
        home[before] = home[after] = after;
        cls[j] = after;
        size[after] = 1;
      }
    }
  }
  for (std::int32_t j = 1; j <= m; ++j) class_degree[cls.at(j)] = degree[j];
  std::map<std::int32_t, std::int32_t> new_number;
  std::int32_t kept = 0;
  for (const auto& [cl, entries] : class_degree) new_number[cl] = entries > 1 ? ++kept : 0;
  integers number;
  for (std::int32_t j = 1; j <= m; ++j) number.push_back(new_number.at(cls.at(j)));
  return number;
}

column_rows without_repeats(const column_rows& rows) {
  column_rows result;
  for (const auto& row : rows) {
    result.emplace_back();
    for (const std::int32_t j : row)
      if (std::count(result.back().begin(), result.back().end(), j) == 0)
        result.back().push_back(j);
  }
  return result;
}

integers any_weights(std::int32_t m) {
  return *rc::gen::container<integers>(static_cast<std::size_t>(m),
                                       rc::gen::inRange<std::int32_t>(-50, 50));
}

void expect_condensed(const column_rows& rows, const integers& weight, const condensed& expected) {
  const auto m = static_cast<std::int32_t>(weight.size());
  csr_matrix mat = pattern(m, rows, *rc::gen::inRange(0, 4));
  integers sums = weight;
  expect_silent([&] { csr_matrix_condense(mat, sums); });
  RC_ASSERT(mat.m == expected.m);
  RC_ASSERT(columns_of(mat) == expected.rows);
  RC_ASSERT(sums == expected.weight);
  RC_ASSERT(mat.ja.length() == csr_matrix_num_nz(mat) + 1);
}

RC_GTEST_PROP(CondenseProperty, NumbersTheClassesInOrderOfCreation, ()) {
  const auto m = *rc::gen::inRange<std::int32_t>(1, 13);
  const auto rows = without_repeats(columns_of(*tests::any_rows(*tests::any_size(), m)));
  const integers weight = any_weights(m);
  expect_condensed(rows, weight, renumbered(rows, weight, numbers_by_sets(rows, m)));
}

RC_GTEST_PROP(CondenseProperty, MapsSetsOfRowsToColumns, ()) {
  const auto m = *rc::gen::inRange<std::int32_t>(1, 13);
  const auto rows = without_repeats(columns_of(*tests::any_rows(*tests::any_size(), m)));
  const integers weight = any_weights(m);
  using row_set = std::set<std::int32_t>;
  const auto row_sets = [](const column_rows& of, std::int32_t columns) {
    std::vector<row_set> sets(static_cast<std::size_t>(columns));
    std::int32_t i = 0;
    for (const auto& row : of) {
      ++i;
      for (const std::int32_t j : row) sets[static_cast<std::size_t>(j - 1)].insert(i);
    }
    return sets;
  };
  std::map<row_set, std::int32_t> expected;
  const auto sets = row_sets(rows, m);
  for (std::size_t j = 0; j < sets.size(); ++j)
    if (sets[j].size() > 1) expected[sets[j]] += weight[j];

  csr_matrix mat = pattern(m, rows);
  integers sums = weight;
  expect_silent([&] { csr_matrix_condense(mat, sums); });
  std::map<row_set, std::int32_t> given;
  const auto new_sets = row_sets(columns_of(mat), mat.m);
  for (std::size_t j = 0; j < new_sets.size(); ++j) given[new_sets[j]] = sums[j];
  RC_ASSERT(given == expected);
  RC_ASSERT(new_sets.size() == expected.size());
}

RC_GTEST_PROP(CondenseProperty, CountsRepeatedColumnsWithoutLeavingItsArrays, ()) {
  const auto m = *rc::gen::inRange<std::int32_t>(1, 5);
  const auto n = *rc::gen::inRange<std::int32_t>(0, 25);
  const auto rows = columns_of(*tests::any_rows(n, m));
  const integers weight = any_weights(m);
  expect_condensed(rows, weight, renumbered(rows, weight, numbers_by_counting(rows, m)));
}

// More entries than the cache holds, all over the columns, so that memory is asked for ahead. Each
// column of the left half has a twin in the right half.
TEST(Condense, OfColumnsThatScatterOverMoreThanTheCacheHolds) {
  constexpr std::int32_t half = 50021;
  constexpr int rows_of_half = 100000;
  column_rows rows(rows_of_half);
  std::int64_t walk = 1;
  for (auto& row : rows)
    for (int k = 0; k < 4; ++k) {
      walk = walk * 16807 % 2147483647;
      const auto j = static_cast<std::int32_t>(walk % half) + 1;
      row.push_back(j);
      row.push_back(j + half);
    }
  integers weight(2 * half);
  for (std::size_t j = 0; j < weight.size(); ++j) weight[j] = static_cast<std::int32_t>(j % 97);
  const condensed expected = renumbered(rows, weight, numbers_by_counting(rows, 2 * half));

  csr_matrix mat = pattern(2 * half, rows);
  integers sums = weight;
  expect_silent([&] { csr_matrix_condense(mat, sums); });
  EXPECT_EQ(mat.m, expected.m);
  EXPECT_TRUE(columns_of(mat) == expected.rows);
  EXPECT_TRUE(sums == expected.weight);
}

}  // namespace
