// SPDX-License-Identifier: MIT
#include "../support/generators.hpp"
#include "../support/messages.hpp"
#include "../support/observe.hpp"
#include "../support/refusals.hpp"

#include <csr_matrix_mod/convert.hpp>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>

namespace {

using namespace csr_matrix_mod;
using tests::column_rows;
using tests::columns_of;
using tests::entries_of;
using tests::entry_rows;
using tests::expect_silent;
using tests::observe;
using tests::pattern;
using tests::real_matrix;

using integers = std::vector<std::int32_t>;
using values = std::vector<double>;

struct arrays {
  std::int32_t n = -9, m = -9, nnz = -9;
  array_ref<std::int32_t> ia, ja;
  array_ref<double> a;
};

template <class T>
std::vector<T> elements(const array_ref<T>& array) {
  return {array.begin(), array.end()};
}

TEST(ToPlainArrays, GivesSizesRowStartsColumnsAndValues) {
  // [ 10  .  20 ]
  // [  .  .   . ]
  // [  .  30  0 ]
  const csr_matrix mat = real_matrix(3, {{{3, 20}, {1, 10}}, {}, {{2, 30}, {3, 0}}}, 5);
  arrays out;
  expect_silent([&] { csr_to_csr_arrays(mat, out.n, out.m, out.nnz, out.ia, out.ja, &out.a); });
  EXPECT_EQ(out.n, 3);
  EXPECT_EQ(out.m, 3);
  EXPECT_EQ(out.nnz, 4);
  EXPECT_EQ(elements(out.ia), (integers{1, 3, 3, 5}));
  EXPECT_EQ(elements(out.ja), (integers{3, 1, 2, 3}));
  EXPECT_EQ(elements(out.a), (values{20, 10, 30, 0}));
}

TEST(ToPlainArrays, SharesNoStorageWithTheMatrix) {
  csr_matrix mat = real_matrix(1, {{{1, 5}}});
  arrays out;
  expect_silent([&] { csr_to_csr_arrays(mat, out.n, out.m, out.nnz, out.ia, out.ja, &out.a); });
  mat.ia(2) = 0;
  mat.ja(1) = 0;
  mat.a(1) = 0;
  EXPECT_EQ(out.ia(2), 2);
  EXPECT_EQ(out.ja(1), 1);
  EXPECT_EQ(out.a(1), 5.0);
}

TEST(ToPlainArrays, WithoutValuesNeverWarns) {
  for (const bool bare : {false, true}) {
    const csr_matrix mat = bare ? pattern(2, {{2}, {1}}) : real_matrix(2, {{{2, 8}}, {{1, 9}}});
    arrays out;
    expect_silent([&] { csr_to_csr_arrays(mat, out.n, out.m, out.nnz, out.ia, out.ja); });
    EXPECT_EQ(elements(out.ja), (integers{2, 1}));
  }
}

TEST(ToPlainArrays, GivesAPatternTheValueOneAndSaysSo) {
  const csr_matrix mat = pattern(3, {{2, 2}, {1}});
  arrays out;
  const auto seen =
      observe([&] { csr_to_csr_arrays(mat, out.n, out.m, out.nnz, out.ia, out.ja, &out.a); });
  EXPECT_EQ(seen.output, "warning: the matrix is structure_only\nset valuie to one\n");
  EXPECT_EQ(seen.stop, std::nullopt);
  EXPECT_EQ(elements(out.a), (values{1, 1, 1}));

  csr_matrix back;
  expect_silent([&] {
    csr_to_csr_matrix(out.n, out.m, back, out.ia, out.ja, array_view<const double>(out.a));
  });
  EXPECT_EQ(back.type, matrix_real);
  EXPECT_EQ(entries_of(back), (entry_rows{{{2, 1}, {2, 1}}, {{1, 1}}}));
}

TEST(ToPlainArrays, OfAMatrixWithoutRowsAreOneRowStartAndNoColumns) {
  const csr_matrix mat = real_matrix(4, {});
  arrays out;
  expect_silent([&] { csr_to_csr_arrays(mat, out.n, out.m, out.nnz, out.ia, out.ja, &out.a); });
  EXPECT_EQ(out.n, 0);
  EXPECT_EQ(out.m, 4);
  EXPECT_EQ(out.nnz, 0);
  EXPECT_EQ(elements(out.ia), (integers{1}));
  EXPECT_TRUE(out.ja.allocated());
  EXPECT_TRUE(out.a.allocated());
  EXPECT_EQ(out.ja.length() + out.a.length(), 0);
}

TEST(ToPlainArrays, ReplacesWhatTheReferencesHeld) {
  const csr_matrix mat = real_matrix(1, {{{1, 5}}});
  arrays out;
  ASSERT_TRUE(out.ja.allocate(9));
  const array_ref<std::int32_t> other = out.ja.alias();
  expect_silent([&] { csr_to_csr_arrays(mat, out.n, out.m, out.nnz, out.ia, out.ja, &out.a); });
  EXPECT_EQ(out.ja.length(), 1);
  EXPECT_EQ(other.length(), 9);
}

TEST(ToPlainArrays, StopsAtEveryShortageAndLeavesWhatWasMadeWithTheCaller) {
  struct arguments {
    csr_matrix mat;
    arrays out;
  };
  int made = 0;
  const auto stops = tests::refuse_each_request(
      [] {
        return arguments{pattern(2, {{2}, {1}}), {}};
      },
      [](arguments& given) {
        arrays& out = given.out;
        csr_to_csr_arrays(given.mat, out.n, out.m, out.nnz, out.ia, out.ja, &out.a);
      },
      [&](arguments& given) {
        EXPECT_EQ(columns_of(given.mat), (column_rows{{2}, {1}}));
        EXPECT_EQ(given.out.ia.allocated(), made >= 1);
        EXPECT_EQ(given.out.ja.allocated(), made >= 2);
        EXPECT_FALSE(given.out.a.allocated());
        ++made;
      });
  EXPECT_EQ(stops, std::vector<std::string>(3, "error in allocation in csr_to_csr"));
}

TEST(FromPlainArrays, CarriesValuesExactlyWhenTheyArePassed) {
  const integers ia{1, 3, 3};
  const integers ja{2, 1};
  const values a{-0.0, 7};
  csr_matrix mat;
  expect_silent([&] { csr_to_csr_matrix(2, 3, mat, ia, ja, array_view<const double>(a)); });
  EXPECT_EQ(mat.type, matrix_real);
  EXPECT_EQ(mat.m, 3);
  EXPECT_EQ(entries_of(mat), (entry_rows{{{2, -0.0}, {1, 7}}, {}}));

  csr_matrix bare;
  expect_silent([&] { csr_to_csr_matrix(2, 3, bare, ia, ja); });
  EXPECT_EQ(bare.type, matrix_structure_only);
  EXPECT_FALSE(bare.a.allocated());
  EXPECT_EQ(columns_of(bare), (column_rows{{2, 1}, {}}));
}

TEST(FromPlainArrays, CopiesNoMoreThanTheEntries) {
  const integers ia{1, 2, 77, 77};
  const integers ja{1, 99, 99};
  const values a{5, 99, 99};
  csr_matrix mat;
  expect_silent([&] { csr_to_csr_matrix(1, 1, mat, ia, ja, array_view<const double>(a)); });
  EXPECT_EQ(mat.ia.length(), 2);
  EXPECT_EQ(mat.ja.length(), 1);
  EXPECT_EQ(mat.a.length(), 1);
  EXPECT_EQ(entries_of(mat), (entry_rows{{{1, 5}}}));
}

TEST(FromPlainArrays, WithoutEntriesWarnsAndReadsNoColumn) {
  const integers ia{1, 1};
  csr_matrix mat;
  const auto seen =
      observe([&] { csr_to_csr_matrix(1, 2, mat, ia, {}, array_view<const double>()); });
  EXPECT_EQ(seen.output, tests::no_entries_warning);
  EXPECT_EQ(mat.type, matrix_real);
  EXPECT_EQ(mat.ja.length(), 1);
  EXPECT_EQ(mat.a.length(), 1);
  EXPECT_EQ(entries_of(mat), entry_rows(1));
}

TEST(FromPlainArrays, CopiesTheRowStartsUnchanged) {
  const integers ia{2, 3};
  const integers ja{1, 1};
  csr_matrix mat;
  expect_silent([&] { csr_to_csr_matrix(1, 1, mat, ia, ja); });
  EXPECT_EQ(mat.ia(1), 2);
  EXPECT_EQ(mat.ja.length(), 2);
}

TEST(FromPlainArrays, StopsAtEveryShortage) {
  const integers ia{1, 2};
  const integers ja{1};
  const values a{5};
  const auto stops = tests::refuse_each_request(
      [] { return csr_matrix{}; },
      [&](csr_matrix& mat) { csr_to_csr_matrix(1, 1, mat, ia, ja, array_view<const double>(a)); },
      [](csr_matrix& mat) { tests::expect_releasable(mat); });
  EXPECT_EQ(stops, (std::vector<std::string>{"allocation error in csr_matrix_initial",
                                             "allocation error in csr_matrix_allocate",
                                             "allocation error in csr_matrix_allocate"}));
}

RC_GTEST_PROP(PlainArraysProperty, ThereAndBackGivesAnEqualRecord, ()) {
  const auto n = *tests::any_size();
  const auto m = *tests::any_size();
  const auto rows = *tests::any_rows(n, m);
  const auto spare = *rc::gen::inRange(0, 4);
  const csr_matrix mat = real_matrix(m, rows, spare);
  const csr_matrix bare = pattern(m, columns_of(rows), spare);
  arrays out;
  arrays bare_out;
  csr_matrix back;
  csr_matrix bare_back;
  observe([&] {
    csr_to_csr_arrays(mat, out.n, out.m, out.nnz, out.ia, out.ja, &out.a);
    csr_to_csr_arrays(bare, bare_out.n, bare_out.m, bare_out.nnz, bare_out.ia, bare_out.ja);
    csr_to_csr_matrix(out.n, out.m, back, out.ia, out.ja, array_view<const double>(out.a));
    csr_to_csr_matrix(bare_out.n, bare_out.m, bare_back, bare_out.ia, bare_out.ja);
  });
  RC_ASSERT(entries_of(back) == rows);
  RC_ASSERT(back.m == m);
  RC_ASSERT(bare_back.type == matrix_structure_only);
  RC_ASSERT(columns_of(bare_back) == columns_of(rows));
  RC_ASSERT(back.ja.length() == std::max(out.nnz, 1));
  RC_ASSERT(out.ja.length() == out.nnz);
  RC_ASSERT(out.a.length() == out.nnz);
}

}  // namespace
