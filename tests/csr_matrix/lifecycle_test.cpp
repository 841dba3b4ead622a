// SPDX-License-Identifier: MIT
#include "../support/generators.hpp"
#include "../support/matrices.hpp"
#include "../support/messages.hpp"
#include "../support/observe.hpp"
#include "../support/refusals.hpp"

#include <csr_matrix_mod/csr_matrix.hpp>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace {

using namespace csr_matrix_mod;
using tests::entry_rows;
using tests::expect_silent;
using tests::observe;
using tests::pattern;
using tests::real_matrix;

using columns = std::vector<std::int32_t>;
using values = std::vector<double>;

constexpr const char* no_room = "allocation error in csr_matrix_allocate";
constexpr const char* ja_was_null = "deallocation error in csr_matrix_deallocate1\n";
constexpr const char* a_was_null = "deallocation error in csr_matrix_deallocate2\n";
constexpr const char* ia_was_null = "deallocation error in csr_matrix_deallocate3\n";

// What a declared record may hold before it is initialised.
csr_matrix declared(std::int32_t n, std::int32_t m, matrix_type type) {
  csr_matrix mat;
  mat.n = n;
  mat.m = m;
  mat.type = type;
  return mat;
}

// [ 10  .  20 ]
// [  .  30  . ]
entry_rows three_entries() { return {{{1, 10.0}, {3, 20.0}}, {{2, 30.0}}}; }

// ---- csr_matrix_initial

TEST(Initial, SetsSizesAndTypeAndGivesNPlus1RowStarts) {
  csr_matrix mat;
  expect_silent([&] { csr_matrix_initial(3, mat, 5, matrix_structure_only); });
  EXPECT_EQ(mat.n, 3);
  EXPECT_EQ(mat.m, 5);
  EXPECT_EQ(mat.type, matrix_structure_only);
  EXPECT_EQ(mat.ia.length(), 4);
  EXPECT_FALSE(mat.ja.allocated());
  EXPECT_FALSE(mat.a.allocated());
}

TEST(Initial, WithoutColumnsKeepsTheirNumber) {
  csr_matrix mat = declared(1, 77, matrix_real);
  csr_matrix_initial(3, mat);
  EXPECT_EQ(mat.m, 77);
}

TEST(Initial, WithoutTypeMeansValues) {
  csr_matrix mat = declared(1, 1, matrix_structure_only);
  csr_matrix_initial(3, mat, 3);
  EXPECT_EQ(mat.type, matrix_real);
}

TEST(Initial, WithoutRowsGivesOneRowStart) {
  csr_matrix mat;
  expect_silent([&] { csr_matrix_initial(0, mat, 2); });
  EXPECT_EQ(mat.n, 0);
  EXPECT_EQ(mat.ia.length(), 1);
}

TEST(Initial, WithMinus1RowsGivesRowStartsOfLength0) {
  csr_matrix mat;
  expect_silent([&] { csr_matrix_initial(-1, mat, 2); });
  EXPECT_EQ(mat.n, -1);
  EXPECT_TRUE(mat.ia.allocated());
  EXPECT_EQ(mat.ia.length(), 0);
}

TEST(Initial, WithTheSmallestNumberOfRowsGivesRowStartsOfLength0) {
  csr_matrix mat;
  expect_silent([&] { csr_matrix_initial(std::numeric_limits<std::int32_t>::min(), mat); });
  EXPECT_EQ(mat.ia.length(), 0);
}

TEST(Initial, DropsWhatTheRecordHeldAndLeavesOtherReferencesTheirStorage) {
  csr_matrix mat = real_matrix(3, three_entries());
  csr_matrix second;
  csr_matrix_transfer(second, mat);
  csr_matrix_initial(1, mat);
  EXPECT_EQ(mat.ia.length(), 2);
  EXPECT_FALSE(mat.ja.allocated());
  EXPECT_FALSE(mat.a.allocated());
  EXPECT_EQ(tests::entries_of(second), three_entries());
}

