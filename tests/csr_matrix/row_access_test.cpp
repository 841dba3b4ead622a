// SPDX-License-Identifier: MIT
#include "../support/matrices.hpp"
#include "../support/observe.hpp"
#include "../support/refuse.hpp"

#include <csr_matrix_mod/csr_matrix.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <string>
#include <type_traits>
#include <utility>
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

// [  .   .   . ]
// [ 20   .  10 ]   stored as columns 3, 1, 3
// [  .  30   . ]
entry_rows uneven_rows() { return {{}, {{3, 10.0}, {1, 20.0}, {3, 0.0}}, {{2, 30.0}}}; }

columns columns_in(array_view<const std::int32_t> row) { return {row.begin(), row.end()}; }
values values_in(array_view<const double> row) { return {row.begin(), row.end()}; }

constexpr const char* row_4_of_3 =
    " try to access the            4  th row of a matrix of            3  rows!\n";
constexpr const char* no_values = "getrowval in a structure only matrix!";

void expect_stop_at_row_4(const std::function<void()>& call) {
  const auto seen = observe(call);
  EXPECT_EQ(seen.output, row_4_of_3);
  EXPECT_EQ(seen.stop, " ");
}

// ---- csr_matrix_getrow, csr_matrix_getrowval

TEST(Getrow, ShowsTheColumnsInStoredOrder) {
  const csr_matrix mat = real_matrix(3, uneven_rows());
  expect_silent([&] { EXPECT_EQ(columns_in(csr_matrix_getrow(mat, 2)), (columns{3, 1, 3})); });
}

TEST(Getrow, OfAnEmptyRowHasLength0) {
  const csr_matrix mat = real_matrix(3, uneven_rows());
  EXPECT_EQ(csr_matrix_getrow(mat, 1).length(), 0);
}

TEST(Getrow, OfTheLastRowWorks) {
  const csr_matrix mat = real_matrix(3, uneven_rows(), 4);
  EXPECT_EQ(columns_in(csr_matrix_getrow(mat, 3)), columns{2});
}

TEST(Getrow, OfARowThatEndsBeforeItBeginsHasLength0) {
  csr_matrix mat = real_matrix(3, uneven_rows());
  mat.ia(3) = 1;
  mat.ia(2) = 2;
  EXPECT_EQ(csr_matrix_getrow(mat, 2).length(), 0);
  EXPECT_EQ(csr_matrix_getrowval(mat, 2).length(), 0);
}

TEST(Getrow, WritesTheMatrix) {
  csr_matrix mat = real_matrix(3, uneven_rows());
  csr_matrix_getrow(mat, 2)(2) = 2;
  EXPECT_EQ(mat.ja(2), 2);
}

TEST(Getrow, OfAConstMatrixOnlyReads) {
  static_assert(std::is_same_v<decltype(csr_matrix_getrow(std::declval<const csr_matrix&>(), 1)),
                               array_view<const std::int32_t>>);
  static_assert(std::is_same_v<decltype(csr_matrix_getrowval(std::declval<const csr_matrix&>(), 1)),
                               array_view<const double>>);
}

TEST(Getrow, BeyondTheLastRowStopsAfterALine) {
  csr_matrix mat = real_matrix(3, uneven_rows());
  expect_stop_at_row_4([&] { (void)csr_matrix_getrow(mat, 4); });
  expect_stop_at_row_4([&] { (void)csr_matrix_getrow(std::as_const(mat), 4); });
}

TEST(Getrow, WithoutRowsStopsAtRow1) {
  const csr_matrix mat = real_matrix(3, {});
  const auto seen = observe([&] { (void)csr_matrix_getrow(mat, 1); });
  EXPECT_EQ(seen.output,
            " try to access the            1  th row of a matrix of            0  rows!\n");
  EXPECT_EQ(seen.stop, " ");
}

TEST(Getrowval, ShowsTheValuesInStoredOrder) {
  const csr_matrix mat = real_matrix(3, uneven_rows());
  expect_silent([&] {
    EXPECT_EQ(values_in(csr_matrix_getrowval(mat, 2)), (values{10.0, 20.0, 0.0}));
  });
}

