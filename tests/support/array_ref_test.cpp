// SPDX-License-Identifier: MIT
#include "refuse.hpp"

#include <csr_matrix_mod/csr_matrix.hpp>
#include <csr_matrix_mod/support.hpp>

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <utility>

namespace {

using csr_matrix_mod::array_ref;
using csr_matrix_mod::csr_matrix;

array_ref<int> three_elements() {
  array_ref<int> array;
  EXPECT_TRUE(array.allocate(3));
  for (int i = 1; i <= 3; ++i) array(i) = 10 * i;
  return array;
}

TEST(ArrayRef, MovesButDoesNotCopyByAccident) {
  static_assert(!std::is_copy_constructible_v<array_ref<int>>);
  static_assert(!std::is_copy_assignable_v<array_ref<int>>);
  static_assert(std::is_nothrow_move_constructible_v<array_ref<int>>);
  static_assert(std::is_nothrow_move_assignable_v<array_ref<int>>);
  static_assert(!std::is_copy_constructible_v<csr_matrix>);
  static_assert(std::is_nothrow_move_constructible_v<csr_matrix>);
}

TEST(ArrayRef, GivesOutConstElementsWhenItIsConst) {
  using reading = const array_ref<int>;
  static_assert(std::is_same_v<decltype(std::declval<reading&>()(1)), const int&>);
  static_assert(std::is_same_v<decltype(std::declval<reading&>().data()), const int*>);
  static_assert(std::is_same_v<decltype(std::declval<reading&>().begin()), const int*>);
  static_assert(std::is_same_v<decltype(std::declval<reading&>().end()), const int*>);
}

TEST(ArrayRef, BeginsNull) {
  const array_ref<int> array;
  EXPECT_FALSE(array.allocated());
  EXPECT_EQ(array.length(), 0);
  EXPECT_EQ(array.begin(), array.end());
}

TEST(ArrayRef, HoldsAsManyElementsAsWereAskedFor) {
  array_ref<int> array = three_elements();
  EXPECT_TRUE(array.allocated());
  EXPECT_EQ(array.length(), 3);
  EXPECT_EQ(array.end() - array.begin(), 3);
  EXPECT_EQ(array.data(), &array(1));
  EXPECT_EQ(*(array.end() - 1), 30);
}

TEST(ArrayRef, OfLength0IsNotNull) {
  array_ref<int> array;
  EXPECT_TRUE(array.allocate(0));
  EXPECT_TRUE(array.allocated());
  EXPECT_EQ(array.length(), 0);
  EXPECT_TRUE(array.release());
}

TEST(ArrayRef, OfNegativeLengthHasLength0) {
  array_ref<int> array;
  EXPECT_TRUE(array.allocate(-5));
  EXPECT_TRUE(array.allocated());
  EXPECT_EQ(array.length(), 0);
}

TEST(ArrayRef, IsUnchangedWhenThereIsNoStorage) {
  array_ref<int> array = three_elements();
  const tests::refuse_allocation refused(0);
  EXPECT_FALSE(array.allocate(100));
  EXPECT_TRUE(tests::refuse_allocation::reached());
  EXPECT_EQ(array.length(), 3);
  EXPECT_EQ(array(3), 30);
}

TEST(ArrayRef, RefusesALengthThatNoMemoryHas) {
  array_ref<std::array<char, 64>> array;
  EXPECT_FALSE(array.allocate(std::numeric_limits<std::int64_t>::max()));
  EXPECT_FALSE(array.allocated());
}

TEST(ArrayRef, ReleasesOnce) {
  array_ref<int> array = three_elements();
  EXPECT_TRUE(array.release());
  EXPECT_FALSE(array.allocated());
  EXPECT_EQ(array.length(), 0);
  EXPECT_FALSE(array.release());
}

TEST(ArrayRef, SharesItsElementsWithItsAliases) {
  array_ref<int> array = three_elements();
  array_ref<int> second = array.alias();
  EXPECT_EQ(second.length(), 3);
  second(2) = 99;
  EXPECT_EQ(array(2), 99);
}

TEST(ArrayRef, KeepsStorageForTheLastAlias) {
  array_ref<int> array = three_elements();
  array_ref<int> second = array.alias();
  EXPECT_TRUE(array.release());
  EXPECT_EQ(second(3), 30);
  EXPECT_TRUE(second.release());
}

TEST(ArrayRef, LeavesItsAliasesAloneWhenItIsGivenNewStorage) {
  array_ref<int> array = three_elements();
  const array_ref<int> second = array.alias();
  ASSERT_TRUE(array.allocate(1));
  array(1) = -1;
  EXPECT_EQ(second.length(), 3);
  EXPECT_EQ(second(1), 10);
}

TEST(ArrayRef, IsNullAfterItWasMovedFrom) {
  array_ref<int> array = three_elements();
  const array_ref<int> taken = std::move(array);
  EXPECT_FALSE(array.allocated());  // NOLINT(bugprone-use-after-move): that is the promise
  EXPECT_EQ(array.length(), 0);
  EXPECT_EQ(taken(1), 10);
}

TEST(ArrayRef, SurvivesBeingMovedToItself) {
  array_ref<int> array = three_elements();
  array_ref<int>& same = array;
  array = std::move(same);
  EXPECT_EQ(array.length(), 3);
  EXPECT_EQ(array(3), 30);
}

TEST(ArrayRef, DropsWhatItHeldWhenItIsAssignedTo) {
  array_ref<int> array = three_elements();
  array_ref<int> second = array.alias();
  array = {};
  EXPECT_FALSE(array.allocated());
  EXPECT_EQ(second(1), 10);
}

TEST(ArrayRef, WrapsStorageOfTheCallerWithoutOwningIt) {
  std::array<int, 3> own = {1, 2, 3};
  array_ref<int> array = array_ref<int>::wrap(own.data(), 3);
  EXPECT_EQ(array.data(), own.data());
  EXPECT_EQ(array.length(), 3);
  array(2) = 7;
  EXPECT_TRUE(array.release());
  EXPECT_EQ(own, (std::array<int, 3>{1, 7, 3}));
}

#ifndef NDEBUG
TEST(ArrayRefDeathTest, AssertsThatAnElementIsWithin1ToTheLength) {
  const array_ref<int> array = three_elements();
  EXPECT_DEATH((void)array(0), "1 <= i && i <= length_");
  EXPECT_DEATH((void)array(4), "1 <= i && i <= length_");
}
#endif

}  // namespace
