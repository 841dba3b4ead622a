// SPDX-License-Identifier: MIT
#include "../support/dense.hpp"
#include "../support/generators.hpp"
#include "../support/observe.hpp"
#include "../support/refusals.hpp"

#include <csr_matrix_mod/ordering.hpp>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

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

TEST(Clean, MergesARepeatedColumnWhereItStoodFirst) {
  csr_matrix mat = real_matrix(7, {{{4, 1}, {2, 2}, {4, 3}, {7, 4}, {2, 5}}});
  expect_silent([&] { csr_matrix_clean(mat); });
  EXPECT_EQ(entries_of(mat), (entry_rows{{{4, 4}, {2, 7}, {7, 4}}}));
  EXPECT_EQ(mat.ja.length(), 3);
  EXPECT_EQ(mat.a.length(), 3);
}

TEST(Clean, AddsValuesThatMeetInStoredOrder) {
  // Another order would give 2 or 0: 1e16 + 1 is 1e16.
  csr_matrix mat = real_matrix(2, {{{2, 1e16}, {1, 0}, {2, 1}, {2, -1e16}, {2, 1}}});
  expect_silent([&] { csr_matrix_clean(mat); });
  EXPECT_EQ(entries_of(mat), (entry_rows{{{2, 1}, {1, 0}}}));
}

TEST(Clean, LetsNextRowsHaveTheSameColumns) {
  // [ 3  5  . ]
  // [ .  .  . ]
  // [ 4  .  . ]
  csr_matrix mat = real_matrix(3, {{}, {{1, 1}, {2, 5}, {1, 2}}, {}, {{1, 1}, {1, 3}}, {}});
  expect_silent([&] { csr_matrix_clean(mat); });
  EXPECT_EQ(entries_of(mat), (entry_rows{{}, {{1, 3}, {2, 5}}, {}, {{1, 4}}, {}}));
}

TEST(Clean, ResizesTheStorageAlsoWhenNothingWasMerged) {
  const entry_rows rows{{{3, 1}, {1, 2}}, {}, {{2, -0.0}}};
  csr_matrix mat = real_matrix(3, rows, 6);
  expect_silent([&] { csr_matrix_clean(mat); });
  EXPECT_EQ(entries_of(mat), rows);
  EXPECT_EQ(mat.ja.length(), 3);
  EXPECT_EQ(mat.a.length(), 3);
}

TEST(Clean, LeavesSortedRowsAndCutsTheirStorage) {
  const entry_rows rows{{{1, 1}, {3, 2}}, {}, {{2, -0.0}}};
  csr_matrix mat = real_matrix(3, rows, 6);
  expect_silent([&] { csr_matrix_clean(mat); });
  EXPECT_EQ(entries_of(mat), rows);
  EXPECT_EQ(mat.ja.length(), 3);
  EXPECT_EQ(mat.a.length(), 3);
}

TEST(Clean, OfAPatternMergesColumnsOnly) {
  csr_matrix mat = pattern(3, {{3, 1, 3}, {2, 2}}, 4);
  expect_silent([&] { csr_matrix_clean(mat); });
  EXPECT_EQ(columns_of(mat), (column_rows{{3, 1}, {2}}));
  EXPECT_EQ(mat.ja.length(), 3);
  EXPECT_FALSE(mat.a.allocated());
}

TEST(Clean, OfAMatrixWithoutEntriesStops) {
  for (const std::size_t n : {std::size_t{0}, std::size_t{2}}) {
    csr_matrix mat = real_matrix(2, entry_rows(n), 1);
    const auto seen = observe([&] { csr_matrix_clean(mat); });
    EXPECT_EQ(seen.output, " try to reallocating            0  nonzeros in csr_matrix_allocate\n");
    EXPECT_EQ(seen.stop, " ");
    EXPECT_EQ(entries_of(mat), entry_rows(n));
    tests::expect_releasable(mat);
  }
}

TEST(Clean, SaysSoWhenThereIsNoRoomForItsMarker) {
  const entry_rows rows{{{1, 1}, {1, 2}}};
  csr_matrix mat = real_matrix(1, rows);
  tests::observed seen;
  {
    const tests::refuse_allocation refused(0);
    seen = observe([&] { csr_matrix_clean(mat); });
  }
  EXPECT_EQ(seen.output, " problem allocating in matrix_clean\n");
  EXPECT_EQ(seen.stop, " ");
  EXPECT_EQ(entries_of(mat), rows);
}

TEST(Clean, StopsAtEveryShortageWithARecordThatCanBeReleased) {
  const auto stops = tests::refuse_each_request(
      [] {
        return real_matrix(1, {{{1, 1}, {1, 2}}});
      },
      csr_matrix_clean, [](csr_matrix& mat) { tests::expect_releasable(mat); });
  EXPECT_EQ(stops, (std::vector<std::string>{" ", "allocation error in csr_matrix_allocate",
                                             "allocation error in csr_matrix_allocate"}));
}

RC_GTEST_PROP(CleanProperty, IsTheAdditionPlaceByPlace, ()) {
  const auto n = *tests::any_size();
  const auto m = *tests::any_size();
  const auto rows = *tests::any_rows(n, m);
  const auto spare = *rc::gen::inRange(0, 4);
  const entry_rows nothing(rows.size());
  const entry_rows expected = tests::dense::sum(rows, nothing, m);
  csr_matrix mat = real_matrix(m, rows, spare);
  csr_matrix bare = pattern(m, columns_of(rows), spare);
  RC_PRE(csr_matrix_num_nz(mat) > 0);
  expect_silent([&] { csr_matrix_clean(mat); });
  expect_silent([&] { csr_matrix_clean(bare); });
  RC_ASSERT(entries_of(mat) == expected);
  RC_ASSERT(columns_of(bare) == columns_of(expected));
  RC_ASSERT(mat.ja.length() == csr_matrix_num_nz(mat));
  RC_ASSERT(mat.a.length() == csr_matrix_num_nz(mat));
  RC_ASSERT(bare.ja.length() == csr_matrix_num_nz(mat));
}

}  // namespace