TEST(Initial, StopsWhenThereIsNoStorageForTheRowStarts) {
  const auto stops =
      tests::refuse_each_request([] { return real_matrix(3, three_entries()); },
                                 [](csr_matrix& mat) { csr_matrix_initial(3, mat, 3); },
                                 [](csr_matrix& mat) {
                                   EXPECT_FALSE(mat.ia.allocated());
                                   EXPECT_FALSE(mat.ja.allocated());
                                   EXPECT_FALSE(mat.a.allocated());
                                 });
  EXPECT_EQ(stops, std::vector<std::string>{"allocation error in csr_matrix_initial"});
}

// ---- csr_matrix_allocate

TEST(Allocate, GivesStorageForTheEntriesAndKeepsTheRowStarts) {
  csr_matrix mat;
  csr_matrix_initial(2, mat, 3);
  const auto row_starts = mat.ia.alias();
  expect_silent([&] { csr_matrix_allocate(mat, 7); });
  EXPECT_EQ(mat.ja.length(), 7);
  EXPECT_EQ(mat.a.length(), 7);
  EXPECT_EQ(mat.ia.data(), row_starts.data());
  EXPECT_EQ(mat.n, 2);
  EXPECT_EQ(mat.m, 3);
  EXPECT_EQ(mat.type, matrix_real);
}

TEST(Allocate, ForNoEntriesWarnsAndGivesOneSlot) {
  csr_matrix mat;
  csr_matrix_initial(2, mat, 3);
  const auto seen = observe([&] { csr_matrix_allocate(mat, 0); });
  EXPECT_EQ(seen.output,
            " try to allocating            0  nonzeros in csr_matrix_allocate!\nset to 1\n");
  EXPECT_EQ(seen.stop, std::nullopt);
  EXPECT_EQ(mat.ja.length(), 1);
  EXPECT_EQ(mat.a.length(), 1);
}

TEST(Allocate, ForMinus5EntriesWarnsWithMinus5AndGivesOneSlot) {
  csr_matrix mat;
  csr_matrix_initial(2, mat, 3, matrix_structure_only);
  const auto seen = observe([&] { csr_matrix_allocate(mat, -5); });
  EXPECT_EQ(seen.output,
            " try to allocating           -5  nonzeros in csr_matrix_allocate!\nset to 1\n");
  EXPECT_EQ(seen.stop, std::nullopt);
  EXPECT_EQ(mat.ja.length(), 1);
}

TEST(Allocate, LeavesTheValuesOfAStructureOnlyMatrixAlone) {
  csr_matrix mat;
  csr_matrix_initial(2, mat, 3, matrix_structure_only);
  csr_matrix_allocate(mat, 7);
  EXPECT_EQ(mat.ja.length(), 7);
  EXPECT_FALSE(mat.a.allocated());

  ASSERT_TRUE(mat.a.allocate(2));
  csr_matrix_allocate(mat, 4);
  EXPECT_EQ(mat.ja.length(), 4);
  EXPECT_EQ(mat.a.length(), 2);
}

TEST(Allocate, ReplacesStorageAndLeavesOtherReferencesTheirs) {
  csr_matrix mat = real_matrix(3, three_entries());
  csr_matrix second;
  csr_matrix_transfer(second, mat);
  csr_matrix_allocate(mat, 3);
  EXPECT_NE(mat.ja.data(), second.ja.data());
  EXPECT_NE(mat.a.data(), second.a.data());
  EXPECT_EQ(tests::entries_of(second), three_entries());
}

TEST(Allocate, StopsWhenThereIsNoStorageForColumnsOrValues) {
  const auto initialised = [] {
    csr_matrix mat;
    csr_matrix_initial(2, mat, 3);
    return mat;
  };
  const auto stops = tests::refuse_each_request(
      initialised, [](csr_matrix& mat) { csr_matrix_allocate(mat, 7); }, tests::expect_releasable);
  EXPECT_EQ(stops, (std::vector<std::string>{no_room, no_room}));
}

// ---- csr_matrix_reallocate