TEST(Getrowval, OfAnEmptyRowHasLength0) {
  const csr_matrix mat = real_matrix(3, uneven_rows());
  EXPECT_EQ(csr_matrix_getrowval(mat, 1).length(), 0);
}

TEST(Getrowval, WritesTheMatrix) {
  csr_matrix mat = real_matrix(3, uneven_rows());
  csr_matrix_getrowval(mat, 3)(1) = -1.0;
  EXPECT_EQ(mat.a(4), -1.0);
}

TEST(Getrowval, BeyondTheLastRowStopsAfterALine) {
  csr_matrix mat = real_matrix(3, uneven_rows());
  expect_stop_at_row_4([&] { (void)csr_matrix_getrowval(mat, 4); });
  expect_stop_at_row_4([&] { (void)csr_matrix_getrowval(std::as_const(mat), 4); });
}

TEST(Getrowval, OfAStructureOnlyMatrixStops) {
  csr_matrix mat = pattern(3, {{1}, {2}, {3}});
  for (const auto& call : std::vector<std::function<void()>>{
           [&] { (void)csr_matrix_getrowval(mat, 1); },
           [&] { (void)csr_matrix_getrowval(std::as_const(mat), 1); }}) {
    const auto seen = observe(call);
    EXPECT_EQ(seen.output, "");
    EXPECT_EQ(seen.stop, no_values);
  }
}

TEST(Getrowval, BeyondTheLastRowOfAStructureOnlyMatrixStopsForTheRow) {
  const csr_matrix mat = pattern(3, {{1}, {2}, {3}});
  expect_stop_at_row_4([&] { (void)csr_matrix_getrowval(mat, 4); });
}

// ---- csr_matrix_fill

// Rows of 1, 3 and 1 entries, all of them still to be placed.
csr_matrix unfilled(matrix_type type) {
  const csr_matrix drawn = pattern(3, {{9}, {9, 9, 9}, {9}});
  csr_matrix mat;
  csr_matrix_assign(mat, drawn);
  mat.type = type;
  csr_matrix_allocate(mat, 5);
  std::fill(mat.ja.begin(), mat.ja.end(), 9);
  std::fill(mat.a.begin(), mat.a.end(), 0.5);
  return mat;
}

TEST(Fill, PlacesTheEntriesOfARowInOrderOfTheCalls) {
  csr_matrix mat = unfilled(matrix_real);
  columns pos = {0, 0, 0};
  expect_silent([&] {
    csr_matrix_fill(mat, 2, pos, 3, 30.0);
    csr_matrix_fill(mat, 2, pos, 1, 10.0);
    csr_matrix_fill(mat, 2, pos, 3, 0.0);
  });
  EXPECT_EQ(pos, (columns{0, 3, 0}));
  EXPECT_EQ(columns_in(mat.ja), (columns{9, 3, 1, 3, 9}));
  EXPECT_EQ(values_in(mat.a), (values{0.5, 30.0, 10.0, 0.0, 0.5}));
}

TEST(Fill, WithoutAValueLeavesTheValuesAlone) {
  csr_matrix mat = unfilled(matrix_real);
  columns pos = {0, 0, 0};
  expect_silent([&] { csr_matrix_fill(mat, 1, pos, 2); });
  EXPECT_EQ(mat.ja(1), 2);
  EXPECT_EQ(values_in(mat.a), values(5, 0.5));
}

TEST(Fill, PlacesColumnsOfAStructureOnlyMatrix) {
  csr_matrix mat = unfilled(matrix_structure_only);
  columns pos = {0, 0, 0};
  expect_silent([&] { csr_matrix_fill(mat, 3, pos, 2); });
  EXPECT_EQ(mat.ja(5), 2);
  EXPECT_EQ(pos, (columns{0, 0, 1}));
}

TEST(Fill, OfAStructureOnlyMatrixWithAValueStopsAfterTheColumnWasPlacedAndCounted) {
  csr_matrix mat = unfilled(matrix_structure_only);
  columns pos = {0, 0, 0};
  const auto seen = observe([&] { csr_matrix_fill(mat, 2, pos, 1, 10.0); });
  EXPECT_EQ(seen.output, "");
  EXPECT_EQ(seen.stop, no_values);
  EXPECT_EQ(mat.ja(2), 1);
  EXPECT_EQ(pos, (columns{0, 1, 0}));
}

