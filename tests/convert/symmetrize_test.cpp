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

TEST(Symmetrize, AddsTheTransposeAndDoublesTheDiagonal) {
  // [ 1  .  2 ]   [ 1  3  . ]   [ 2  3  2 ]
  // [ 3  4  . ] + [ .  4  . ] = [ 3  8  . ]
  // [ .  .  . ]   [ 2  .  . ]   [ 2  .  . ]
  csr_matrix mat = real_matrix(3, {{{3, 2}, {1, 1}}, {{1, 3}, {2, 4}}, {}}, 4);
  expect_silent([&] { csr_matrix_symmetrize(mat); });
  EXPECT_EQ(entries_of(mat), (entry_rows{{{3, 2}, {1, 2}, {2, 3}}, {{1, 3}, {2, 8}}, {{1, 2}}}));
  EXPECT_EQ(mat.n, 3);
  EXPECT_EQ(mat.m, 3);
  EXPECT_EQ(mat.ja.length(), 6);
  EXPECT_EQ(mat.a.length(), 6);
}

TEST(Symmetrize, PutsTheNewColumnsOfTheTransposeInIncreasingOrder) {
  // [ .  .  .  9 ]      row 4 holds 1 first, then what columns 4 of rows 2 and 3 bring
  // [ .  .  .  8 ]
  // [ .  .  .  7 ]
  // [ 6  .  .  . ]
  csr_matrix mat = real_matrix(4, {{{4, 9}}, {{4, 8}}, {{4, 7}}, {{1, 6}}});
  expect_silent([&] { csr_matrix_symmetrize(mat); });
  EXPECT_EQ(entries_of(mat),
            (entry_rows{{{4, 15}}, {{4, 8}}, {{4, 7}}, {{1, 15}, {2, 8}, {3, 7}}}));
}

TEST(SymmetrizeNodiag, GivesTheValueOneEverywhereAndNoDiagonal) {
  // [ 5  2  . ]      [ .  1  1 ]
  // [ .  .  . ]  ->  [ 1  .  . ]
  // [ 0  .  7 ]      [ 1  .  . ]
  csr_matrix mat = real_matrix(3, {{{1, 5}, {2, 2}}, {}, {{3, 7}, {1, 0}}});
  expect_silent([&] { csr_matrix_symmetrize_nodiag(mat); });
  EXPECT_EQ(entries_of(mat), (entry_rows{{{2, 1}, {3, 1}}, {{1, 1}}, {{1, 1}}}));
  EXPECT_EQ(mat.ja.length(), 4);
}

TEST(SymmetrizeNodiag, TurnsAPatternIntoAnUndirectedGraph) {
  csr_matrix mat = pattern(3, {{2, 2, 1}, {3}, {}});
  expect_silent([&] { csr_matrix_symmetrize_nodiag(mat); });
  EXPECT_EQ(mat.type, matrix_structure_only);
  EXPECT_FALSE(mat.a.allocated());
  EXPECT_EQ(columns_of(mat), (column_rows{{2}, {3, 1}, {2}}));
}

TEST(Symmetrize, GivesTheRecordArraysOfItsOwn) {
  csr_matrix mat = real_matrix(2, {{{2, 1}}, {}});
  csr_matrix other;
  csr_matrix_transfer(other, mat);
  expect_silent([&] { csr_matrix_symmetrize(mat); });
  EXPECT_EQ(entries_of(mat), (entry_rows{{{2, 1}}, {{1, 1}}}));
  EXPECT_EQ(entries_of(other), (entry_rows{{{2, 1}}, {}}));
}

TEST(Symmetrize, OfAMatrixWithoutEntriesWarnsForTransposeAndSum) {
  csr_matrix mat = real_matrix(2, {{}, {}}, 1);
  const auto seen = observe([&] { csr_matrix_symmetrize(mat); });
  EXPECT_EQ(seen.output, std::string(tests::no_entries_warning) + tests::no_entries_warning);
  EXPECT_EQ(seen.stop, std::nullopt);
  EXPECT_EQ(entries_of(mat), entry_rows(2));
  EXPECT_EQ(mat.ja.length(), 1);
}