TEST(Reallocate, ToFewerEntriesKeepsTheFirstOnes) {
  csr_matrix mat = real_matrix(3, three_entries());
  expect_silent([&] { csr_matrix_reallocate(mat, 2); });
  EXPECT_EQ(columns(mat.ja.begin(), mat.ja.end()), (columns{1, 3}));
  EXPECT_EQ(values(mat.a.begin(), mat.a.end()), (values{10.0, 20.0}));
}

TEST(Reallocate, ToMoreEntriesKeepsAllOfThemWithoutHeadroom) {
  csr_matrix mat = real_matrix(3, three_entries());
  expect_silent([&] { csr_matrix_reallocate(mat, 5); });
  EXPECT_EQ(mat.ja.length(), 5);
  EXPECT_EQ(mat.a.length(), 5);
  EXPECT_EQ(tests::entries_of(mat), three_entries());
}

TEST(Reallocate, ToTheSameLengthLeavesBothArraysAlone) {
  csr_matrix mat = real_matrix(3, three_entries());
  const auto ja = mat.ja.alias();
  const auto a = mat.a.alias();
  const tests::refuse_allocation refused(0);
  expect_silent([&] { csr_matrix_reallocate(mat, 3); });
  EXPECT_FALSE(tests::refuse_allocation::reached());
  EXPECT_EQ(mat.ja.data(), ja.data());
  EXPECT_EQ(mat.a.data(), a.data());
}

TEST(Reallocate, LooksAtEachArrayByItself) {
  csr_matrix mat = real_matrix(3, three_entries());
  ASSERT_EQ(iexpand1(mat.ja, 4), 0);
  const auto ja = mat.ja.alias();
  csr_matrix_reallocate(mat, 4);
  EXPECT_EQ(mat.ja.data(), ja.data());
  EXPECT_EQ(mat.a.length(), 4);
}

TEST(Reallocate, LeavesTheValuesOfAStructureOnlyMatrixAlone) {
  csr_matrix mat = pattern(3, {{1, 3}, {2}});
  csr_matrix_reallocate(mat, 2);
  EXPECT_EQ(mat.ja.length(), 2);
  EXPECT_FALSE(mat.a.allocated());
}

TEST(Reallocate, LeavesOtherReferencesTheirStorage) {
  csr_matrix mat = real_matrix(3, three_entries());
  csr_matrix second;
  csr_matrix_transfer(second, mat);
  csr_matrix_reallocate(mat, 1);
  EXPECT_EQ(tests::entries_of(second), three_entries());
}

TEST(Reallocate, ToNoEntriesStopsAfterALine) {
  csr_matrix mat = real_matrix(3, three_entries());
  for (const std::int32_t nz : {0, -5}) {
    const auto seen = observe([&] { csr_matrix_reallocate(mat, nz); });
    EXPECT_EQ(seen.output, nz == 0 ? " try to reallocating            0  nonzeros in "
                                     "csr_matrix_allocate\n"
                                   : " try to reallocating           -5  nonzeros in "
                                     "csr_matrix_allocate\n");
    EXPECT_EQ(seen.stop, " ");
  }
  EXPECT_EQ(tests::entries_of(mat), three_entries());
}

TEST(Reallocate, StopsWhenThereIsNoStorageForColumnsOrValues) {
  const auto stops =
      tests::refuse_each_request([] { return real_matrix(3, three_entries()); },
                                 [](csr_matrix& mat) { csr_matrix_reallocate(mat, 9); },
                                 [](csr_matrix& mat) {
                                   EXPECT_EQ(tests::entries_of(mat), three_entries());
                                   tests::expect_releasable(mat);
                                 });
  EXPECT_EQ(stops, (std::vector<std::string>{no_room, no_room}));
}

// ---- csr_matrix_deallocate

TEST(Deallocate, ReleasesTheArraysAndKeepsSizesAndType) {
  csr_matrix mat = real_matrix(3, three_entries());
  expect_silent([&] { csr_matrix_deallocate(mat); });
  EXPECT_FALSE(mat.ia.allocated());
  EXPECT_FALSE(mat.ja.allocated());
  EXPECT_FALSE(mat.a.allocated());
  EXPECT_EQ(mat.n, 2);
  EXPECT_EQ(mat.m, 3);
  EXPECT_EQ(mat.type, matrix_real);
}

