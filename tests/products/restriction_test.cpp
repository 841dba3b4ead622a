// SPDX-License-Identifier: MIT
#include "../support/dense.hpp"
#include "products.hpp"

#include <rapidcheck/gtest.h>

using namespace csr_matrix_mod;
using namespace tests;

namespace {

using restriction_routine = void (*)(const csr_matrix&, const csr_matrix&, const csr_matrix&,
                                     csr_matrix&);

csr_matrix restricted(restriction_routine form, const csr_matrix& m1, const csr_matrix& p,
                      const csr_matrix& r) {
  csr_matrix mc;
  expect_silent([&] { form(m1, p, r, mc); });
  EXPECT_EQ(mc.n, r.n);
  EXPECT_EQ(mc.m, p.m);
  expect_exact_capacity(mc);
  return mc;
}

csr_matrix identity(std::int32_t n) {
  entry_rows rows;
  for (std::int32_t i = 1; i <= n; ++i) rows.push_back({{i, 1.0}});
  return real_matrix(n, rows);
}

//           [ 1  . ] [ 1 ]
//   [ 1 1 ] [ .  1 ] [ 1 ] = [ 2 ]
TEST(Restriction, OfAnIdentityToOneRowIsItsSize) {
  const csr_matrix p = real_matrix(1, {{{1, 1.0}}, {{1, 1.0}}});
  const csr_matrix r = real_matrix(2, {{{1, 1.0}, {2, 1.0}}});
  EXPECT_EQ(entries_of(restricted(csr_matrix_restriction, identity(2), p, r)),
            (entry_rows{{{1, 2.0}}}));
}

TEST(GraphRestriction, OfAnIdentityToOneVertexHasNoEdges) {
  const csr_matrix p = real_matrix(1, {{{1, 1.0}}, {{1, 1.0}}});
  const csr_matrix r = real_matrix(2, {{{1, 1.0}, {2, 1.0}}});
  csr_matrix gc;
  const observed seen = observe([&] { csr_matrix_graph_restriction(identity(2), p, r, gc); });
  EXPECT_EQ(seen.output, no_entries_warning);
  EXPECT_EQ(seen.stop, std::nullopt);
  EXPECT_EQ(gc.type, matrix_real);
  EXPECT_EQ(gc.n, 1);
  EXPECT_EQ(gc.m, 1);
  EXPECT_EQ(entries_of(gc), (entry_rows{{}}));
  expect_exact_capacity(gc);
}

// Fine vertices 1, 2 become coarse vertex 1 and 3, 4 become 2. Edges 1-2 (weight 1) and 3-4 (2) are
// inside, 2-3 (10) and 1-4 (20) between.
//     [  .   1   .  20 ]
//     [  1   .  10   . ]
//     [  .  10   .   2 ]
//     [ 20   .   2   . ]
struct two_pairs {
  csr_matrix fine = real_matrix(
      4,
      {{{2, 1.0}, {4, 20.0}}, {{1, 1.0}, {3, 10.0}}, {{2, 10.0}, {4, 2.0}}, {{1, 20.0}, {3, 2.0}}});
  csr_matrix p = real_matrix(2, {{{1, 1.0}}, {{1, 1.0}}, {{2, 1.0}}, {{2, 1.0}}});
  csr_matrix r = real_matrix(4, {{{1, 1.0}, {2, 1.0}}, {{3, 1.0}, {4, 1.0}}});
};

TEST(GraphRestriction, SumsTheEdgesBetweenCoarseVerticesAndDropsThoseInside) {
  const two_pairs pairs;
  EXPECT_EQ(entries_of(restricted(csr_matrix_graph_restriction, pairs.fine, pairs.p, pairs.r)),
            (entry_rows{{{2, 30.0}}, {{1, 30.0}}}));
}

TEST(Restriction, KeepsTheDiagonalThatTheGraphFormDrops) {
  const two_pairs pairs;
  EXPECT_EQ(entries_of(restricted(csr_matrix_restriction, pairs.fine, pairs.p, pairs.r)),
            (entry_rows{{{1, 2.0}, {2, 30.0}}, {{1, 30.0}, {2, 4.0}}}));
}

//                 [ .  1 ]
//     r = m1 = p  [ 1  . ]   m1 p has a diagonal only, and r brings it off the diagonal again.
TEST(GraphRestriction, KeepsTheDiagonalOfTheFirstProduct) {
  const csr_matrix swap = real_matrix(2, {{{2, 1.0}}, {{1, 1.0}}});
  EXPECT_EQ(entries_of(restricted(csr_matrix_graph_restriction, swap, swap, swap)),
            (entry_rows{{{2, 1.0}}, {{1, 1.0}}}));
}

// r is used as given: it need not be the transpose of p, and the result need not be square.
TEST(Restriction, MayHaveADifferentNumberOfRowsAndColumns) {
  const csr_matrix p = real_matrix(2, {{{1, 1.0}}, {{2, 1.0}}, {{2, 1.0}}});
  const csr_matrix r = real_matrix(3, {{{3, 2.0}}, {}, {{1, 3.0}, {2, 0.0}}});
  EXPECT_EQ(entries_of(restricted(csr_matrix_restriction, identity(3), p, r)),
            (entry_rows{{{2, 2.0}}, {}, {{1, 3.0}, {2, 0.0}}}));
}

// Four rows of r are the same, and lead to more columns of p than there are fine rows.
TEST(Restriction, MayHaveMoreColumnsThanThereAreFineRows) {
  constexpr std::int32_t columns = 50;
  entry_rows fine(2);
  entry_rows::value_type sums;
  for (std::int32_t j = 1; j <= columns; ++j) {
    fine[0].push_back({j, 1.0 * j});
    fine[1].push_back({j, 100.0 * j});
    sums.push_back({j, 101.0 * j});
  }
  const csr_matrix p = real_matrix(columns, fine);
  const csr_matrix r = real_matrix(2, entry_rows(4, {{1, 1.0}, {2, 1.0}}));
  EXPECT_EQ(entries_of(restricted(csr_matrix_restriction, identity(2), p, r)), entry_rows(4, sums));
}

TEST(Restriction, OfNothingWarnsForBothProducts) {
  const csr_matrix nothing = real_matrix(0, {});
  csr_matrix mc;
  const observed seen = observe([&] { csr_matrix_restriction(nothing, nothing, nothing, mc); });
  EXPECT_EQ(seen.output, no_entries_warning + no_entries_warning);
  EXPECT_EQ(seen.stop, std::nullopt);
  EXPECT_EQ(entries_of(mc), entry_rows{});
  expect_exact_capacity(mc);
}

TEST(Restriction, GivesEmptyRowsForEmptyRowsOfR) {
  const csr_matrix p = real_matrix(1, {{{1, 1.0}}});
  const csr_matrix r = real_matrix(1, {{}, {{1, 4.0}}, {}});
  EXPECT_EQ(entries_of(restricted(csr_matrix_restriction, identity(1), p, r)),
            (entry_rows{{}, {{1, 4.0}}, {}}));
}

struct wrong_shapes {
  const char* name;
  csr_matrix m1, p, r;
  std::string line, matrix_stop, graph_stop;
};

std::vector<wrong_shapes> all_wrong_shapes() {
  const auto empty = [](std::size_t n, std::int32_t m) { return real_matrix(m, entry_rows(n)); };
  const std::string not_square = "m1 not a square matrix in matrix_restriction";
  const std::string not_graph = "g1 not a graph in matrix_graph_restriction";
  std::vector<wrong_shapes> all;
  all.push_back({"m1 of 3 x 2", empty(3, 2), empty(3, 1), empty(1, 3),
                 " n,m =            3           2\n", not_square, not_graph});
  all.push_back({"m1 of 2 x 3", empty(2, 3), empty(2, 1), empty(1, 2),
                 " n,m =            2           3\n", not_square, not_graph});
  all.push_back({"p with 4 rows", empty(3, 3), empty(4, 1), empty(1, 3),
                 " n =            3  p%size =            4\n", "p not same size as size of m1",
                 "p not same size as size of g1"});
  all.push_back({"r of 2 x 4, whose rows are shown", empty(3, 3), empty(3, 1), empty(2, 4),
                 " m =            3  r%size =            2\n", "r not same size as size of m1",
                 "r not same size as size of g1"});
  all.push_back({"all wrong: the square test is first", empty(3, 2), empty(4, 1), empty(2, 4),
                 " n,m =            3           2\n", not_square, not_graph});
  all.push_back({"p and r wrong: p is second", empty(3, 3), empty(4, 1), empty(2, 4),
                 " n =            3  p%size =            4\n", "p not same size as size of m1",
                 "p not same size as size of g1"});
  return all;
}

TEST(Restriction, StopsAtShapesThatDoNotFitBeforeAnythingIsBuilt) {
  for (const wrong_shapes& wrong : all_wrong_shapes()) {
    SCOPED_TRACE(wrong.name);
    csr_matrix mc = real_matrix(1, {{{1, 5.0}}});
    const observed seen = observe([&] { csr_matrix_restriction(wrong.m1, wrong.p, wrong.r, mc); });
    EXPECT_EQ(seen.output, wrong.line);
    EXPECT_EQ(seen.stop, wrong.matrix_stop);
    EXPECT_EQ(entries_of(mc), (entry_rows{{{1, 5.0}}}));
  }
}

TEST(GraphRestriction, StopsAtShapesThatDoNotFitBeforeAnythingIsBuilt) {
  for (const wrong_shapes& wrong : all_wrong_shapes()) {
    SCOPED_TRACE(wrong.name);
    csr_matrix gc = real_matrix(1, {{{1, 5.0}}});
    const observed seen =
        observe([&] { csr_matrix_graph_restriction(wrong.m1, wrong.p, wrong.r, gc); });
    EXPECT_EQ(seen.output, wrong.line);
    EXPECT_EQ(seen.stop, wrong.graph_stop);
    EXPECT_EQ(entries_of(gc), (entry_rows{{{1, 5.0}}}));
  }
}

// What the first product asks for, then the second one.
std::vector<std::optional<std::string>> refusals(
    const std::vector<std::optional<std::string>>& second) {
  std::vector<std::optional<std::string>> stops{"allocation error in csr_matrix_initial",
                                                two_passes, two_passes, two_passes,
                                                "allocation error in csr_matrix_initial"};
  stops.insert(stops.end(), second.begin(), second.end());
  return stops;
}

// The request for the marker with which the second product begins.
constexpr int second_marker = 5;

TEST(Restriction, StopsAtEachRefusedRequest) {
  const two_pairs pairs;
  const auto form = [&](csr_matrix& mc) {
    csr_matrix_restriction(pairs.fine, pairs.p, pairs.r, mc);
  };
  expect_refusals(refusals({two_passes, two_passes, two_passes}), form);
  expect_refusals({"allocation error in matmul_size", "allocation error in csr_matrix_allocate",
                   "allocation error in csr_matrix_allocate", "allocation error in matmul_normal"},
                  form, second_marker, second_marker + 1);
}

TEST(GraphRestriction, StopsAtEachRefusedRequest) {
  const two_pairs pairs;
  const auto form = [&](csr_matrix& gc) {
    csr_matrix_graph_restriction(pairs.fine, pairs.p, pairs.r, gc);
  };
  expect_refusals(
      refusals({two_passes, two_passes, two_passes, "allocation error in csr_matrix_allocate",
                "allocation error in csr_matrix_allocate"}),
      form);
  expect_refusals(
      {"allocation error in matmul_size_graph", "allocation error in csr_matrix_allocate",
       "allocation error in csr_matrix_allocate", "allocation error in matmul_formgraph"},
      form, second_marker, second_marker + 1);
  const two_pairs untouched;
  EXPECT_EQ(entries_of(pairs.fine), entries_of(untouched.fine));
  EXPECT_EQ(entries_of(pairs.p), entries_of(untouched.p));
  EXPECT_EQ(entries_of(pairs.r), entries_of(untouched.r));
}

void agrees_with_dense(restriction_routine form, dense::diagonal kept) {
  const std::int32_t fine = *any_size(), rows = *any_size(), columns = *any_size();
  const any_operand m1(fine, fine), p(fine, columns), r(rows, fine);
  const entry_rows mp = dense::product(m1.rows, p.rows, columns);
  const entry_rows expected = dense::product(r.rows, mp, columns, kept);
  const std::string warnings = (entries_in(mp) == 0 ? no_entries_warning : "") +
                               (entries_in(expected) == 0 ? no_entries_warning : "");

  csr_matrix mc;
  const observed seen = observe([&] { form(m1.mat, p.mat, r.mat, mc); });
  RC_ASSERT(seen.stop == std::nullopt);
  RC_ASSERT(seen.output == warnings);
  RC_ASSERT(entries_of(mc) == expected);
  RC_ASSERT(mc.m == columns);
  RC_ASSERT(mc.ja.length() == exact_capacity(mc));
  RC_ASSERT(mc.a.length() == exact_capacity(mc));
}

RC_GTEST_PROP(Restriction, GivesTheValuesAndTheOrderOfTheDenseProducts, ()) {
  agrees_with_dense(csr_matrix_restriction, dense::diagonal::kept);
}

RC_GTEST_PROP(GraphRestriction, GivesTheValuesAndTheOrderOfTheDenseProducts, ()) {
  agrees_with_dense(csr_matrix_graph_restriction, dense::diagonal::skipped);
}

}  // namespace
