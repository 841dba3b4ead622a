// SPDX-License-Identifier: MIT
// Text that needs no storage.
#include "../../src/support/short_text.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

namespace {

using csr_matrix_mod::short_text;

TEST(ShortText, JoinsTextsAndNumbers) {
  short_text text;
  EXPECT_EQ(text.view(), "");
  EXPECT_EQ(text.append("row ").append(std::int64_t{-3}).append(" of ").append(12).view(),
            "row -3 of 12");
}

TEST(ShortText, HoldsTheLongestNumber) {
  EXPECT_EQ(short_text().append(std::numeric_limits<std::int64_t>::min()).view(),
            "-9223372036854775808");
}

TEST(ShortText, CutsWhatGoesBeyondItsRoom) {
  constexpr std::size_t room = 4608;
  short_text text;
  text.append(std::string(room - 2, 'x')).append("yz, cut").append("cut");
  EXPECT_EQ(text.view(), std::string(room - 2, 'x') + "yz");
  EXPECT_EQ(text.append(7).view().size(), room);
  EXPECT_EQ(short_text().append(std::string(2 * room, 'x')).view(), std::string(room, 'x'));
}

}  // namespace