TEST(Symmetrize, WarnsOfArraysThatTheRecordNeverHad) {
  csr_matrix mat = real_matrix(0, {});
  mat.ja = {};
  mat.a = {};
  const auto seen = observe([&] { csr_matrix_symmetrize(mat); });
  EXPECT_EQ(seen.output, std::string(tests::no_entries_warning) + tests::no_entries_warning +
                             "deallocation error in csr_matrix_deallocate1\n"
                             "deallocation error in csr_matrix_deallocate2\n");
  EXPECT_EQ(entries_of(mat), entry_rows{});
}

TEST(Symmetrize, OfARecordThatHasNothingYetWarnsOfItsRowStartsToo) {
  for (const auto symmetrize : {csr_matrix_symmetrize, csr_matrix_symmetrize_nodiag}) {
    csr_matrix mat;
    const auto seen = observe([&] { symmetrize(mat); });
    EXPECT_EQ(seen.output, std::string(tests::no_entries_warning) + tests::no_entries_warning +
                               "deallocation error in csr_matrix_deallocate1\n"
                               "deallocation error in csr_matrix_deallocate3\n"
                               "deallocation error in csr_matrix_deallocate2\n");
    EXPECT_EQ(seen.stop, std::nullopt);
    EXPECT_EQ(entries_of(mat), entry_rows{});
  }
}

TEST(Symmetrize, StopsAtARectangularMatrixWithTheMessagesOfTheSum) {
  for (const auto symmetrize : {csr_matrix_symmetrize, csr_matrix_symmetrize_nodiag}) {
    const entry_rows rows{{{3, 1}}, {{1, 2}}};
    csr_matrix mat = real_matrix(3, rows);
    const auto seen = observe([&] { symmetrize(mat); });
    EXPECT_EQ(seen.output, " n =            2           3  m =            3           2\n");
    EXPECT_EQ(seen.stop, "try to sum two matrix of different row/column size");
    EXPECT_EQ(entries_of(mat), rows);
  }
}

TEST(Symmetrize, StopsAtEveryShortageWithTheMatrixUntouched) {
  const entry_rows rows{{{2, 1}}, {{2, 2}}};
  const auto stops =
      tests::stops_by_request([&] { return real_matrix(2, rows); }, csr_matrix_symmetrize,
                              [&](csr_matrix& mat) {
                                EXPECT_EQ(entries_of(mat), rows);
                                tests::expect_releasable(mat);
                              });
  const std::string row_starts = "allocation error in csr_matrix_initial";
  const std::string entries = "allocation error in csr_matrix_allocate";
  // Refusals of what it takes to find out whether the pattern is symmetric lead to the sum with the
  // transpose; where room for the entries of both is refused, the sum counts its own.
  EXPECT_EQ(stops,
            (std::vector<std::string>{tests::no_stop, tests::no_stop, row_starts, entries, entries,
                                      row_starts, "allocation error in csr_matrix_sum",
                                      tests::no_stop, tests::no_stop, entries, entries}));
}

TEST(Symmetrize, OfASymmetricPatternStopsOnlyWhereTheTransposeHasNoRoomEither) {
  // [ 1  2 ]
  // [ 3  . ]
  const entry_rows rows{{{1, 1}, {2, 2}}, {{1, 3}}};
  // Room for the sum, for a cursor a row, and for its row starts and columns; each refusal leads to
  // the sum with the transpose.
  EXPECT_EQ(tests::stops_by_request([&] { return real_matrix(2, rows); }, csr_matrix_symmetrize,
                                    tests::expect_releasable),
            std::vector<std::string>(4, tests::no_stop));
}

