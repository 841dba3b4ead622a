// SPDX-License-Identifier: MIT
#include "../../src/support/free_layout.hpp"

#include "process.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

namespace {

using csr_matrix_mod::free_layout;

template <class... Item>
std::string line(const Item&... items) {
  std::string text;
  free_layout layout(text);
  (layout.put(items), ...);
  return text;
}

TEST(FreeLayout, BeginsWithOneBlank) { EXPECT_EQ(line("text"), " text"); }

TEST(FreeLayout, PutsTextsSideBySide) { EXPECT_EQ(line("two ", "texts"), " two texts"); }

TEST(FreeLayout, JustifiesAnIntegerIn11ColumnsAfterABlank) {
  EXPECT_EQ(line(7), "           7");
  EXPECT_EQ(line("text ", 12, " text"), " text           12  text");
}

TEST(FreeLayout, WritesATruthValueAsOneLetter) { EXPECT_EQ(line(false, true), " F T"); }

TEST(FreeLayout, AppendsToWhatTheLineHolds) {
  std::string text = "before";
  free_layout layout(text);
  layout.put(1);
  EXPECT_EQ(text, "before           1");
}

TEST(FreeLayout, GivesTheBytesOfAFortranProgram) {
  SKIP_WITHOUT(FORTRAN_LINES);
  constexpr std::int32_t smallest = std::numeric_limits<std::int32_t>::min();
  constexpr std::int32_t largest = std::numeric_limits<std::int32_t>::max();
  std::string lines;
  for (const std::string& text : {line("text"), line("two ", "texts"), line(""), line(0),
                                  line(7, -7), line(largest, smallest), line("text ", 12, " text"),
                                  line(12, "text", "text", 34), line(true), line(false, true),
                                  line("text", true, "text"), line(1, false, 1), line("", 1, "")})
    lines += text + "\n";
  EXPECT_EQ(tests::run_process({FORTRAN_LINES}).out, lines);
}

}  // namespace