TEST(Deallocate, WarnsOfNullColumnsAndStillReleasesTheRest) {
  csr_matrix mat = real_matrix(3, three_entries());
  mat.ja.release();
  EXPECT_EQ(observe([&] { csr_matrix_deallocate(mat); }).output, ja_was_null);
  EXPECT_FALSE(mat.ia.allocated());
  EXPECT_FALSE(mat.a.allocated());
}

TEST(Deallocate, WarnsOfNullRowStartsAndOfNullValues) {
  csr_matrix mat = real_matrix(3, three_entries());
  mat.ia.release();
  EXPECT_EQ(observe([&] { csr_matrix_deallocate(mat); }).output, ia_was_null);
  mat = real_matrix(3, three_entries());
  mat.a.release();
  EXPECT_EQ(observe([&] { csr_matrix_deallocate(mat); }).output, a_was_null);
}

TEST(Deallocate, WarnsTwiceOfARecordThatWasOnlyInitialised) {
  csr_matrix mat;
  csr_matrix_initial(2, mat, 3);
  const auto seen = observe([&] { csr_matrix_deallocate(mat); });
  EXPECT_EQ(seen.output, std::string(ja_was_null) + a_was_null);
  EXPECT_EQ(seen.stop, std::nullopt);
}

TEST(Deallocate, WarnsOnceOfAStructureOnlyRecordThatWasOnlyInitialised) {
  csr_matrix mat;
  csr_matrix_initial(2, mat, 3, matrix_structure_only);
  EXPECT_EQ(observe([&] { csr_matrix_deallocate(mat); }).output, ja_was_null);
}

TEST(Deallocate, WarnsThreeTimesOfAReleasedRecordAndNumbersTheWarnings132) {
  csr_matrix mat = real_matrix(3, three_entries());
  csr_matrix_deallocate(mat);
  EXPECT_EQ(observe([&] { csr_matrix_deallocate(mat); }).output,
            std::string(ja_was_null) + ia_was_null + a_was_null);
}

TEST(Deallocate, ReleasesArraysOfLength0WithoutAWarning) {
  csr_matrix mat = real_matrix(0, {});
  ASSERT_EQ(mat.ja.length(), 0);
  expect_silent([&] { csr_matrix_deallocate(mat); });
}

TEST(Deallocate, LeavesTheValuesOfAStructureOnlyMatrixAlone) {
  csr_matrix mat = pattern(3, {{1, 3}, {2}});
  ASSERT_TRUE(mat.a.allocate(2));
  expect_silent([&] { csr_matrix_deallocate(mat); });
  EXPECT_EQ(mat.a.length(), 2);
}

// ---- csr_matrix_transfer

TEST(Transfer, MakesBothRecordsReferToTheSameElements) {
  csr_matrix src = real_matrix(3, three_entries(), 2);
  csr_matrix dest = declared(9, 9, matrix_structure_only);
  expect_silent([&] { csr_matrix_transfer(dest, src); });
  EXPECT_EQ(dest.n, 2);
  EXPECT_EQ(dest.m, 3);
  EXPECT_EQ(dest.type, matrix_real);
  EXPECT_EQ(dest.ia.data(), src.ia.data());
  EXPECT_EQ(dest.ja.data(), src.ja.data());
  EXPECT_EQ(dest.a.data(), src.a.data());
  EXPECT_EQ(dest.ja.length(), 5);
  EXPECT_EQ(dest.a.length(), 5);
  dest.a(1) = 11.0;
  EXPECT_EQ(src.a(1), 11.0);
}

TEST(Transfer, LeavesTheSourceAsItWas) {
  const csr_matrix src = real_matrix(3, three_entries());
  csr_matrix dest;
  csr_matrix_transfer(dest, src);
  EXPECT_EQ(src.n, 2);
  EXPECT_EQ(src.m, 3);
  EXPECT_EQ(tests::entries_of(src), three_entries());
}

