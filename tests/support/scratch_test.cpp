// SPDX-License-Identifier: MIT
// Storage of one call, and the count that it is asked for with.
#include "../../src/support/scratch.hpp"

#include "../../src/support/entry_count.hpp"
#include "observe.hpp"
#include "refuse.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>

namespace {

using namespace csr_matrix_mod;

TEST(Scratch, HoldsZerosWhenAskedTo) {
  scratch<std::int32_t> marker(1000, contents::zero, "routine");
  EXPECT_EQ(marker.length(), 1000);
  EXPECT_EQ(std::count(marker.begin(), marker.end(), 0), 1000);
}

// On small pages and on large ones, mapped and from the heap; storage that was given back has
// been written to.
TEST(Scratch, HoldsZerosWhateverItsSizeAndWhateverWasThereBefore) {
  constexpr std::int64_t mebibyte = 1 << 20;
  for (const contents initial : {contents::zero, contents::filled_with_zero})
    for (const std::int64_t length : {mebibyte, 4 * mebibyte - 1, 4 * mebibyte, 33 * mebibyte})
      for (int again = 0; again < 3; ++again) {
        scratch<std::uint8_t> marker(length, initial, "routine");
        ASSERT_EQ(std::count(marker.begin(), marker.end(), 0), length);
        std::fill(marker.begin(), marker.end(), std::uint8_t{255});
      }
}

TEST(Scratch, CountsFrom1) {
  scratch<double> work(3, contents::undefined, "routine");
  work(1) = 1.0;
  work(3) = 3.0;
  EXPECT_EQ(work.data()[0], 1.0);
  EXPECT_EQ(work.data()[2], 3.0);
}

TEST(Scratch, HasLength0UntilItIsAskedFor) {
  scratch<double> work;
  EXPECT_EQ(work.length(), 0);
  EXPECT_EQ(work.begin(), work.end());
}

TEST(Scratch, OfNegativeLengthHasLength0) {
  for (const contents initial : {contents::undefined, contents::zero, contents::filled_with_zero}) {
    scratch<double> work(-4, initial, "routine");
    EXPECT_EQ(work.length(), 0);
    EXPECT_EQ(work.begin(), work.end());
  }
}

TEST(Scratch, StopsWithTheNameOfItsRoutineWhenThereIsNoStorage) {
  for (const contents initial : {contents::undefined, contents::zero, contents::filled_with_zero}) {
    const tests::refuse_allocation refused(0);
    const auto seen = tests::observe([&] { scratch<double> work(3, initial, "some_routine"); });
    EXPECT_EQ(seen.stop, "allocation error in some_routine");
    EXPECT_EQ(seen.output, "");
  }
}

TEST(Scratch, SaysSoWhenItIsAskedAndThereIsNoStorage) {
  const tests::refuse_allocation refused(1);
  scratch<double> work;
  EXPECT_TRUE(work.allocate(2, contents::undefined));
  EXPECT_FALSE(work.allocate(3, contents::undefined));
  EXPECT_EQ(work.length(), 0);
  EXPECT_EQ(work.begin(), work.end());
}

TEST(EntryCount, LetsThroughWhatTheLastRowStartCanSay) {
  EXPECT_EQ(entry_count(0, "routine"), 0);
  EXPECT_EQ(entry_count(2147483646, "routine"), 2147483646);
}

TEST(EntryCount, StopsWithTheCountWhenItDoesNotFit) {
  const auto seen = tests::observe([] { (void)entry_count(2147483647, "some_routine"); });
  EXPECT_EQ(seen.stop, "some_routine: 2147483647 entries do not fit, at most 2147483646");
  EXPECT_EQ(seen.output, "");
}

#ifndef NDEBUG
TEST(ScratchDeathTest, AssertsThatAnElementIsWithin1ToTheLength) {
  scratch<double> work(3, contents::zero, "routine");
  EXPECT_DEATH((void)work(0), "1 <= i && i <= length_");
  EXPECT_DEATH((void)work(4), "1 <= i && i <= length_");
}
#endif

}  // namespace
