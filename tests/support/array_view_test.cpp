// SPDX-License-Identifier: MIT
#include <csr_matrix_mod/support.hpp>

#include <gtest/gtest.h>

#include <array>
#include <numeric>
#include <ranges>
#include <span>
#include <type_traits>
#include <vector>

namespace {

using csr_matrix_mod::array_ref;
using csr_matrix_mod::array_view;

using reading = array_view<const int>;
using writing = array_view<int>;

TEST(ArrayView, IsTriviallyCopyable) {
  static_assert(std::is_trivially_copyable_v<reading>);
  static_assert(std::is_trivially_copyable_v<writing>);
}

TEST(ArrayView, ReadsWhereWritingIsAllowedButNotTheOtherWayRound) {
  static_assert(std::is_convertible_v<writing, reading>);
  static_assert(!std::is_convertible_v<reading, writing>);
  static_assert(std::is_convertible_v<array_ref<int>&, writing>);
  static_assert(std::is_convertible_v<const array_ref<int>&, reading>);
  static_assert(!std::is_convertible_v<const array_ref<int>&, writing>);
  static_assert(!std::is_convertible_v<const std::vector<int>&, writing>);
}

TEST(ArrayView, IsNotMadeFromElementsOfAnotherType) {
  static_assert(!std::is_convertible_v<std::vector<long>&, reading>);
  static_assert(!std::is_convertible_v<std::vector<unsigned>&, reading>);
}

TEST(ArrayView, ToWriteIsNotMadeFromATemporary) {
  static_assert(!std::is_convertible_v<std::vector<int>, writing>);
  static_assert(std::is_convertible_v<std::vector<int>, reading>);  // for the length of one call
  static_assert(std::is_convertible_v<std::span<int>, writing>);    // whose elements stay
}

TEST(ArrayView, OutlivedByItsElementsGivesOutIterators) {
  static_assert(std::ranges::borrowed_range<writing>);
  static_assert(std::ranges::contiguous_range<writing>);
}

TEST(ArrayView, BeginsEmpty) {
  const reading view;
  EXPECT_EQ(view.length(), 0);
  EXPECT_EQ(view.begin(), view.end());
}

TEST(ArrayView, IsMadeFromAPointerAndALength) {
  const int elements[] = {5, 6, 7};
  const reading view(elements, 2);
  EXPECT_EQ(view.length(), 2);
  EXPECT_EQ(view(1), 5);
  EXPECT_EQ(view(2), 6);
  EXPECT_EQ(view.data(), elements);
}

TEST(ArrayView, IsMadeFromAnyContiguousRange) {
  std::vector<int> vector = {1, 2, 3};
  std::array<int, 2> array = {4, 5};
  array_ref<int> ref;
  ASSERT_TRUE(ref.allocate(1));
  ref(1) = 6;
  const auto last = [](reading view) { return view(view.length()); };
  EXPECT_EQ(last(vector), 3);
  EXPECT_EQ(last(array), 5);
  EXPECT_EQ(last(std::span(vector).first(2)), 2);
  EXPECT_EQ(last(ref), 6);
}

TEST(ArrayView, WritesTheElementsOfTheirOwner) {
  std::vector<int> elements = {1, 2, 3};
  const writing view = elements;
  view(2) = 20;
  EXPECT_EQ(elements, (std::vector<int>{1, 20, 3}));
}

TEST(ArrayView, IsARange) {
  const std::vector<int> elements = {1, 2, 3};
  const reading view = elements;
  EXPECT_EQ(std::accumulate(view.begin(), view.end(), 0), 6);
}

#ifndef NDEBUG
TEST(ArrayViewDeathTest, AssertsThatAnElementIsWithin1ToTheLength) {
  const std::vector<int> elements = {1, 2, 3};
  const reading view = elements;
  EXPECT_DEATH((void)view(0), "1 <= i && i <= length_");
  EXPECT_DEATH((void)view(4), "1 <= i && i <= length_");
}
#endif

}  // namespace