TEST(Transfer, FromAStructureOnlyMatrixKeepsTheValuesOfTheDestination) {
  csr_matrix dest = real_matrix(3, three_entries());
  const auto before = dest.a.alias();
  csr_matrix src = pattern(2, {{2}});
  ASSERT_TRUE(src.a.allocate(1));
  csr_matrix_transfer(dest, src);
  EXPECT_EQ(dest.type, matrix_structure_only);
  EXPECT_EQ(dest.a.data(), before.data());
  EXPECT_EQ(dest.a.length(), 3);
}

TEST(Transfer, OutlivesTheReleaseOfTheSource) {
  csr_matrix src = real_matrix(3, three_entries());
  csr_matrix dest;
  csr_matrix_transfer(dest, src);
  csr_matrix_deallocate(src);
  EXPECT_EQ(tests::entries_of(dest), three_entries());
  expect_silent([&] { csr_matrix_deallocate(dest); });
}

TEST(Transfer, ToItselfKeepsTheRecord) {
  csr_matrix mat = real_matrix(3, three_entries());
  csr_matrix_transfer(mat, mat);
  EXPECT_EQ(tests::entries_of(mat), three_entries());
}

// ---- csr_matrix_assign

TEST(Assign, CopiesTheMatrixIntoStorageOfItsOwn) {
  const csr_matrix src = real_matrix(3, three_entries());
  csr_matrix dest;
  expect_silent([&] { csr_matrix_assign(dest, src); });
  EXPECT_EQ(dest.n, 2);
  EXPECT_EQ(dest.m, 3);
  EXPECT_EQ(dest.ia.length(), 3);
  EXPECT_EQ(tests::entries_of(dest), three_entries());
  EXPECT_NE(dest.ia.data(), src.ia.data());
  EXPECT_NE(dest.ja.data(), src.ja.data());
  EXPECT_NE(dest.a.data(), src.a.data());
}

TEST(Assign, CopiesAStructureOnlyMatrixWithoutValues) {
  const csr_matrix src = pattern(3, {{3, 1, 1}, {}, {2}});
  csr_matrix dest = real_matrix(3, three_entries());
  expect_silent([&] { csr_matrix_assign(dest, src); });
  EXPECT_EQ(dest.type, matrix_structure_only);
  EXPECT_EQ(tests::columns_of(dest), tests::columns_of(src));
  EXPECT_FALSE(dest.a.allocated());
}

TEST(Assign, GivesCapacity40ForASourceOfCapacity100With40Entries) {
  const entry_rows rows = {std::vector<tests::entry>(40, {1, 5.0})};
  const csr_matrix src = real_matrix(1, rows, 60);
  ASSERT_EQ(src.ja.length(), 100);
  csr_matrix dest;
  csr_matrix_assign(dest, src);
  EXPECT_EQ(dest.ja.length(), 40);
  EXPECT_EQ(dest.a.length(), 40);
  EXPECT_EQ(tests::entries_of(dest), rows);
}

TEST(Assign, FromAMatrixWithoutEntriesWarnsAndGivesOneSlot) {
  const csr_matrix src = real_matrix(3, {{}, {}});
  csr_matrix dest;
  const auto seen = observe([&] { csr_matrix_assign(dest, src); });
  EXPECT_EQ(seen.output, tests::no_entries_warning);
  EXPECT_EQ(seen.stop, std::nullopt);
  EXPECT_EQ(dest.ja.length(), 1);
  EXPECT_EQ(dest.a.length(), 1);
  EXPECT_EQ(tests::entries_of(dest), (entry_rows{{}, {}}));
}

TEST(Assign, FromAMatrixWithoutRowsCopiesItsOneRowStart) {
  const csr_matrix src = real_matrix(4, {}, 1);
  csr_matrix dest;
  EXPECT_EQ(observe([&] { csr_matrix_assign(dest, src); }).output, tests::no_entries_warning);
  EXPECT_EQ(dest.n, 0);
  EXPECT_EQ(dest.m, 4);
  EXPECT_EQ(dest.ia.length(), 1);
  EXPECT_EQ(dest.ia(1), 1);
}

