// SPDX-License-Identifier: MIT
#include "units.hpp"

#include "../support/files.hpp"
#include "../support/observe.hpp"
#include "gallery.hpp"

#include <csr_matrix_mod/exchange.hpp>
#include <csr_matrix_mod/io.hpp>

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

namespace {

using csr_matrix_mod::close_unit;
using csr_matrix_mod::csr_matrix;
using csr_matrix_mod::vacant_unit;

TEST(Units, BeginWith10) { EXPECT_EQ(vacant_unit(), 10); }

TEST(Units, AreNamedButNotTaken) { EXPECT_EQ(vacant_unit(), vacant_unit()); }

TEST(Units, AreTakenByEveryReadInIncreasingOrder) {
  const tests::all_units_taken taken;
  ASSERT_EQ(taken.units().size(), 491U);
  for (std::size_t k = 0; k < taken.units().size(); ++k)
    EXPECT_EQ(taken.units()[k], 10 + static_cast<std::int32_t>(k));
}

TEST(Units, StopWhenNoneIsVacant) {
  const tests::all_units_taken taken;
  EXPECT_EQ(tests::observe([] { vacant_unit(); }).stop, "no vacant unit exists!");
}

TEST(Units, ThatAreClosedAreVacantAgainLowestFirst) {
  const tests::all_units_taken taken;
  close_unit(300);
  close_unit(42);
  EXPECT_EQ(vacant_unit(), 42);
}

TEST(Units, ThatAreNotOpenMayBeClosed) {
  for (const std::int32_t unit : {-1, 0, 9, 10, 500, 501, 2147483647})
    tests::expect_silent([unit] { close_unit(unit); });
}

TEST(Units, AreNotNeededToLoad) {
  const tests::temporary_folder folder;
  csr_matrix_dump(folder.path("file"), tests::real_matrix(1, {{{1, 2.0}}}));
  const tests::all_units_taken taken;
  csr_matrix loaded;
  tests::expect_silent([&] { csr_matrix_load(folder.path("file"), loaded); });
  EXPECT_EQ(loaded.a(1), 2.0);
}

// The units of one are never given to another.
TEST(Units, ServeSeveralThreadsWithDifferentFiles) {
  const tests::temporary_folder folder;
  std::atomic<int> failures{0};
  std::vector<std::thread> threads;
  for (std::int32_t t = 1; t <= 4; ++t)
    threads.emplace_back([t, &folder, &failures] {
      const std::string path = folder.path(std::to_string(t));
      csr_matrix written = tests::real_matrix(t, {{{t, 1.0 * t}}, {}, {{1, -1.0 * t}}});
      for (int round = 0; round < 100; ++round) {
        csr_matrix_dump(path, written, round % 2 == 0 ? "unformatted" : "text");
        csr_matrix mat = tests::room_for(3, 2);
        csr_matrix_read(
            path, mat,
            round % 2 == 0 ? std::optional<std::string_view>("unformatted") : std::nullopt);
        if (mat.n != 3 || mat.m != t || mat.a(1) != t || mat.a(2) != -t) ++failures;
      }
    });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(failures, 0);
  EXPECT_EQ(vacant_unit(), 410);  // 400 reads
  for (std::int32_t unit = 10; unit < 410; ++unit) close_unit(unit);
}

}  // namespace
