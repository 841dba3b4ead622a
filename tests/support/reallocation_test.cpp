// SPDX-License-Identifier: MIT
#include "refuse.hpp"

#include <csr_matrix_mod/support.hpp>

#include <gtest/gtest.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace {

using csr_matrix_mod::array_ref;

// The twins under one name, so that every test runs for both.
std::int32_t expand(array_ref<std::int32_t>& array, std::int32_t new_length) {
  return csr_matrix_mod::iexpand1(array, new_length);
}
std::int32_t expand(array_ref<double>& array, std::int32_t new_length) {
  return csr_matrix_mod::expand1(array, new_length);
}

template <class T>
class Expand : public testing::Test {
 protected:
  // 1, 2, ..., length
  static array_ref<T> counting(std::int32_t length) {
    array_ref<T> array;
    EXPECT_TRUE(array.allocate(length));
    for (std::int32_t i = 1; i <= length; ++i) array(i) = static_cast<T>(i);
    return array;
  }

  static std::vector<T> leading(const array_ref<T>& array, std::int32_t length) {
    return {array.begin(), array.begin() + length};
  }
};
using element_types = testing::Types<std::int32_t, double>;
TYPED_TEST_SUITE(Expand, element_types);

TYPED_TEST(Expand, From5To3KeepsTheFirst3Elements) {
  auto array = this->counting(5);
  EXPECT_EQ(expand(array, 3), 0);
  EXPECT_EQ(array.length(), 3);
  EXPECT_EQ(this->leading(array, 3), (std::vector<TypeParam>{1, 2, 3}));
}

TYPED_TEST(Expand, From5To8KeepsAll5Elements) {
  auto array = this->counting(5);
  EXPECT_EQ(expand(array, 8), 0);
  EXPECT_EQ(array.length(), 8);
  EXPECT_EQ(this->leading(array, 5), (std::vector<TypeParam>{1, 2, 3, 4, 5}));
}

TYPED_TEST(Expand, ToTheSameLengthKeepsAllElementsInNewStorage) {
  auto array = this->counting(5);
  const auto before = array.alias();
  EXPECT_EQ(expand(array, 5), 0);
  EXPECT_NE(array.data(), before.data());
  EXPECT_EQ(this->leading(array, 5), (std::vector<TypeParam>{1, 2, 3, 4, 5}));
}

TYPED_TEST(Expand, BelowNothingGivesStorageOfLength0) {
  for (const std::int32_t new_length : {0, -3}) {
    auto array = this->counting(5);
    EXPECT_EQ(expand(array, new_length), 0);
    EXPECT_TRUE(array.allocated());
    EXPECT_EQ(array.length(), 0);
  }
}

TYPED_TEST(Expand, FromLength0GivesStorage) {
  auto array = this->counting(0);
  EXPECT_EQ(expand(array, 4), 0);
  EXPECT_EQ(array.length(), 4);
}

TYPED_TEST(Expand, LeavesOtherReferencesTheOldStorage) {
  auto array = this->counting(5);
  const auto second = array.alias();
  EXPECT_EQ(expand(array, 2), 0);
  array(1) = 77;
  EXPECT_EQ(second.length(), 5);
  EXPECT_EQ(this->leading(second, 5), (std::vector<TypeParam>{1, 2, 3, 4, 5}));
}

TYPED_TEST(Expand, LeavesTheCallerItsWrappedStorage) {
  std::vector<TypeParam> own = {1, 2, 3};
  auto array = array_ref<TypeParam>::wrap(own.data(), 3);
  EXPECT_EQ(expand(array, 2), 0);
  EXPECT_NE(array.data(), own.data());
  array(1) = 77;
  EXPECT_EQ(this->leading(array, 2), (std::vector<TypeParam>{77, 2}));
  EXPECT_EQ(own, (std::vector<TypeParam>{1, 2, 3}));
}

TYPED_TEST(Expand, KeepsTheElementsOfABlockThatMustMove) {
  auto array = this->counting(1000);
  auto neighbour = this->counting(1000);
  EXPECT_EQ(expand(array, 4000000), 0);
  EXPECT_EQ(this->leading(array, 1000), this->leading(neighbour, 1000));
  EXPECT_EQ(expand(array, 1000), 0);
  EXPECT_EQ(this->leading(array, 1000), this->leading(neighbour, 1000));
}

TYPED_TEST(Expand, SaysNonZeroAndLeavesTheArrayAloneWhenThereIsNoStorage) {
  auto array = this->counting(5);
  const tests::refuse_allocation refused(0);
  EXPECT_NE(expand(array, 8), 0);
  EXPECT_TRUE(tests::refuse_allocation::reached());
  EXPECT_EQ(array.length(), 5);
  EXPECT_EQ(this->leading(array, 5), (std::vector<TypeParam>{1, 2, 3, 4, 5}));
}

#if defined(__GLIBC__)

// What little is cut off a large block would be kept for small requests, and the next block of the
// size before would find no room here. More than a page is given back.
TYPED_TEST(Expand, CutsNothingOffABlockThatFitsClosely) {
  constexpr std::int32_t length = 100000;
  array_ref<TypeParam> array = this->counting(length);
  TypeParam* const block = array.data();
  const std::size_t before = ::malloc_usable_size(block);
  expand(array, length - 10);
  EXPECT_EQ(array.length(), length - 10);
  EXPECT_EQ(array.data(), block);
  EXPECT_EQ(::malloc_usable_size(block), before);
  EXPECT_EQ(array(length - 10), TypeParam{length - 10});
  expand(array, length - 3000);
  EXPECT_EQ(array.length(), length - 3000);
  EXPECT_LE(::malloc_usable_size(array.data()), before - 4096);
}

#endif

TEST(Expand1, KeepsEveryBitOfAValue) {
  array_ref<double> array;
  ASSERT_TRUE(array.allocate(3));
  array(1) = -0.0;
  array(2) = std::numeric_limits<double>::signaling_NaN();
  array(3) = std::numeric_limits<double>::denorm_min();
  const auto bits = [&array](int i) { return std::bit_cast<std::uint64_t>(*(array.data() + i)); };
  const std::vector<std::uint64_t> before = {bits(0), bits(1), bits(2)};
  ASSERT_EQ(csr_matrix_mod::expand1(array, 4), 0);
  EXPECT_EQ((std::vector<std::uint64_t>{bits(0), bits(1), bits(2)}), before);
}

}  // namespace
