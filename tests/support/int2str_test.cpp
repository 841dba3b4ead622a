// SPDX-License-Identifier: MIT
#include <csr_matrix_mod/support.hpp>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

namespace {

using csr_matrix_mod::digit;
using csr_matrix_mod::int2str;

constexpr std::int32_t smallest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t largest = std::numeric_limits<std::int32_t>::max();

TEST(Digit, CountsTheDigitsOfAPositiveInteger) {
  EXPECT_EQ(digit(1), 1);
  EXPECT_EQ(digit(9), 1);
  EXPECT_EQ(digit(10), 2);
  EXPECT_EQ(digit(99), 2);
  EXPECT_EQ(digit(100), 3);
  EXPECT_EQ(digit(999999999), 9);
  EXPECT_EQ(digit(1000000000), 10);
  EXPECT_EQ(digit(largest), 10);
}

TEST(Digit, Is1For0AndBelow) {
  EXPECT_EQ(digit(0), 1);
  EXPECT_EQ(digit(-10), 1);
  EXPECT_EQ(digit(smallest), 1);
}

TEST(Int2Str, FillsTheWidthExactly) { EXPECT_EQ(int2str(10, 2), "10"); }

TEST(Int2Str, JustifiesToTheRight) {
  EXPECT_EQ(int2str(10, 5), "   10");
  EXPECT_EQ(int2str(-10, 5), "  -10");
}

TEST(Int2Str, HasRoomForTheSmallestAndTheLargestInteger) {
  EXPECT_EQ(int2str(smallest, 11), "-2147483648");
  EXPECT_EQ(int2str(largest, 10), "2147483647");
}

TEST(Int2Str, IsAllAsterisksWhenTheNumberDoesNotFit) {
  EXPECT_EQ(int2str(100, 2), "**");
  EXPECT_EQ(int2str(-1, 1), "*");
}

TEST(Int2Str, IsEmptyForNoWidth) {
  EXPECT_EQ(int2str(1, 0), "");
  EXPECT_EQ(int2str(1, -3), "");
}

RC_GTEST_PROP(Int2Str, OfWidthDigitIsTheNumberWithoutPadding, ()) {
  const auto value = *rc::gen::inRange<std::int32_t>(0, largest);
  RC_ASSERT(int2str(value, digit(value)) == std::to_string(value));
}

}  // namespace
