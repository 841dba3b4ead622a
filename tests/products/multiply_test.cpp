// SPDX-License-Identifier: MIT
#include "../support/dense.hpp"
#include "products.hpp"

#include <rapidcheck/gtest.h>

#include <cmath>
#include <limits>
#include <numeric>

using namespace csr_matrix_mod;
using namespace tests;

namespace {

csr_matrix multiplied(const csr_matrix& m1, const csr_matrix& m2) {
  csr_matrix m3;
  expect_silent([&] { csr_matrix_multiply(m1, m2, m3); });
  expect_exact_capacity(m3);
  return m3;
}

// As `multiplied`, of a product that has no entries.
csr_matrix multiplied_to_nothing(const csr_matrix& m1, const csr_matrix& m2) {
  csr_matrix m3;
  const observed seen = observe([&] { csr_matrix_multiply(m1, m2, m3); });
  EXPECT_EQ(seen.output, no_entries_warning);
  EXPECT_EQ(seen.stop, std::nullopt);
  EXPECT_EQ(csr_matrix_num_nz(m3), 0);
  EXPECT_EQ(m3.ja.length(), 1);
  expect_exact_capacity(m3);
  return m3;
}

//     [ 1  2 ]   [ .  3 ]   [ 8  3 ]
//                [ 4  . ]
TEST(Multiply, GivesARowInTheOrderInWhichItsColumnsAreDiscovered) {
  const csr_matrix m1 = real_matrix(2, {{{1, 1.0}, {2, 2.0}}});
  const csr_matrix m2 = real_matrix(2, {{{2, 3.0}}, {{1, 4.0}}});
  const csr_matrix m3 = multiplied(m1, m2);
  EXPECT_EQ(m3.n, 1);
  EXPECT_EQ(m3.m, 2);
  EXPECT_EQ(entries_of(m3), (entry_rows{{{2, 3.0}, {1, 8.0}}}));
}

//     [ 2  1 ]   [ 5  .  7 ]   [ 10  6  14 ]     row 1 is stored as columns 2, 1
//                [ .  6  . ]
TEST(Multiply, FollowsTheStoredOrderOfUnsortedRows) {
  const csr_matrix m1 = real_matrix(2, {{{2, 1.0}, {1, 2.0}}});
  const csr_matrix m2 = real_matrix(3, {{{3, 7.0}, {1, 5.0}}, {{2, 6.0}}});
  EXPECT_EQ(entries_of(multiplied(m1, m2)), (entry_rows{{{2, 6.0}, {3, 14.0}, {1, 10.0}}}));
}

//     [ 1 -1 ]   [ 2 ]   [ 0 ]
//                [ 2 ]
TEST(Multiply, KeepsAnEntryThatCancels) {
  const csr_matrix m1 = real_matrix(2, {{{1, 1.0}, {2, -1.0}}});
  const csr_matrix m2 = real_matrix(1, {{{1, 2.0}}, {{1, 2.0}}});
  EXPECT_EQ(entries_of(multiplied(m1, m2)), (entry_rows{{{1, 0.0}}}));
}

TEST(Multiply, KeepsTheProductOfAnExplicitZero) {
  const csr_matrix m1 = real_matrix(1, {{{1, 0.0}}});
  const csr_matrix m2 = real_matrix(2, {{{2, 5.0}}});
  EXPECT_EQ(entries_of(multiplied(m1, m2)), (entry_rows{{{2, 0.0}}}));
}

TEST(Multiply, KeepsTheSignOfAZeroThatIsNotAddedToAnything) {
  const csr_matrix m1 = real_matrix(1, {{{1, 1.0}}});
  const csr_matrix m2 = real_matrix(1, {{{1, -0.0}}});
  EXPECT_EQ(entries_of(multiplied(m1, m2)), (entry_rows{{{1, -0.0}}}));
}

TEST(Multiply, DoesNotSkipAZeroThatMeetsAnInfinity) {
  const csr_matrix m1 = real_matrix(1, {{{1, 0.0}}});
  const csr_matrix m2 = real_matrix(1, {{{1, std::numeric_limits<double>::infinity()}}});
  EXPECT_TRUE(std::isnan(multiplied(m1, m2).a(1)));
}

// (1+e)(1-e) is 1-e^2 before rounding and 1 after: a fused addition to -1 would leave -e^2.
TEST(Multiply, RoundsAProductBeforeItIsAdded) {
  const double e = std::ldexp(1.0, -30);
  const csr_matrix m1 = real_matrix(2, {{{1, -1.0}, {2, 1.0 + e}}});
  const csr_matrix m2 = real_matrix(1, {{{1, 1.0}}, {{1, 1.0 - e}}});
  EXPECT_EQ(entries_of(multiplied(m1, m2)), (entry_rows{{{1, 0.0}}}));
}

TEST(Multiply, AddsBothContributionsOfAColumnRepeatedOnTheLeft) {
  const csr_matrix m1 = real_matrix(1, {{{1, 2.0}, {1, 3.0}}});
  const csr_matrix m2 = real_matrix(1, {{{1, 10.0}}});
  EXPECT_EQ(entries_of(multiplied(m1, m2)), (entry_rows{{{1, 50.0}}}));
}

TEST(Multiply, AddsBothContributionsOfAColumnRepeatedOnTheRight) {
  const csr_matrix m1 = real_matrix(1, {{{1, 2.0}}});
  const csr_matrix m2 = real_matrix(1, {{{1, 10.0}, {1, 1.0}}});
  EXPECT_EQ(entries_of(multiplied(m1, m2)), (entry_rows{{{1, 22.0}}}));
}

//     [ 1  1 ]   [ 1  2 ]   [ 4  6 ]
//     [ .  1 ]   [ 3  4 ]   [ 3  4 ]
TEST(Multiply, GivesTheDiagonalNoSpecialTreatment) {
  const csr_matrix m1 = real_matrix(2, {{{1, 1.0}, {2, 1.0}}, {{2, 1.0}}});
  const csr_matrix m2 = real_matrix(2, {{{1, 1.0}, {2, 2.0}}, {{1, 3.0}, {2, 4.0}}});
  EXPECT_EQ(entries_of(multiplied(m1, m2)),
            (entry_rows{{{1, 4.0}, {2, 6.0}}, {{1, 3.0}, {2, 4.0}}}));
}

//     [ .  . ]   [ 1 ]   [ . ]
//     [ 1  . ]   [ . ]   [ 1 ]
//     [ .  1 ]           [ . ]   leads to an empty row
//     [ .  . ]           [ . ]
TEST(Multiply, GivesEmptyRowsWhereNothingLeadsAnywhere) {
  const csr_matrix m1 = real_matrix(2, {{}, {{1, 1.0}}, {{2, 1.0}}, {}});
  const csr_matrix m2 = real_matrix(1, {{{1, 1.0}}, {}});
  EXPECT_EQ(entries_of(multiplied(m1, m2)), (entry_rows{{}, {{1, 1.0}}, {}, {}}));
}

TEST(Multiply, GivesADenseRowForADenseRowOfADiagonal) {
  const csr_matrix m1 = real_matrix(3, {{{1, 1.0}, {2, 2.0}, {3, 3.0}}});
  const csr_matrix m2 = real_matrix(3, {{{1, 10.0}}, {{2, 10.0}}, {{3, 10.0}}});
  EXPECT_EQ(entries_of(multiplied(m1, m2)), (entry_rows{{{1, 10.0}, {2, 20.0}, {3, 30.0}}}));
}

TEST(Multiply, MayMultiplyAMatrixByItself) {
  const csr_matrix mat = real_matrix(2, {{{2, 2.0}}, {{1, 3.0}}});
  EXPECT_EQ(entries_of(multiplied(mat, mat)), (entry_rows{{{1, 6.0}}, {{2, 6.0}}}));
}

TEST(Multiply, IsStructureOnlyAsSoonAsOneOperandIs) {
  const entry_rows left{{{1, 1.0}, {2, 2.0}}};
  const entry_rows right{{{2, 3.0}, {2, 1.0}}, {{1, 4.0}, {2, 5.0}}};
  const csr_matrix real_left = real_matrix(2, left);
  const csr_matrix real_right = real_matrix(2, right);
  const csr_matrix bare_left = pattern(2, columns_of(left));
  const csr_matrix bare_right = pattern(2, columns_of(right));
  for (const auto& [m1, m2] :
       {std::pair{&bare_left, &real_right}, {&real_left, &bare_right}, {&bare_left, &bare_right}}) {
    const csr_matrix m3 = multiplied(*m1, *m2);
    EXPECT_EQ(m3.type, matrix_structure_only);
    EXPECT_EQ(columns_of(m3), (column_rows{{2, 1}}));
  }
}

TEST(Multiply, WithoutRowsHasOneRowStartAndOneSlot) {
  const csr_matrix m3 = multiplied_to_nothing(real_matrix(2, {}), real_matrix(3, {{}, {{1, 1.0}}}));
  EXPECT_EQ(m3.n, 0);
  EXPECT_EQ(m3.m, 3);
  EXPECT_EQ(m3.ia(1), 1);
}

TEST(Multiply, WithoutEntriesOnTheLeftDoesNotLookAtTheRightOperand) {
  csr_matrix m2;
  m2.n = 2;
  m2.m = 3;
  EXPECT_EQ(multiplied_to_nothing(real_matrix(2, {}), m2).n, 0);
  EXPECT_EQ(multiplied_to_nothing(real_matrix(2, {{}, {}}), m2).ia(3), 1);
}

// The second of three rows begins behind the first and ends before it begins: it is none.
TEST(Multiply, SkipsARowThatEndsBeforeItBegins) {
  entry_rows rows(3);
  for (std::int32_t j = 1; j <= 64; ++j) rows[0].push_back({j, 1.0 / j});
  csr_matrix shared = real_matrix(64, rows);
  shared.ia(3) = 1;
  shared.ia(4) = 2;
  rows[2] = {{1, 1.0}};
  entry_rows diagonal;
  for (std::int32_t i = 1; i <= 64; ++i) diagonal.push_back({{i, 3.0}});
  entry_rows thrice = rows;
  for (auto& row : thrice)
    for (entry& e : row) e.value *= 3.0;
  EXPECT_EQ(entries_of(multiplied(shared, real_matrix(64, diagonal))), thrice);

  const entry_rows to_each{{{1, 3.0}}, {{2, 3.0}}, {{3, 3.0}}, {{1, 3.0}}};
  thrice.push_back(thrice.front());
  EXPECT_EQ(entries_of(multiplied(real_matrix(3, to_each), shared)), thrice);
}

TEST(Multiply, WithoutColumnsHasEmptyRowsAndOneSlot) {
  const csr_matrix m3 =
      multiplied_to_nothing(real_matrix(1, {{{1, 1.0}}, {}}), real_matrix(0, {{}}));
  EXPECT_EQ(m3.m, 0);
  EXPECT_EQ(entries_of(m3), (entry_rows{{}, {}}));
}

TEST(Multiply, WithoutEntriesIsStructureOnlyWithOneSlotWhereAnOperandIs) {
  const csr_matrix m3 = multiplied_to_nothing(pattern(1, {{}, {}}), real_matrix(1, {{{1, 1.0}}}));
  EXPECT_EQ(columns_of(m3), (column_rows{{}, {}}));
}

TEST(Multiply, OfFewerThanZeroRowsWritesNoRowStart) {
  csr_matrix m1 = real_matrix(1, {});
  m1.n = -1;
  csr_matrix m3;
  const observed seen = observe([&] { csr_matrix_multiply(m1, real_matrix(1, {{{1, 1.0}}}), m3); });
  EXPECT_EQ(seen.output, no_entries_warning);
  EXPECT_EQ(m3.n, -1);
  EXPECT_TRUE(m3.ia.allocated());
  EXPECT_EQ(m3.ia.length(), 0);
}

TEST(Multiply, TakesNcolForTheMarkerAndTheColumnsFromTheRightOperand) {
  const csr_matrix m1 = real_matrix(1, {{{1, 2.0}}});
  const csr_matrix m2 = real_matrix(2, {{{2, 3.0}}});
  csr_matrix m3;
  expect_silent([&] { csr_matrix_multiply(m1, m2, m3, 7); });
  EXPECT_EQ(m3.m, 2);
  EXPECT_EQ(entries_of(m3), (entry_rows{{{2, 6.0}}}));
}

// How many bytes each request of `call` was for.
std::vector<std::size_t> requests_of(const std::function<void()>& call) {
  static std::vector<std::size_t> requests;
  requests.clear();
  detail::set_refusal([](std::size_t bytes) noexcept {
    requests.push_back(bytes);
    return false;
  });
  expect_silent(call);
  detail::set_refusal(nullptr);
  return requests;
}

// Row starts, marker, columns, values.
TEST(Multiply, AsksForAMarkerOfNcolIntegersAndForNothingElse) {
  const csr_matrix m1 = real_matrix(1, {{{1, 2.0}}});
  const csr_matrix m2 = real_matrix(2, {{{2, 3.0}}});
  csr_matrix m3;
  EXPECT_EQ(requests_of([&] { csr_matrix_multiply(m1, m2, m3); }),
            (std::vector<std::size_t>{2 * 4, 2 * 4, 4, 8}));
  EXPECT_EQ(requests_of([&] { csr_matrix_multiply(m1, m2, m3, 7); }),
            (std::vector<std::size_t>{2 * 4, 7 * 4, 4, 8}));
  EXPECT_EQ(requests_of([&] { csr_matrix_multiply_graph(m1, m2, m3, 7); }),
            (std::vector<std::size_t>{2 * 4, 7 * 4, 4, 8}));
}

// Two left entries, right rows of two at most: room for four at first, then exactly for the two
// columns that are met.
TEST(Multiply, CutsTheRoomForAllPathsToTheEntries) {
  const csr_matrix m1 = real_matrix(2, {{{1, 1.0}, {2, 1.0}}});
  const csr_matrix m2 = real_matrix(5, {{{4, 1.0}, {2, 1.0}}, {{4, 1.0}}});
  csr_matrix m3;
  EXPECT_EQ(requests_of([&] { csr_matrix_multiply(m1, m2, m3); }),
            (std::vector<std::size_t>{2 * 4, 5 * 4, 4 * 4, 4 * 8, 2 * 4, 2 * 8}));
  EXPECT_EQ(entries_of(m3), (entry_rows{{{4, 2.0}, {2, 1.0}}}));
  expect_exact_capacity(m3);
}

// The record says one column, the entries say two: the marker must be as long as `ncol` says.
TEST(Multiply, ReachesColumnsUpToNcolWhereTheRightOperandSaysFewer) {
  const csr_matrix m1 = real_matrix(1, {{{1, 2.0}}});
  const csr_matrix m2 = real_matrix(1, {{{2, 3.0}}});
  csr_matrix m3;
  expect_silent([&] { csr_matrix_multiply(m1, m2, m3, 2); });
  EXPECT_EQ(m3.m, 1);
  EXPECT_EQ(m3.ja(1), 2);
  EXPECT_EQ(m3.a(1), 6.0);
}

TEST(Multiply, TakesANegativeNcolAsZero) {
  csr_matrix m3;
  const observed seen = observe([&] {
    csr_matrix_multiply(real_matrix(1, {{{1, 1.0}}}), real_matrix(2, {{}}), m3, -3);
  });
  EXPECT_EQ(seen.output, no_entries_warning);
  EXPECT_EQ(seen.stop, std::nullopt);
  EXPECT_EQ(m3.m, 2);
  EXPECT_EQ(entries_of(m3), (entry_rows{{}}));
}

TEST(Multiply, DoesNotCompareShapes) {
  const csr_matrix m1 = real_matrix(5, {{{1, 2.0}}});
  const csr_matrix m2 = real_matrix(1, {{{1, 3.0}}, {}});
  EXPECT_EQ(entries_of(multiplied(m1, m2)), (entry_rows{{{1, 6.0}}}));
}

TEST(Multiply, ReadsArraysThatTheCallerOwns) {
  std::vector<std::int32_t> ia{1, 3}, ja{1, 2};
  std::vector<double> a{1.0, 2.0};
  csr_matrix m1;
  m1.n = 1;
  m1.m = 2;
  m1.ia = array_ref<std::int32_t>::wrap(ia.data(), 2);
  m1.ja = array_ref<std::int32_t>::wrap(ja.data(), 2);
  m1.a = array_ref<double>::wrap(a.data(), 2);
  const csr_matrix m2 = real_matrix(2, {{{2, 3.0}}, {{1, 4.0}}});
  EXPECT_EQ(entries_of(multiplied(m1, m2)), (entry_rows{{{2, 3.0}, {1, 8.0}}}));
}

TEST(Multiply, LeavesTheOldArraysOfTheResultToOtherRecordsOverThem) {
  csr_matrix m3 = real_matrix(1, {{{1, 5.0}}});
  csr_matrix other;
  csr_matrix_transfer(other, m3);
  const csr_matrix unit = real_matrix(1, {{{1, 1.0}}});
  expect_silent([&] { csr_matrix_multiply(unit, unit, m3); });
  EXPECT_EQ(entries_of(m3), (entry_rows{{{1, 1.0}}}));
  EXPECT_EQ(entries_of(other), (entry_rows{{{1, 5.0}}}));
}

TEST(Multiply, StopsAtEachRefusedRequestAndLeavesTheOperandsAlone) {
  const entry_rows left{{{1, 1.0}, {2, 2.0}}};
  const entry_rows right{{{2, 3.0}}, {{1, 4.0}}};
  const csr_matrix m1 = real_matrix(2, left);
  const csr_matrix m2 = real_matrix(2, right);
  const auto multiply = [&](csr_matrix& m3) { csr_matrix_multiply(m1, m2, m3); };
  expect_refusals({"allocation error in csr_matrix_initial", two_passes, two_passes, two_passes},
                  multiply);
  expect_refusals({"allocation error in csr_matrix_initial", two_passes,
                   "allocation error in matmul_size", "allocation error in csr_matrix_allocate",
                   "allocation error in csr_matrix_allocate", "allocation error in matmul_normal"},
                  multiply, 1);
  expect_refusals(
      {"allocation error in csr_matrix_initial", "allocation error in matmul_size", two_passes,
       "allocation error in matmul_size", "allocation error in csr_matrix_allocate",
       "allocation error in csr_matrix_allocate", "allocation error in matmul_normal"},
      multiply, 2);
  EXPECT_EQ(entries_of(m1), left);
  EXPECT_EQ(entries_of(m2), right);
}

RC_GTEST_PROP(Multiply, IsTheSameInOnePassAndInTwo, ()) {
  const std::int32_t n = *any_size(), inner = *any_size(), m = *any_size();
  const any_operand left(n, inner), right(inner, m);
  constexpr int marker_of_one_pass = 1;

  csr_matrix one, two;
  const observed seen = observe([&] { csr_matrix_multiply(left.mat, right.mat, one); });
  observed refused;
  {
    const refuse_allocation refuse(marker_of_one_pass);
    refused = observe([&] { csr_matrix_multiply(left.mat, right.mat, two); });
  }
  RC_ASSERT(refused.stop == std::nullopt && refused.output == seen.output);
  RC_ASSERT(entries_of(two) == entries_of(one));
  RC_ASSERT(two.ja.length() == one.ja.length() && two.a.length() == one.a.length());
}

TEST(Multiply, OfPatternsStopsAtEachRefusedRequest) {
  const csr_matrix g = pattern(1, {{1}});
  const auto multiply = [&](csr_matrix& m3) { csr_matrix_multiply(g, g, m3); };
  expect_refusals({"allocation error in csr_matrix_initial", two_passes, two_passes}, multiply);
  expect_refusals(
      {"allocation error in csr_matrix_initial", two_passes, "allocation error in matmul_size",
       "allocation error in csr_matrix_allocate", "allocation error in matmul_noval"},
      multiply, 1);
}

#if !defined(NDEBUG) || defined(__SANITIZE_ADDRESS__)
#define FAST_BUILD 0
#elif defined(__has_feature)
#define FAST_BUILD !__has_feature(address_sanitizer)
#else
#define FAST_BUILD 1
#endif

// A column of 46341 entries times a row of as many: 46341^2 = 2147488281 entries.
TEST(Multiply, RefusesAProductThatDoesNotFitBeforeItsEntriesAreAllocated) {
  if (!FAST_BUILD) GTEST_SKIP() << "counts past 2147483646, one by one";
  const std::int32_t n = 46341;
  const csr_matrix column = pattern(1, column_rows(static_cast<std::size_t>(n), {1}));
  std::vector<std::int32_t> all(static_cast<std::size_t>(n));
  std::iota(all.begin(), all.end(), 1);
  csr_matrix m3;
  const observed seen = observe([&] { csr_matrix_multiply(column, pattern(n, {all}), m3); });
  EXPECT_EQ(seen.stop, "csr_matrix_multiply: 2147488281 entries do not fit, at most 2147483646");
  EXPECT_EQ(seen.output, "");
  EXPECT_FALSE(m3.ja.allocated());
}

RC_GTEST_PROP(Multiply, GivesTheValuesAndTheOrderOfTheDenseProduct, ()) {
  const std::int32_t n = *any_size(), inner = *any_size(), m = *any_size();
  const any_operand left(n, inner), right(inner, m);
  const entry_rows expected = dense::product(left.rows, right.rows, m);

  csr_matrix m3;
  const observed seen = observe([&] { csr_matrix_multiply(left.mat, right.mat, m3); });
  RC_ASSERT(seen.stop == std::nullopt);
  RC_ASSERT(seen.output == (entries_in(expected) == 0 ? no_entries_warning : ""));
  RC_ASSERT(entries_of(m3) == expected);
  RC_ASSERT(m3.ja.length() == exact_capacity(m3));
  RC_ASSERT(m3.a.length() == exact_capacity(m3));
  RC_ASSERT(entries_of(left.mat) == left.rows);
  RC_ASSERT(entries_of(right.mat) == right.rows);
}

RC_GTEST_PROP(Multiply, OfPatternsGivesThePatternOfTheProduct, ()) {
  const std::int32_t n = *any_size(), inner = *any_size(), m = *any_size();
  const any_operand left(n, inner), right(inner, m);
  csr_matrix m3;
  observe([&] { csr_matrix_multiply(pattern(inner, columns_of(left.rows)), right.mat, m3); });
  RC_ASSERT(m3.type == matrix_structure_only);
  RC_ASSERT(columns_of(m3) == columns_of(dense::product(left.rows, right.rows, m)));
  RC_ASSERT(m3.ja.length() == exact_capacity(m3));
}

}  // namespace