TEST(Assign, LeavesOtherReferencesToTheOldArraysAlone) {
  csr_matrix dest = real_matrix(3, three_entries());
  csr_matrix second;
  csr_matrix_transfer(second, dest);
  csr_matrix_assign(dest, real_matrix(1, {{{1, 5.0}}}));
  EXPECT_EQ(tests::entries_of(second), three_entries());
}

TEST(Assign, StopsWhenThereIsNoStorageForAnyOfTheArrays) {
  const csr_matrix src = real_matrix(3, three_entries());
  const auto stops = tests::refuse_each_request(
      [] { return csr_matrix{}; }, [&src](csr_matrix& dest) { csr_matrix_assign(dest, src); },
      [&src](csr_matrix& dest) {
        EXPECT_EQ(tests::entries_of(src), three_entries());
        tests::expect_releasable(dest);
      });
  EXPECT_EQ(stops,
            (std::vector<std::string>{"allocation error in csr_matrix_initial", no_room, no_room}));
}

RC_GTEST_PROP(Assign, CopiesEveryMatrixBitForBitAtItsExactSize, ()) {
  const auto n = *tests::any_size();
  const auto m = *tests::any_size();
  const auto rows = *tests::any_rows(n, m);
  const csr_matrix src = real_matrix(m, rows, *rc::gen::inRange(0, 5));
  csr_matrix dest;
  observe([&] { csr_matrix_assign(dest, src); });
  RC_ASSERT(tests::entries_of(dest) == rows);
  RC_ASSERT(dest.m == m);
  RC_ASSERT(dest.ja.length() == std::max(csr_matrix_num_nz(src), 1));
  RC_ASSERT(dest.a.length() == dest.ja.length());
}

// ---- counts and setters

TEST(NumNz, CountsEntriesNotCapacity) {
  EXPECT_EQ(csr_matrix_num_nz(real_matrix(3, three_entries(), 10)), 3);
}

TEST(NumNz, Is0WithoutRows) { EXPECT_EQ(csr_matrix_num_nz(real_matrix(3, {})), 0); }

TEST(NumRowEntries, CountsRepeatedColumnsAsOftenAsTheyStand) {
  const csr_matrix mat = pattern(3, {{}, {2, 2, 1}, {}});
  EXPECT_EQ(csr_matrix_num_row_entries(mat, 1), 0);
  EXPECT_EQ(csr_matrix_num_row_entries(mat, 2), 3);
  EXPECT_EQ(csr_matrix_num_row_entries(mat, 3), 0);
}

TEST(SetsizeRow, SetsTheNumberOfRowsAlone) {
  csr_matrix mat = real_matrix(3, three_entries());
  expect_silent([&] { csr_matrix_setsize_row(mat, 7); });
  EXPECT_EQ(mat.n, 7);
  EXPECT_EQ(mat.m, 3);
  EXPECT_EQ(mat.ia.length(), 3);
}

TEST(SetsizeColumn, SetsTheNumberOfRowsTooAndKeepsTheColumns) {
  csr_matrix mat = real_matrix(3, three_entries());
  expect_silent([&] { csr_matrix_setsize_column(mat, 7); });
  EXPECT_EQ(mat.n, 7);
  EXPECT_EQ(mat.m, 3);
  EXPECT_EQ(mat.ia.length(), 3);
}

TEST(SetType, ChangesTheTypeAlone) {
  csr_matrix mat = real_matrix(3, three_entries());
  csr_matrix_set_type(mat, matrix_structure_only);
  EXPECT_EQ(mat.type, matrix_structure_only);
  EXPECT_EQ(mat.a.length(), 3);
  csr_matrix_set_type(mat, matrix_real);
  EXPECT_EQ(tests::entries_of(mat), three_entries());
}

TEST(MatrixType, IsStoredAsATruthValueIn4Bytes) {
  static_assert(sizeof(matrix_type) == 4);
  static_assert(matrix_real == 0 && matrix_structure_only == 1);
}

}  // namespace