void expect_sum_with_transpose(const entry_rows& rows, std::int32_t n) {
  const entry_rows transposed = tests::dense::transpose(rows, n);
  csr_matrix mat = real_matrix(n, rows, 1);
  csr_matrix nodiag = real_matrix(n, rows);
  csr_matrix bare = pattern(n, columns_of(rows));
  observe([&] {
    csr_matrix_symmetrize(mat);
    csr_matrix_symmetrize_nodiag(nodiag);
    csr_matrix_symmetrize(bare);
  });
  RC_ASSERT(entries_of(mat) == tests::dense::sum(rows, transposed, n));
  RC_ASSERT(entries_of(nodiag) == tests::dense::union_nodiag(rows, transposed, n));
  RC_ASSERT(columns_of(bare) == columns_of(entries_of(mat)));
  RC_ASSERT(mat.ja.length() == std::max(csr_matrix_num_nz(mat), 1));
  RC_ASSERT(mat.a.length() == mat.ja.length());
  RC_ASSERT(bare.ja.length() == mat.ja.length());
  RC_ASSERT(nodiag.a.length() == std::max(csr_matrix_num_nz(nodiag), 1));
}

// Patterns that are symmetric need no transpose, so patterns that are, and nearly are, are tried.
RC_GTEST_PROP(SymmetrizeProperty, OfASymmetricPatternIsTheSumWithTheTransposeToo, ()) {
  const auto n = *rc::gen::inRange<std::int32_t>(1, 13);
  entry_rows rows = tests::mirrored_rows(n);
  expect_sum_with_transpose(rows, n);

  tests::spoil(rows);
  expect_sum_with_transpose(rows, n);
}

// So large, and its columns so far apart, that the transpose is built.
TEST(Symmetrize, OfALargeSymmetricPatternAllOverIsTheSumWithTheTranspose) {
  constexpr std::int32_t n = 20011;
  const entry_rows rows = tests::mirrored_all_over(n, 24);
  csr_matrix mat = real_matrix(n, rows);
  csr_matrix mat_t;
  csr_matrix expected;
  csr_matrix_transpose(mat, mat_t);
  csr_matrix_sum(mat, mat_t, expected);
  expect_silent([&] { csr_matrix_symmetrize(mat); });
  EXPECT_EQ(entries_of(mat), entries_of(expected));
}

// So large that memory is asked for ahead.
TEST(Symmetrize, OfALargeBandAddsEachEntryToItsPartner) {
  constexpr std::int32_t n = 20011;
  constexpr std::int32_t reach = 20;
  csr_matrix mat = real_matrix(n, tests::mirrored_band(n, reach));
  entry_rows expected = tests::mirrored_band(n, reach);
  for (std::int32_t i = 1; i <= n; ++i)
    for (tests::entry& e : expected[static_cast<std::size_t>(i - 1)])
      e.value += e.column + 0.25 * (i - e.column);
  expect_silent([&] { csr_matrix_symmetrize(mat); });
  EXPECT_EQ(entries_of(mat), expected);
}

RC_GTEST_PROP(SymmetrizeProperty, IsTheSumWithTheTranspose, ()) {
  const auto n = *tests::any_size();
  const auto rows = *tests::any_rows(n, n);
  const entry_rows transposed = tests::dense::transpose(rows, n);
  const entry_rows expected = tests::dense::sum(rows, transposed, n);
  const entry_rows expected_nodiag = tests::dense::union_nodiag(rows, transposed, n);
  csr_matrix mat = real_matrix(n, rows, 2);
  csr_matrix nodiag = real_matrix(n, rows);
  csr_matrix graph = pattern(n, columns_of(rows));
  observe([&] { csr_matrix_symmetrize(mat); });
  observe([&] { csr_matrix_symmetrize_nodiag(nodiag); });
  observe([&] { csr_matrix_symmetrize_nodiag(graph); });
  RC_ASSERT(entries_of(mat) == expected);
  RC_ASSERT(entries_of(nodiag) == expected_nodiag);
  RC_ASSERT(columns_of(graph) == columns_of(expected_nodiag));
  RC_ASSERT(mat.ja.length() == std::max(csr_matrix_num_nz(mat), 1));
}

}  // namespace
