// SPDX-License-Identifier: MIT
#include <csr_matrix_mod/support.hpp>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

namespace {

using csr_matrix_mod::quicksort;

struct sorted {
  std::vector<std::int32_t> keys, perm;
  bool operator==(const sorted&) const = default;
};

sorted by_quicksort(std::vector<std::int32_t> keys) {
  std::vector<std::int32_t> perm(keys.size(), -77);
  quicksort(keys, perm);
  return {keys, perm};
}

// Pairs of a key and where it stood, in order: equal keys in the order in which they stood.
sorted by_pairs(const std::vector<std::int32_t>& keys) {
  std::vector<std::pair<std::int32_t, std::int32_t>> pairs;
  for (const std::int32_t key : keys)
    pairs.emplace_back(key, static_cast<std::int32_t>(pairs.size()) + 1);
  std::sort(pairs.begin(), pairs.end());
  sorted result;
  for (const auto& [key, position] : pairs) {
    result.keys.push_back(key);
    result.perm.push_back(position);
  }
  return result;
}

TEST(Quicksort, SaysWhereEachKeyStood) {
  EXPECT_EQ(by_quicksort({4, 1, 4, 2}), (sorted{{1, 2, 4, 4}, {2, 4, 1, 3}}));
}

TEST(Quicksort, LeavesNoKeysAlone) { EXPECT_EQ(by_quicksort({}), sorted{}); }

TEST(Quicksort, LeavesOneKeyAlone) { EXPECT_EQ(by_quicksort({9}), (sorted{{9}, {1}})); }

TEST(Quicksort, KeepsTheOrderOfEqualKeys) {
  EXPECT_EQ(by_quicksort({5, 5, 5}), (sorted{{5, 5, 5}, {1, 2, 3}}));
}

TEST(Quicksort, OrdersTheSmallestAndTheLargestInteger) {
  constexpr std::int32_t smallest = std::numeric_limits<std::int32_t>::min();
  constexpr std::int32_t largest = std::numeric_limits<std::int32_t>::max();
  EXPECT_EQ(by_quicksort({largest, 0, smallest}), (sorted{{smallest, 0, largest}, {3, 2, 1}}));
}

TEST(Quicksort, TouchesOnlyTheKeysItIsGiven) {
  std::vector<std::int32_t> keys = {3, 2, 1, 0};
  std::vector<std::int32_t> perm(4, -77);
  quicksort({keys.data(), 3}, {perm.data(), 3});
  EXPECT_EQ(keys, (std::vector<std::int32_t>{1, 2, 3, 0}));
  EXPECT_EQ(perm, (std::vector<std::int32_t>{3, 2, 1, -77}));
}

RC_GTEST_PROP(Quicksort, AgreesWithSortedPairs, (const std::vector<std::int32_t>& keys)) {
  RC_ASSERT(by_quicksort(keys) == by_pairs(keys));
}

RC_GTEST_PROP(Quicksort, AgreesWithSortedPairsWhenKeysRepeat, ()) {
  const auto keys =
      *rc::gen::container<std::vector<std::int32_t>>(rc::gen::inRange<std::int32_t>(1, 6));
  RC_ASSERT(by_quicksort(keys) == by_pairs(keys));
}

}  // namespace
