// SPDX-License-Identifier: MIT
#include "../support/generators.hpp"
#include "../support/matrices.hpp"

#include <csr_matrix_mod/csr_matrix.hpp>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

namespace {

using namespace csr_matrix_mod;
using tests::pattern;
using tests::real_matrix;

std::string verdict(const csr_matrix& mat) { return csr_matrix_check(mat).value_or("well formed"); }

// [ 10  .  20 ]
// [  .  30  . ]
csr_matrix well_formed() { return real_matrix(3, {{{1, 10.0}, {3, 20.0}}, {{2, 30.0}}}); }

TEST(Check, FindsNothingInAWellFormedMatrix) {
  EXPECT_EQ(verdict(well_formed()), "well formed");
  EXPECT_EQ(verdict(pattern(3, {{1, 3}, {2}})), "well formed");
}

TEST(Check, DoesNotJudgeOrderRepeatsZerosOrSpareCapacity) {
  EXPECT_EQ(verdict(real_matrix(3, {{}, {{3, 0.0}, {1, 1.0}, {3, 2.0}}, {}}, 5)), "well formed");
}

TEST(Check, FindsNothingInMatricesWithoutRowsOrColumns) {
  EXPECT_EQ(verdict(real_matrix(3, {})), "well formed");
  EXPECT_EQ(verdict(real_matrix(0, {})), "well formed");
  EXPECT_EQ(verdict(real_matrix(0, {{}, {}})), "well formed");
}

TEST(Check, NeedsNoStorageForNoEntries) {
  csr_matrix mat = real_matrix(3, {{}, {}});
  mat.ja.release();
  mat.a.release();
  EXPECT_EQ(verdict(mat), "well formed");
}

TEST(Check, FindsARecordThatWasOnlyDeclared) {
  EXPECT_EQ(verdict(csr_matrix{}), "ia has 0 elements, n+1 = 1 are needed");
}

TEST(Check, FindsNegativeSizes) {
  csr_matrix mat = well_formed();
  mat.n = -1;
  EXPECT_EQ(verdict(mat), "n is -1, below 0");
  mat = well_formed();
  mat.m = -2;
  EXPECT_EQ(verdict(mat), "m is -2, below 0");
}

TEST(Check, FindsATypeThatIsNoTruthValue) {
  csr_matrix mat = well_formed();
  mat.type = static_cast<matrix_type>(7);
  EXPECT_EQ(verdict(mat), "type is 7, neither 0 (values) nor 1 (structure only)");
}

TEST(Check, FindsTooFewRowStarts) {
  csr_matrix mat = well_formed();
  ASSERT_EQ(iexpand1(mat.ja, 7), 0);  // as many columns as there are row starts would hide a mix-up
  mat.n = 3;
  EXPECT_EQ(verdict(mat), "ia has 3 elements, n+1 = 4 are needed");
  mat.n = std::numeric_limits<std::int32_t>::max();
  EXPECT_EQ(verdict(mat), "ia has 3 elements, n+1 = 2147483648 are needed");
}

TEST(Check, AllowsMoreRowStartsThanRows) {
  csr_matrix mat = well_formed();
  mat.n = 1;
  EXPECT_EQ(verdict(mat), "well formed");
}

TEST(Check, FindsAFirstRowThatDoesNotBeginAt1) {
  csr_matrix mat = well_formed();
  mat.ia(1) = 0;
  EXPECT_EQ(verdict(mat), "ia(1) is 0, not 1");
}

TEST(Check, FindsRowStartsThatDecrease) {
  csr_matrix mat = well_formed();
  mat.ia(3) = 2;
  EXPECT_EQ(verdict(mat), "row 2 ends before it begins: ia goes from 3 down to 2");
}

TEST(Check, FindsRowStartsThatDecreaseByMoreThanAnIntegerHolds) {
  csr_matrix mat = well_formed();
  mat.ia(2) = std::numeric_limits<std::int32_t>::max();
  mat.ia(3) = std::numeric_limits<std::int32_t>::min();
  EXPECT_EQ(verdict(mat),
            "row 2 ends before it begins: ia goes from 2147483647 down to -2147483648");
}

TEST(Check, FindsTooLittleRoomForTheEntries) {
  csr_matrix mat = well_formed();
  mat.ia(3) = 5;
  EXPECT_EQ(verdict(mat), "ja has room for 3 of 4 entries");
  ASSERT_EQ(iexpand1(mat.ja, 4), 0);
  EXPECT_EQ(verdict(mat), "a has room for 3 of 4 entries");
}

TEST(Check, AsksForNoValuesOfAStructureOnlyMatrix) {
  csr_matrix mat = well_formed();
  mat.type = matrix_structure_only;
  mat.a.release();
  EXPECT_EQ(verdict(mat), "well formed");
}

TEST(Check, FindsAColumnOutside1ToM) {
  csr_matrix mat = well_formed();
  mat.ja(3) = 4;
  EXPECT_EQ(verdict(mat), "row 2 has column 4, outside 1 to 3");
  mat.ja(2) = 0;
  EXPECT_EQ(verdict(mat), "row 1 has column 0, outside 1 to 3");
}

TEST(Check, IgnoresColumnsInSpareSlots) {
  csr_matrix mat = real_matrix(1, {{{1, 1.0}}}, 3);
  ASSERT_LT(mat.ja(4), 1);
  EXPECT_EQ(verdict(mat), "well formed");
}

RC_GTEST_PROP(Check, FindsWhateverColumnIsSpoiled, ()) {
  const auto m = *rc::gen::inRange(1, 9);
  const auto rows = *tests::any_rows(5, m);
  csr_matrix mat = real_matrix(m, rows, 2);
  RC_PRE(csr_matrix_num_nz(mat) > 0);
  RC_ASSERT(verdict(mat) == "well formed");
  const auto k = *rc::gen::inRange(1, csr_matrix_num_nz(mat) + 1);
  mat.ja(k) = *rc::gen::element(0, -1, m + 1, std::numeric_limits<std::int32_t>::max());
  RC_ASSERT(verdict(mat).find(" has column " + std::to_string(mat.ja(k))) != std::string::npos);
}

}  // namespace
