// SPDX-License-Identifier: MIT
#include "aggregation.hpp"

#include "../support/generators.hpp"
#include "../support/matrices.hpp"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>
#include <csr_matrix_mod/csr_matrix.hpp>

#include <algorithm>
#include <set>
#include <vector>

namespace {

using csrmat::aggregate;
using csrmat::aggregates;
using csrmat::piecewise_constant;
using csrmat::undirected_graph;
using tests::columns_of;
using tests::entries_of;
using tests::entry_rows;
using tests::pattern;
using groups = std::vector<std::int32_t>;

// The rows that can be reached from the first one of an aggregate without leaving it.
std::set<std::size_t> reached_inside(const tests::column_rows& graph, const groups& of_row,
                                     std::size_t start) {
  std::set<std::size_t> reached{start};
  std::vector<std::size_t> pending{start};
  while (!pending.empty()) {
    const std::size_t i = pending.back();
    pending.pop_back();
    for (const std::int32_t column : graph[i]) {
      const auto j = static_cast<std::size_t>(column - 1);
      if (of_row[j] == of_row[start] && reached.insert(j).second) pending.push_back(j);
    }
  }
  return reached;
}

TEST(Aggregate, FoundsAnAggregateWhereARowAndItsNeighboursAreFree) {
  // 1 - 2 - 3 - 4 - 5 - 6 - 7
  const aggregates found =
      aggregate(pattern(7, {{2}, {1, 3}, {2, 4}, {3, 5}, {4, 6}, {5, 7}, {6}}));
  EXPECT_EQ(found.count, 3);
  EXPECT_EQ(found.of_row, (groups{1, 1, 2, 2, 2, 3, 3}));
}

TEST(Aggregate, GivesARowThatIsLeftOverToTheAggregateOfItsFirstNeighbour) {
  // 1 - 2 - 3 - 4 - 5 - 6
  const aggregates found = aggregate(pattern(6, {{2}, {1, 3}, {2, 4}, {3, 5}, {4, 6}, {5}}));
  EXPECT_EQ(found.count, 2);
  EXPECT_EQ(found.of_row, (groups{1, 1, 2, 2, 2, 2}));
}

TEST(Aggregate, LetsNobodyFollowARowThatWasLeftOverItself) {
  // 1 - 2 - 5 - 6 - 4 - 3: 5 joins 2, and 6, which names 5 first, still joins 4.
  const aggregates found = aggregate(pattern(6, {{2}, {1, 5}, {4}, {3, 6}, {2, 6}, {5, 4}}));
  EXPECT_EQ(found.of_row, (groups{1, 1, 2, 2, 1, 2}));
}

TEST(Aggregate, MakesARowWithoutNeighboursAnAggregateByItself) {
  const aggregates found = aggregate(pattern(4, {{}, {3}, {2}, {}}));
  EXPECT_EQ(found.of_row, (groups{1, 2, 2, 3}));
}

TEST(Aggregate, HasNothingToDoForNoRows) {
  const aggregates found = aggregate(pattern(0, {}));
  EXPECT_EQ(found.count, 0);
  EXPECT_TRUE(found.of_row.empty());
}

RC_GTEST_PROP(Aggregate, PutsEveryRowIntoExactlyOneConnectedAggregate, ()) {
  const std::int32_t n = *tests::any_size();
  const auto rows = *tests::any_rows(n, n);
  const auto graph = undirected_graph(tests::real_matrix(n, rows));
  const aggregates found = aggregate(graph);
  RC_ASSERT(found.of_row.size() == rows.size());

  const auto neighbours = columns_of(graph);
  std::set<std::int32_t> seen;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    RC_ASSERT(1 <= found.of_row[i] && found.of_row[i] <= found.count);
    if (!seen.insert(found.of_row[i]).second) continue;
    const auto members = std::count(found.of_row.begin(), found.of_row.end(), found.of_row[i]);
    RC_ASSERT(reached_inside(neighbours, found.of_row, i).size() ==
              static_cast<std::size_t>(members));
  }
  RC_ASSERT(static_cast<std::int32_t>(seen.size()) == found.count);
}

TEST(UndirectedGraph, HasBothDirectionsAndNoDiagonal) {
  //  [ 1  2  . ]
  //  [ .  .  3 ]
  //  [ .  .  4 ]
  const auto graph =
      undirected_graph(tests::real_matrix(3, {{{1, 1.0}, {2, 2.0}}, {{3, 3.0}}, {{3, 4.0}}}));
  EXPECT_EQ(columns_of(graph), (tests::column_rows{{2}, {3, 1}, {2}}));
  EXPECT_FALSE(graph.a.allocated());
}

TEST(UndirectedGraph, LeavesTheMatrixAsItIs) {
  const entry_rows rows = {{{2, 5.0}}, {{2, 7.0}}};
  const auto mat = tests::real_matrix(2, rows);
  undirected_graph(mat);
  EXPECT_EQ(entries_of(mat), rows);
}

TEST(PiecewiseConstant, HasAnEntryOfOneInTheColumnOfTheAggregate) {
  const auto p = piecewise_constant({2, {1, 2, 1}});
  EXPECT_EQ(p.m, 2);
  EXPECT_EQ(entries_of(p), (entry_rows{{{1, 1.0}}, {{2, 1.0}}, {{1, 1.0}}}));
}

}  // namespace
