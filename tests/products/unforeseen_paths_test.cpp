// SPDX-License-Identifier: MIT
// When rows of a product are walked without a branch. No result depends on it, so that nothing else
// would notice.
#include "../../src/products/unforeseen_paths.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <random>
#include <vector>

using namespace csr_matrix_mod::products;

namespace {

constexpr std::int32_t entries_a_row = 10;
constexpr int paths_a_row = 50;

// Walks so many rows, of which path p of row i leads to a new column where `is_new(i, p)`. How the
// last row was walked that was not watched.
row_walk walked(paths_watched& rows, int number,
                const std::function<bool(int row, int path)>& is_new, int paths = paths_a_row) {
  row_walk last = row_walk::watched;
  for (int i = 0; i < number; ++i) {
    const row_walk walk = rows.next_row(entries_a_row);
    if (walk != row_walk::watched) {
      last = walk;
      continue;
    }
    for (int p = 0; p < paths; ++p) rows.see(is_new(i, p));
    rows.end_watched_row();
  }
  return last;
}

bool always(int /*row*/, int /*path*/) { return true; }

class UnforeseenPaths : public testing::Test {
 protected:
  std::function<bool(int, int)> at_random() {
    return [this](int, int) { return (random() & 1U) != 0; };
  }

  std::mt19937 random;  // NOLINT(cert-msc51-cpp): the same numbers every time
  paths_watched rows;
};

TEST_F(UnforeseenPaths, AreNotThoseThatAllLeadToNewColumns) {
  EXPECT_EQ(walked(rows, 100, always), row_walk::by_branch);
}

TEST_F(UnforeseenPaths, AreNotThoseWithOutcomesInTurn) {
  EXPECT_EQ(walked(rows, 5000, [](int, int p) { return p % 3 == 0; }), row_walk::by_branch);
}

// Right rows of one or two paths, nobody foresees which: the last outcomes alone tell neither which
// path is the first of its right row nor which right row of how many it is.
TEST_F(UnforeseenPaths, AreNotThoseThatDependOnWhereInItsRowAPathIs) {
  const std::function<bool(unsigned left_entry, unsigned right_entry)> kinds[] = {
      [](unsigned, unsigned right_entry) { return right_entry == 0; },
      [](unsigned left_entry, unsigned) { return (0b101'1001U >> left_entry & 1U) != 0; }};
  for (const auto& is_new : kinds) {
    row_walk last = row_walk::watched;
    for (int i = 0; i < 20000; ++i) {
      const row_walk walk = rows.next_row(entries_a_row);
      if (walk != row_walk::watched) {
        last = walk;
        continue;
      }
      for (unsigned left_entry = 0; left_entry < 7; ++left_entry) {
        rows.begin_right_row();
        const unsigned paths = 1 + random() % 2;
        for (unsigned right_entry = 0; right_entry < paths; ++right_entry)
          rows.see(is_new(left_entry, right_entry));
      }
      rows.end_watched_row();
    }
    EXPECT_EQ(last, row_walk::by_branch);
  }
}

// Far more outcomes than the last ones tell apart.
TEST_F(UnforeseenPaths, AreNotThoseOfRowsThatRepeatOneOfTheRowsBefore) {
  constexpr int paths = 4000;
  std::vector<bool> drawn;
  for (int p = 0; p < 2 * paths; ++p) drawn.push_back((random() & 1U) != 0);
  const auto of_two_kinds = [&](int i, int p) {
    return drawn[static_cast<std::size_t>(i % 2 * paths + p)];
  };
  EXPECT_EQ(walked(rows, 20000, of_two_kinds, paths), row_walk::by_branch);
}

TEST_F(UnforeseenPaths, AreThoseWithOutcomesAtRandom) {
  EXPECT_EQ(walked(rows, 100, at_random()), row_walk::without_branch);
}

TEST_F(UnforeseenPaths, AreThoseOfRowsSoLongThatTheyAreSeenInPart) {
  EXPECT_EQ(walked(rows, 5, at_random(), 100000), row_walk::without_branch);
}

TEST_F(UnforeseenPaths, AreWatchedAgain) {
  EXPECT_EQ(walked(rows, 2000, always), row_walk::by_branch);
  EXPECT_EQ(walked(rows, 5000, at_random()), row_walk::without_branch);
  EXPECT_EQ(walked(rows, 10000, always), row_walk::by_branch);
}

TEST_F(UnforeseenPaths, AreWatchedInOneRowOfManyOnly) {
  int watched = 0;
  for (int i = 0; i < 100000; ++i)
    if (rows.next_row(entries_a_row) == row_walk::watched) {
      ++watched;
      for (int p = 0; p < paths_a_row; ++p) rows.see(true);
      rows.end_watched_row();
    }
  EXPECT_GT(watched, 100);
  EXPECT_LT(watched, 2500);
}

TEST_F(UnforeseenPaths, AreLookedForInProductsOfSomeSize) {
  EXPECT_FALSE(paths_watched::are_worth_it(1000));
  EXPECT_TRUE(paths_watched::are_worth_it(100000));
}

}  // namespace
