// SPDX-License-Identifier: MIT
// Stops, from inside through a handler and from outside through the end of a process.
#include "../../src/support/stop.hpp"

#include "observe.hpp"
#include "process.hpp"

#include <csr_matrix_mod/support.hpp>

#include <gtest/gtest.h>

namespace {

using namespace csr_matrix_mod;

constexpr const char* setval_message = "try to set value of a structure only matrix\n";

tests::process_result probe(const char* way) { return tests::run_process({STOP_PROBE, way}); }

TEST(Stop, LeavesWithStatus1AndItsMessageAsOneLineOnStandardError) {
  const auto stopped = probe("message");
  EXPECT_EQ(stopped.status, 1);
  EXPECT_EQ(stopped.out, "");
  EXPECT_EQ(stopped.err, setval_message);
}

TEST(Stop, AfterAnExplanatoryLineIsALineOfOneBlank) {
  const auto stopped = probe("blank");
  EXPECT_EQ(stopped.status, 1);
  EXPECT_EQ(stopped.out,
            " try to access the            3  th row of a matrix of            2  rows!\n");
  EXPECT_EQ(stopped.err, " \n");
}

TEST(Stop, FlushesStandardOutputOfBothKinds) {
  const auto stopped = probe("unfinished-lines");
  EXPECT_EQ(stopped.status, 1);
  EXPECT_EQ(stopped.out, "from std::cout, from stdio, held back");
  EXPECT_EQ(stopped.err, setval_message);
}

TEST(Stop, SaysItsMessageThoughStandardOutputThrows) {
  const auto stopped = probe("throwing-stream");
  EXPECT_EQ(stopped.status, 1);
  EXPECT_EQ(stopped.out, "from stdio");
  EXPECT_EQ(stopped.err, setval_message);
}

TEST(Stop, RunsNoDestructorAndNoExitFunction) {
  const auto stopped = probe("destructors");
  EXPECT_EQ(stopped.status, 1);
  EXPECT_EQ(stopped.err, setval_message);
}

TEST(Stop, HappensAlthoughTheHandlerReturns) {
  const auto stopped = probe("handler-returns");
  EXPECT_EQ(stopped.status, 1);
  EXPECT_EQ(stopped.out, "handled: try to set value of a structure only matrix");
  EXPECT_EQ(stopped.err, setval_message);
}

TEST(Stop, IsLeftToAHandlerThatLeavesItself) {
  const auto left = probe("handler-leaves");
  EXPECT_EQ(left.status, 7);
  EXPECT_EQ(left.out, "");
  EXPECT_EQ(left.err, "");
}

TEST(Stop, IsTheDefaultAgainWhenTheHandlerIsRemoved) {
  const auto stopped = probe("handler-removed");
  EXPECT_EQ(stopped.status, 1);
  EXPECT_EQ(stopped.err, setval_message);
}

TEST(Stop, CanBeCaughtWhenTheHandlerThrows) {
  const auto seen = tests::observe([] { stop("a reason"); });
  EXPECT_EQ(seen.stop, "a reason");
  EXPECT_EQ(seen.output, "");
}

TEST(SetStopHandler, ReturnsTheHandlerBefore) {
  const stop_handler first = [](std::string_view) {};
  const stop_handler second = [](std::string_view) { throw 1; };
  const stop_handler before = set_stop_handler(first);
  EXPECT_EQ(set_stop_handler(second), first);
  EXPECT_EQ(set_stop_handler(nullptr), second);
  EXPECT_EQ(set_stop_handler(before), nullptr);
}

TEST(PrintLine, WritesTheLineAsItStands) {
  EXPECT_EQ(tests::observe([] { print_line("set to 1"); }).output, "set to 1\n");
}

TEST(PrintFree, WritesTheItemsInFreeLayout) {
  EXPECT_EQ(tests::observe([] { print_free("row ", 7, " of ", -12); }).output,
            " row            7  of          -12\n");
}

}  // namespace
