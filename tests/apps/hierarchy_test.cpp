// SPDX-License-Identifier: MIT
#include "hierarchy.hpp"

#include "gallery_matrices.hpp"

#include "../support/generators.hpp"
#include "../support/matrices.hpp"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>
#include <csr_matrix_mod/csr_matrix.hpp>

#include <cmath>
#include <limits>
#include <vector>

namespace {

using csr_matrix_mod::csr_matrix;
using csrmat::coarse_level;
using csrmat::complexity;
using csrmat::finest_level;
using csrmat::gather;
using csrmat::largest_difference;
using csrmat::operator_form;
using tests::entries_of;
using tests::entry_rows;
using counts = std::vector<std::int64_t>;

//  [  2 -1  .  . ]
//  [ -1  2 -1  . ]   Aggregates are {1, 2} and {3, 4}.
//  [  . -1  2 -1 ]
//  [  .  . -1  2 ]
csr_matrix chain() {
  return tests::real_matrix(4, {{{1, 2.0}, {2, -1.0}},
                                {{1, -1.0}, {2, 2.0}, {3, -1.0}},
                                {{2, -1.0}, {3, 2.0}, {4, -1.0}},
                                {{3, -1.0}, {4, 2.0}}});
}

TEST(CoarseLevel, AddsUpTheEntriesBetweenAggregates) {
  const csr_matrix fine = chain();
  const auto via = gather(fine);
  ASSERT_TRUE(via);
  const csr_matrix coarse = coarse_level(fine, *via, operator_form::matrix);
  EXPECT_EQ(entries_of(coarse), (entry_rows{{{1, 2.0}, {2, -1.0}}, {{1, -1.0}, {2, 2.0}}}));
}

TEST(CoarseLevel, HasNoDiagonalWhenAGraph) {
  const csr_matrix fine = finest_level(chain(), operator_form::graph);
  EXPECT_EQ(entries_of(fine),
            (entry_rows{{{2, -1.0}}, {{1, -1.0}, {3, -1.0}}, {{2, -1.0}, {4, -1.0}}, {{3, -1.0}}}));
  const auto via = gather(fine);
  ASSERT_TRUE(via);
  EXPECT_EQ(entries_of(coarse_level(fine, *via, operator_form::graph)),
            (entry_rows{{{2, -1.0}}, {{1, -1.0}}}));
}

TEST(FinestLevel, CountsEveryEntryOfAPatternAsOne) {
  const csr_matrix graph = tests::pattern(2, {{1, 2}, {1}});
  EXPECT_EQ(entries_of(finest_level(graph, operator_form::matrix)),
            (entry_rows{{{1, 1.0}, {2, 1.0}}, {{1, 1.0}}}));
  EXPECT_EQ(entries_of(finest_level(graph, operator_form::graph)),
            (entry_rows{{{2, 1.0}}, {{1, 1.0}}}));
}

TEST(Gather, IsNothingWhenEveryRowWouldBeAnAggregate) {
  EXPECT_FALSE(gather(tests::real_matrix(2, {{{1, 1.0}}, {{2, 1.0}}})));
}

TEST(LargestDifference, IsRoundingOnlyForTheOperatorOfTheRestriction) {
  const csr_matrix fine = csrmat::finite_elements(20, 3);
  const auto via = gather(fine);
  ASSERT_TRUE(via);
  const csr_matrix coarse = coarse_level(fine, *via, operator_form::matrix);
  EXPECT_LT(largest_difference(fine, *via, coarse, operator_form::matrix), 1e-14);
}

TEST(LargestDifference, ShowsASingleEntryThatIsWrong) {
  const csr_matrix fine = chain();
  const auto via = gather(fine);
  ASSERT_TRUE(via);
  for (std::int32_t k = 1; k <= 4; ++k) {
    csr_matrix coarse = coarse_level(fine, *via, operator_form::matrix);
    coarse.a(k) *= 1.001;
    EXPECT_GT(largest_difference(fine, *via, coarse, operator_form::matrix), 1e-6) << k;
  }
}

TEST(LargestDifference, ShowsAGraphThatKeptItsDiagonal) {
  const csr_matrix fine = finest_level(chain(), operator_form::graph);
  const auto via = gather(fine);
  ASSERT_TRUE(via);
  const csr_matrix kept = coarse_level(fine, *via, operator_form::matrix);
  EXPECT_GT(largest_difference(fine, *via, kept, operator_form::graph), 1e-3);
}

TEST(LargestDifference, IsNotANumberWhereAValueIsNone) {
  csr_matrix fine = chain();
  fine.a(3) = std::numeric_limits<double>::quiet_NaN();
  const auto via = gather(fine);
  ASSERT_TRUE(via);
  const csr_matrix coarse = coarse_level(fine, *via, operator_form::matrix);
  EXPECT_TRUE(std::isnan(largest_difference(fine, *via, coarse, operator_form::matrix)));
}

TEST(LargestDifference, IsZeroForAMatrixOfZeros) {
  csr_matrix fine = chain();
  csr_matrix_setval(fine, 0.0);
  const auto via = gather(fine);
  ASSERT_TRUE(via);
  const csr_matrix coarse = coarse_level(fine, *via, operator_form::matrix);
  EXPECT_EQ(largest_difference(fine, *via, coarse, operator_form::matrix), 0.0);
}

RC_GTEST_PROP(LargestDifference, IsRoundingOnlyForAnyMatrixAndGraph, ()) {
  const std::int32_t n = *tests::any_size();
  const csr_matrix mat = tests::real_matrix(n, *tests::any_rows(n, n));
  for (const operator_form form : {operator_form::matrix, operator_form::graph}) {
    const csr_matrix fine = finest_level(mat, form);
    const auto via = gather(fine);
    if (!via) continue;
    const csr_matrix coarse = coarse_level(fine, *via, form);
    RC_ASSERT(csr_matrix_check(coarse) == std::nullopt);
    RC_ASSERT(largest_difference(fine, *via, coarse, form) < 1e-13);
  }
}

TEST(Complexity, IsTheSumOverTheFirst) {
  // The chain: 10 and 4 entries, 4 and 2 rows.
  EXPECT_DOUBLE_EQ(complexity(counts{10, 4}), 1.4);
  EXPECT_DOUBLE_EQ(complexity(counts{4, 2}), 1.5);
  EXPECT_DOUBLE_EQ(complexity(counts{7}), 1.0);
}

TEST(Complexity, IsOneWhereThereIsNothing) {
  EXPECT_DOUBLE_EQ(complexity(counts{0, 0}), 1.0);
  EXPECT_DOUBLE_EQ(complexity(counts{}), 1.0);
}

}  // namespace