TEST(Fill, BeyondTheLastRowStopsBeforeAnythingIsCounted) {
  csr_matrix mat = unfilled(matrix_real);
  columns pos = {0, 0, 0, 0};
  expect_stop_at_row_4([&] { csr_matrix_fill(mat, 4, pos, 1, 10.0); });
  EXPECT_EQ(pos, (columns{0, 0, 0, 0}));
}

// ---- csr_matrix_extrow

// A full buffer.
csr_row buffer_of(std::int32_t count) {
  csr_row row;
  EXPECT_TRUE(row.ja.allocate(count) && row.a.allocate(count));
  for (row.count = 0; row.count < count; ++row.count) {
    row.ja(row.count + 1) = row.count + 1;
    row.a(row.count + 1) = 0.25 * row.count;
  }
  return row;
}

void expect_growth(std::int32_t count, std::int64_t capacity) {
  csr_row row = buffer_of(count);
  expect_silent([&] { csr_matrix_extrow(row, 77, 7.5); });
  EXPECT_EQ(row.count, count + 1);
  EXPECT_EQ(row.ja.length(), capacity);
  EXPECT_EQ(row.a.length(), capacity);
  for (std::int32_t k = 1; k <= count; ++k) {
    EXPECT_EQ(row.ja(k), k);
    EXPECT_EQ(row.a(k), 0.25 * (k - 1));
  }
  EXPECT_EQ(row.ja(count + 1), 77);
  EXPECT_EQ(row.a(count + 1), 7.5);
}

TEST(Extrow, GrowsABufferOfCapacity0To11) { expect_growth(0, 11); }
TEST(Extrow, GrowsAFullBufferOf99To110) { expect_growth(99, 110); }
TEST(Extrow, GrowsAFullBufferOf109To121) { expect_growth(109, 121); }
TEST(Extrow, GrowsAFullBufferOf199To220) { expect_growth(199, 220); }

TEST(Extrow, AppendsInPlaceWhileThereIsRoom) {
  csr_row row = buffer_of(0);
  csr_matrix_extrow(row, 1, 1.0);
  const auto ja = row.ja.alias();
  const tests::refuse_allocation refused(0);
  for (std::int32_t k = 2; k <= 11; ++k) csr_matrix_extrow(row, k, 1.0);
  EXPECT_FALSE(tests::refuse_allocation::reached());
  EXPECT_EQ(row.count, 11);
  EXPECT_EQ(row.ja.data(), ja.data());
}

TEST(Extrow, WithoutRoomToGrowDoesNotAppend) {
  for (const int k : {0, 1}) {
    csr_row row = buffer_of(3);
    {
      const tests::refuse_allocation refused(k);
      expect_silent([&] { csr_matrix_extrow(row, 77, 7.5); });
      EXPECT_TRUE(tests::refuse_allocation::reached());
    }
    EXPECT_EQ(row.count, 3);
    EXPECT_EQ(row.ja(3), 3);
    EXPECT_EQ(row.a(3), 0.5);

    csr_matrix_extrow(row, 77, 7.5);  // once there is room again
    EXPECT_EQ(row.count, 4);
    EXPECT_EQ(row.ja(4), 77);
    EXPECT_EQ(row.a(4), 7.5);
    EXPECT_EQ(row.ja.length(), row.a.length());
  }
}

// ---- csr_matrix_setval

TEST(Setval, SetsTheSpareSlotsToo) {
  csr_matrix mat = real_matrix(3, uneven_rows(), 2);
  expect_silent([&] { csr_matrix_setval(mat, 1.5); });
  EXPECT_EQ(values_in(mat.a), values(6, 1.5));
  EXPECT_EQ(tests::columns_of(mat), tests::columns_of(uneven_rows()));
}

TEST(Setval, OfAStructureOnlyMatrixStops) {
  csr_matrix mat = pattern(3, {{1}, {2}, {3}});
  const auto seen = observe([&] { csr_matrix_setval(mat, 1.5); });
  EXPECT_EQ(seen.output, "");
  EXPECT_EQ(seen.stop, "try to set value of a structure only matrix");
}

}  // namespace
