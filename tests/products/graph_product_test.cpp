// SPDX-License-Identifier: MIT
#include "../support/dense.hpp"
#include "products.hpp"

#include <rapidcheck/gtest.h>

#include <limits>
#include <numeric>

using namespace csr_matrix_mod;
using namespace tests;

namespace {

// 1 - 2 - 3
const column_rows path_graph{{2}, {1, 3}, {2}};

csr_matrix graph_product(const csr_matrix& g1, const csr_matrix& g2) {
  csr_matrix g3;
  expect_silent([&] { csr_matrix_multiply_graph(g1, g2, g3); });
  EXPECT_EQ(g3.type, matrix_real);
  expect_exact_capacity(g3);
  return g3;
}

csr_matrix graph_product(const csr_matrix& g1, const csr_matrix& g2,
                         const std::vector<std::int32_t>& wgt) {
  csr_matrix g3;
  expect_silent([&] { csr_matrix_multiply_graph(g1, g2, g3, {}, wgt); });
  EXPECT_EQ(g3.type, matrix_real);
  expect_exact_capacity(g3);
  return g3;
}

TEST(GraphProduct, JoinsTheEndsOfAPathAndNoVertexWithItself) {
  const csr_matrix g = pattern(3, path_graph);
  const csr_matrix g3 = graph_product(g, g);
  EXPECT_EQ(g3.n, 3);
  EXPECT_EQ(g3.m, 3);
  EXPECT_EQ(entries_of(g3), (entry_rows{{{3, 1.0}}, {}, {{1, 1.0}}}));
}

TEST(GraphProduct, JoinsEveryPairOfATriangleOnce) {
  const csr_matrix g = pattern(3, {{2, 3}, {1, 3}, {1, 2}});
  EXPECT_EQ(entries_of(graph_product(g, g)),
            (entry_rows{{{3, 1.0}, {2, 1.0}}, {{3, 1.0}, {1, 1.0}}, {{2, 1.0}, {1, 1.0}}}));
}

TEST(GraphProduct, AddsTheWeightOfTheMiddleVertex) {
  const csr_matrix g = pattern(3, path_graph);
  EXPECT_EQ(entries_of(graph_product(g, g, {5, 7, 9})), (entry_rows{{{3, 7.0}}, {}, {{1, 7.0}}}));
}

// 1 - 2 - 4 and 1 - 3 - 4: two ways from 1 to 4.
TEST(GraphProduct, CountsPathsOverDifferentMiddleVertices) {
  const csr_matrix g = pattern(4, {{2, 3}, {1, 4}, {1, 4}, {2, 3}});
  const entry_rows expected{{{4, 2.0}}, {{3, 2.0}}, {{2, 2.0}}, {{1, 2.0}}};
  EXPECT_EQ(entries_of(graph_product(g, g)), expected);
  EXPECT_EQ(entries_of(graph_product(g, g, {1, 10, 100, 1000})),
            (entry_rows{{{4, 110.0}}, {{3, 1001.0}}, {{2, 1001.0}}, {{1, 110.0}}}));
}

TEST(GraphProduct, TakesASelfLoopOnTheLeftForAStep) {
  const csr_matrix g1 = pattern(2, {{1}, {}});
  const csr_matrix g2 = pattern(3, {{1, 3, 2}, {}});
  EXPECT_EQ(entries_of(graph_product(g1, g2)), (entry_rows{{{3, 1.0}, {2, 1.0}}, {}}));
}

TEST(GraphProduct, CountsAnEdgeAsOftenAsItIsStored) {
  const csr_matrix g1 = pattern(1, {{1, 1}});
  const csr_matrix g2 = pattern(2, {{2, 2}});
  EXPECT_EQ(entries_of(graph_product(g1, g2)), (entry_rows{{{2, 4.0}}}));
  EXPECT_EQ(entries_of(graph_product(g1, g2, {3})), (entry_rows{{{2, 12.0}}}));
}

TEST(GraphProduct, DoesNotLookAtValues) {
  const entry_rows rows{{{2, 0.0}}, {{1, -3.5}, {3, 1e300}}, {{2, 7.0}}};
  const csr_matrix bare = pattern(3, columns_of(rows));
  const csr_matrix valued = real_matrix(3, rows);
  const entry_rows expected = entries_of(graph_product(bare, bare));
  EXPECT_EQ(entries_of(graph_product(valued, bare)), expected);
  EXPECT_EQ(entries_of(graph_product(bare, valued)), expected);
  EXPECT_EQ(entries_of(graph_product(valued, valued)), expected);
}

TEST(GraphProduct, KeepsWeightsThatAddUpToNothing) {
  const csr_matrix g1 = pattern(2, {{1, 2}, {}, {1}});
  const csr_matrix g2 = pattern(2, {{2}, {2}});
  EXPECT_EQ(entries_of(graph_product(g1, g2, {5, -5})), (entry_rows{{{2, 0.0}}, {}, {{2, 5.0}}}));
}

TEST(GraphProduct, AddsWeightsAsDoublesSoThatTheyDoNotWrap) {
  const std::int32_t most = std::numeric_limits<std::int32_t>::max();
  const csr_matrix g1 = pattern(2, {{1, 2}});
  const csr_matrix g2 = pattern(2, {{2}, {2}});
  EXPECT_EQ(entries_of(graph_product(g1, g2, {most, most})), (entry_rows{{{2, 4294967294.0}}}));
}

TEST(GraphProduct, IgnoresWeightsThatNoPathLeadsOver) {
  const csr_matrix g1 = pattern(1, {{1}});
  const csr_matrix g2 = pattern(2, {{2}});
  EXPECT_EQ(entries_of(graph_product(g1, g2, {5, 6, 7})), (entry_rows{{{2, 5.0}}}));
}

// Rows that repeat are summed 16 at a time, also where fewer of them are left, and g2 has vertices
// that no edge of g1 leads to.
TEST(GraphProduct, ReadsNoWeightBehindTheLastColumnOfTheLeftGraph) {
  constexpr std::int32_t columns = 43;
  column_rows left;
  for (std::int32_t i = 1; i <= 48; ++i) left.push_back({i <= 23 ? i + 20 : i - 23});
  column_rows right;
  for (std::int32_t j = 1; j <= 120; ++j) right.push_back({j, j + 1});
  std::vector<std::int32_t> wgt(columns);
  std::iota(wgt.begin(), wgt.end(), 1);
  entry_rows expected;
  for (std::int32_t i = 1; i <= 48; ++i) {
    const std::int32_t j = left[static_cast<std::size_t>(i - 1)].front();
    expected.emplace_back();
    for (const std::int32_t k : {j, j + 1})
      if (k != i) expected.back().push_back({k, static_cast<double>(j)});
  }
  EXPECT_EQ(entries_of(graph_product(pattern(columns, left), pattern(121, right), wgt)), expected);
}

TEST(GraphProduct, TakesNcolForItsNumberOfColumns) {
  const csr_matrix g = pattern(3, path_graph);
  csr_matrix g3;
  expect_silent([&] { csr_matrix_multiply_graph(g, g, g3, 5); });
  EXPECT_EQ(g3.m, 5);
  EXPECT_EQ(entries_of(g3), (entry_rows{{{3, 1.0}}, {}, {{1, 1.0}}}));
}

TEST(GraphProduct, OfSelfLoopsHasEmptyRowsAndOneSlot) {
  const csr_matrix g = pattern(2, {{1}, {2}});
  csr_matrix g3;
  const observed seen = observe([&] { csr_matrix_multiply_graph(g, g, g3); });
  EXPECT_EQ(seen.output, no_entries_warning);
  EXPECT_EQ(seen.stop, std::nullopt);
  EXPECT_EQ(entries_of(g3), (entry_rows{{}, {}}));
  expect_exact_capacity(g3);
}

TEST(GraphProduct, WithoutVerticesHasOneRowStart) {
  const csr_matrix g = pattern(0, {});
  const std::vector<std::int32_t> no_weights;
  csr_matrix g3;
  const observed seen = observe([&] { csr_matrix_multiply_graph(g, g, g3, {}, no_weights); });
  EXPECT_EQ(seen.output, no_entries_warning);
  EXPECT_EQ(entries_of(g3), entry_rows{});
  EXPECT_EQ(g3.ia(1), 1);
  expect_exact_capacity(g3);
}

TEST(GraphProduct, TakesANegativeNcolAsAMarkerOfNothing) {
  csr_matrix g3;
  const observed seen =
      observe([&] { csr_matrix_multiply_graph(pattern(1, {{1}}), pattern(1, {{}}), g3, -2); });
  EXPECT_EQ(seen.output, no_entries_warning);
  EXPECT_EQ(g3.m, -2);
  EXPECT_EQ(g3.ia(1), 1);
  EXPECT_EQ(g3.ia(2), 1);
}

TEST(GraphProduct, StopsAtEachRefusedRequest) {
  const csr_matrix g = pattern(3, path_graph);
  const std::vector<std::int32_t> wgt{5, 7, 9};
  const auto count_paths = [&](csr_matrix& g3) { csr_matrix_multiply_graph(g, g, g3); };
  const auto add_weights = [&](csr_matrix& g3) { csr_matrix_multiply_graph(g, g, g3, {}, wgt); };
  const std::string trim = "allocation error in csr_matrix_allocate";
  std::vector<std::optional<std::string>> stops{
      "allocation error in csr_matrix_initial", two_passes, two_passes, two_passes, trim, trim};
  expect_refusals(stops, count_paths);
  expect_refusals(stops, add_weights);
  stops = {"allocation error in csr_matrix_initial",  two_passes,
           "allocation error in matmul_size_graph",   "allocation error in csr_matrix_allocate",
           "allocation error in csr_matrix_allocate", "allocation error in matmul_graph"};
  expect_refusals(stops, count_paths, 1);
  stops.back() = "allocation error in matmul_wgraph";
  expect_refusals(stops, add_weights, 1);
  EXPECT_EQ(columns_of(g), path_graph);
}

RC_GTEST_PROP(GraphProduct, GivesTheWeightsAndTheOrderOfTheDenseProduct, ()) {
  const std::int32_t n = *any_size(), inner = *any_size(), m = *any_size();
  const any_operand left(n, inner), right(inner, m);
  const bool weighted = *rc::gen::arbitrary<bool>();
  const auto length = static_cast<std::size_t>(inner);
  const std::vector<std::int32_t> weights = weighted
                                                ? *rc::gen::container<std::vector<std::int32_t>>(
                                                      length, rc::gen::arbitrary<std::int32_t>())
                                                : std::vector<std::int32_t>(length, 1);
  const entry_rows expected =
      dense::graph_product(columns_of(left.rows), columns_of(right.rows), m, weights);

  csr_matrix g3;
  const observed seen = observe([&] {
    if (weighted)
      csr_matrix_multiply_graph(left.mat, right.mat, g3, {}, weights);
    else
      csr_matrix_multiply_graph(left.mat, right.mat, g3);
  });
  RC_ASSERT(seen.stop == std::nullopt);
  RC_ASSERT(seen.output == (entries_in(expected) == 0 ? no_entries_warning : ""));
  RC_ASSERT(entries_of(g3) == expected);
  RC_ASSERT(g3.ja.length() == exact_capacity(g3));
  RC_ASSERT(g3.a.length() == exact_capacity(g3));
}

}  // namespace
