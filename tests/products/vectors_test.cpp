// SPDX-License-Identifier: MIT
#include "../../src/csr_matrix/uneven_rows.hpp"
#include "../support/dense.hpp"
#include "products.hpp"

#include <rapidcheck/gtest.h>

#include <bit>
#include <cmath>
#include <limits>

using namespace csr_matrix_mod;
using namespace tests;

namespace {

using ints = std::vector<std::int32_t>;
using doubles = std::vector<double>;

// A vector of doubles bit for bit: -0.0 is not 0.0.
std::vector<std::uint64_t> bits(const doubles& x) {
  std::vector<std::uint64_t> all;
  for (const double v : x) all.push_back(std::bit_cast<std::uint64_t>(v));
  return all;
}

// The routine on a `y` of its own that holds `y` before.
template <class Routine, class T>
std::vector<T> applied(Routine* routine, const csr_matrix& mat, const std::vector<T>& x,
                       std::vector<T> y) {
  expect_silent([&] { routine(mat, x, y); });
  return y;
}

//     [ 1  .  2 ]
//     [ .  .  . ]   row 1 is stored as columns 3, 1
//     [ 3  4  . ]
const entry_rows small{{{3, 2.0}, {1, 1.0}}, {}, {{1, 3.0}, {2, 4.0}}};

TEST(MultiplyVector, OverwritesYWithTheSumsOfTheRows) {
  const csr_matrix mat = real_matrix(3, small, 2);
  EXPECT_EQ(applied(csr_matrix_multiply_rvector, mat, doubles{1, 10, 100}, doubles{9, 9, 9}),
            (doubles{201, 0, 43}));
  EXPECT_EQ(applied(csr_matrix_multiply_ivector, mat, ints{1, 10, 100}, ints{9, 9, 9}),
            (ints{101, 0, 11}));
}

TEST(MultiplyVector, KeepsWhatFollowsInALongerY) {
  const csr_matrix mat = real_matrix(3, small);
  EXPECT_EQ(applied(csr_matrix_multiply_rvector, mat, doubles{1, 1, 1}, doubles{9, 9, 9, 8, 7}),
            (doubles{3, 0, 7, 8, 7}));
  EXPECT_EQ(applied(csr_matrix_multiply_ivector, mat, ints{1, 1, 1}, ints{9, 9, 9, 8, 7}),
            (ints{2, 0, 2, 8, 7}));
}

TEST(TransposedTimesVector, OverwritesYWithTheSumsOfTheColumns) {
  const csr_matrix mat = real_matrix(3, small, 2);
  EXPECT_EQ(applied(csr_matrix_trans_mult_rvector, mat, doubles{1, 10, 100}, doubles{9, 9, 9}),
            (doubles{301, 400, 2}));
  EXPECT_EQ(applied(csr_matrix_trans_mult_ivector, mat, ints{1, 10, 100}, ints{9, 9, 9}),
            (ints{101, 100, 1}));
}

TEST(TransposedTimesVector, ClearsWhatFollowsInALongerY) {
  const csr_matrix mat = real_matrix(3, small);
  EXPECT_EQ(applied(csr_matrix_trans_mult_rvector, mat, doubles{1, 1, 1}, doubles{9, 9, 9, 8, 7}),
            (doubles{4, 4, 2, 0, 0}));
  EXPECT_EQ(applied(csr_matrix_trans_mult_ivector, mat, ints{1, 1, 1}, ints{9, 9, 9, 8, 7}),
            (ints{2, 1, 1, 0, 0}));
}

TEST(MultiplyVector, WithoutRowsWritesNothingAndAcceptsAnyY) {
  const csr_matrix mat = real_matrix(2, {});
  EXPECT_EQ(applied(csr_matrix_multiply_rvector, mat, doubles{1, 1}, doubles{}), doubles{});
  EXPECT_EQ(applied(csr_matrix_multiply_rvector, mat, doubles{1, 1}, doubles{9}), doubles{9});
  EXPECT_EQ(applied(csr_matrix_multiply_ivector, mat, ints{1, 1}, ints{}), ints{});
  EXPECT_EQ(applied(csr_matrix_multiply_ivector, mat, ints{1, 1}, ints{9}), ints{9});
}

TEST(TransposedTimesVector, WithoutRowsClearsAllOfY) {
  const csr_matrix mat = real_matrix(2, {});
  EXPECT_EQ(applied(csr_matrix_trans_mult_rvector, mat, doubles{}, doubles{9, 9, 9}),
            (doubles{0, 0, 0}));
  EXPECT_EQ(applied(csr_matrix_trans_mult_ivector, mat, ints{}, ints{9, 9, 9}), (ints{0, 0, 0}));
}

TEST(MultiplyVector, WithoutColumnsGivesZeros) {
  const csr_matrix mat = real_matrix(0, {{}, {}});
  EXPECT_EQ(bits(applied(csr_matrix_multiply_rvector, mat, doubles{}, doubles{9, 9})),
            bits({0.0, 0.0}));
  EXPECT_EQ(applied(csr_matrix_multiply_ivector, mat, ints{}, ints{9, 9}), (ints{0, 0}));
  EXPECT_EQ(applied(csr_matrix_trans_mult_rvector, mat, doubles{1, 1}, doubles{}), doubles{});
  EXPECT_EQ(applied(csr_matrix_trans_mult_ivector, mat, ints{1, 1}, ints{}), ints{});
}

TEST(MultiplyVector, AddsARepeatedColumnEachTime) {
  const csr_matrix mat = real_matrix(2, {{{2, 1.0}, {2, 5.0}}});
  EXPECT_EQ(applied(csr_matrix_multiply_rvector, mat, doubles{7, 10}, doubles{9}), doubles{60});
  EXPECT_EQ(applied(csr_matrix_multiply_ivector, mat, ints{7, 10}, ints{9}), ints{20});
  EXPECT_EQ(applied(csr_matrix_trans_mult_rvector, mat, doubles{10}, doubles{9, 9}),
            (doubles{0, 60}));
  EXPECT_EQ(applied(csr_matrix_trans_mult_ivector, mat, ints{10}, ints{9, 9}), (ints{0, 20}));
}

TEST(IntegerVectors, CountEachStoredEntryOnceWhateverItsValue) {
  const csr_matrix bare = pattern(3, columns_of(small));
  const csr_matrix valued = real_matrix(3, small);
  const ints x{1, 10, 100}, y{0, 0, 0};
  EXPECT_EQ(applied(csr_matrix_multiply_ivector, bare, x, y), (ints{101, 0, 11}));
  EXPECT_EQ(applied(csr_matrix_multiply_ivector, valued, x, y), (ints{101, 0, 11}));
  EXPECT_EQ(applied(csr_matrix_trans_mult_ivector, bare, x, y), (ints{101, 100, 1}));
  EXPECT_EQ(applied(csr_matrix_trans_mult_ivector, valued, x, y), (ints{101, 100, 1}));
}

TEST(IntegerVectors, WrapAt32Bits) {
  constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();
  constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();
  const csr_matrix row = pattern(2, {{1, 2}});
  EXPECT_EQ(applied(csr_matrix_multiply_ivector, row, ints{most, 1}, ints{0}), ints{least});
  EXPECT_EQ(applied(csr_matrix_multiply_ivector, row, ints{least, -1}, ints{0}), ints{most});
  const csr_matrix column = pattern(1, {{1}, {1}});
  EXPECT_EQ(applied(csr_matrix_trans_mult_ivector, column, ints{most, 1}, ints{0}), ints{least});
}

// 1 + 1e16 - 1e16 is 0 from the left and 1 from the right.
TEST(RealVectors, AddInStoredOrder) {
  const csr_matrix row = real_matrix(3, {{{3, 1.0}, {1, 1e16}, {2, -1e16}}});
  EXPECT_EQ(applied(csr_matrix_multiply_rvector, row, doubles{1, 1, 1}, doubles{9}), doubles{0});
  const csr_matrix column = real_matrix(1, {{{1, 1.0}}, {{1, 1e16}}, {{1, -1e16}}});
  EXPECT_EQ(applied(csr_matrix_trans_mult_rvector, column, doubles{1, 1, 1}, doubles{9}),
            doubles{0});
}

TEST(RealVectors, AddToAPositiveZero) {
  const csr_matrix mat = real_matrix(1, {{{1, -0.0}}});
  EXPECT_EQ(bits(applied(csr_matrix_multiply_rvector, mat, doubles{1}, doubles{9})), bits({0.0}));
  EXPECT_EQ(bits(applied(csr_matrix_trans_mult_rvector, mat, doubles{1}, doubles{9})), bits({0.0}));
}

TEST(RealVectors, RoundAProductBeforeItIsAdded) {
  const double e = std::ldexp(1.0, -30);
  const csr_matrix row = real_matrix(2, {{{1, -1.0}, {2, 1.0 + e}}});
  EXPECT_EQ(applied(csr_matrix_multiply_rvector, row, doubles{1.0, 1.0 - e}, doubles{9}),
            doubles{0});
  const csr_matrix column = real_matrix(1, {{{1, -1.0}}, {{1, 1.0 + e}}});
  EXPECT_EQ(applied(csr_matrix_trans_mult_rvector, column, doubles{1.0, 1.0 - e}, doubles{9}),
            doubles{0});
}

TEST(RealVectors, DoNotSkipAZeroThatMeetsAnInfinity) {
  const csr_matrix mat = real_matrix(1, {{{1, std::numeric_limits<double>::infinity()}}});
  EXPECT_TRUE(std::isnan(applied(csr_matrix_multiply_rvector, mat, doubles{0}, doubles{9})[0]));
  EXPECT_TRUE(std::isnan(applied(csr_matrix_trans_mult_rvector, mat, doubles{0}, doubles{9})[0]));
}

// 3 rows, 2 columns; y is one element short.
template <class Routine, class T>
void expect_too_small(Routine* routine, std::vector<T> y, const std::string& lines,
                      const std::string& stop) {
  const csr_matrix mat = real_matrix(2, {{{1, 1.0}}, {{2, 1.0}}, {}});
  const std::vector<T> x{1, 1, 1}, before = y;
  const observed seen = observe([&] { routine(mat, x, y); });
  EXPECT_EQ(seen.output, lines);
  EXPECT_EQ(seen.stop, stop);
  EXPECT_EQ(y, before);
}

TEST(MultiplyVector, StopsWhereYHasFewerElementsThanTheMatrixHasRows) {
  const std::string lines = " row size of matrix =            3\n size of y =            2\n";
  expect_too_small(csr_matrix_multiply_rvector, doubles{9, 9}, lines,
                   "size of y too small in matrix_multiply_rvector");
  expect_too_small(csr_matrix_multiply_ivector, ints{9, 9}, lines,
                   "size of y too small in matrix_multiply_ivector");
}

TEST(TransposedTimesVector, StopsWhereYHasFewerElementsThanTheMatrixHasColumns) {
  const std::string lines = " column size of matrix =            2\n size of y =            1\n";
  expect_too_small(csr_matrix_trans_mult_rvector, doubles{9}, lines,
                   "size of y too small in matrix_trans_mult_rvector");
  expect_too_small(csr_matrix_trans_mult_ivector, ints{9}, lines,
                   "size of y too small in matrix_trans_mult_ivector");
}

TEST(AllVectors, AreMultipliedWithoutAskingForStorage) {
  const csr_matrix mat = real_matrix(3, small);
  const doubles x{1, 10, 100};
  const ints ix{1, 10, 100};
  doubles y(3);
  ints iy(3);
  const refuse_allocation refuse(0);
  expect_silent([&] { csr_matrix_multiply_rvector(mat, x, y); });
  expect_silent([&] { csr_matrix_trans_mult_rvector(mat, x, y); });
  expect_silent([&] { csr_matrix_multiply_ivector(mat, ix, iy); });
  expect_silent([&] { csr_matrix_trans_mult_ivector(mat, ix, iy); });
  EXPECT_FALSE(refuse.reached());
}

RC_GTEST_PROP(RealVectors, AgreeWithTheDenseSumsBitForBit, ()) {
  const std::int32_t n = *any_size(), m = *any_size();
  const any_operand operand(n, m);
  const doubles x = *any_vector(m), z = *any_vector(n);
  const doubles y(static_cast<std::size_t>(n), 9.0), w(static_cast<std::size_t>(m), 9.0);
  RC_ASSERT(bits(applied(csr_matrix_multiply_rvector, operand.mat, x, y)) ==
            bits(dense::times(operand.rows, x)));
  RC_ASSERT(bits(applied(csr_matrix_trans_mult_rvector, operand.mat, z, w)) ==
            bits(dense::transpose_times(operand.rows, m, z)));
}

RC_GTEST_PROP(IntegerVectors, AgreeWithTheDenseSums, ()) {
  const std::int32_t n = *any_size(), m = *any_size();
  const any_operand operand(n, m);
  const column_rows columns = columns_of(operand.rows);
  const auto any_ints = [](std::int32_t length) {
    return *rc::gen::container<ints>(static_cast<std::size_t>(length),
                                     rc::gen::arbitrary<std::int32_t>());
  };
  const ints x = any_ints(m), z = any_ints(n);
  const ints y(static_cast<std::size_t>(n), 9), w(static_cast<std::size_t>(m), 9);
  RC_ASSERT(applied(csr_matrix_multiply_ivector, operand.mat, x, y) == dense::times(columns, x));
  RC_ASSERT(applied(csr_matrix_trans_mult_ivector, operand.mat, z, w) ==
            dense::transpose_times(columns, m, z));
}

// Rows of as many entries as `length` says, with columns all over and any values, times vectors of
// any elements. Where `odd` is given, every so many values are infinite, and the one behind -0.0.
void expect_dense_sums(std::int32_t n, const std::function<std::int64_t(std::int32_t i)>& length,
                       std::int32_t spare = 0, std::int64_t odd = 0) {
  entry_rows rows(static_cast<std::size_t>(n));
  std::int64_t walk = 1;
  const auto any = [&walk] { return walk = walk * 48271 % 2147483647; };
  std::int64_t nnz = 0;
  const auto any_entry_value = [&] {
    ++nnz;
    if (odd > 0 && nnz % odd == 0) return std::numeric_limits<double>::infinity();
    if (odd > 0 && nnz % odd == 1) return -0.0;
    return static_cast<double>(any()) * 0.1;
  };
  for (std::int32_t i = 0; i < n; ++i)
    for (std::int64_t k = length(i); k > 0; --k)
      rows[static_cast<std::size_t>(i)].push_back(
          {static_cast<std::int32_t>(any() % n) + 1, any_entry_value()});
  doubles x;
  ints integers;
  for (std::int32_t i = 0; i < n; ++i) {
    x.push_back(static_cast<double>(any()) * 0.1);
    integers.push_back(static_cast<std::int32_t>(any()));
  }
  const doubles y(x.size(), 9.0);
  const ints w(x.size(), 9);
  const csr_matrix mat = real_matrix(n, rows, spare);
  EXPECT_EQ(bits(applied(csr_matrix_multiply_rvector, mat, x, y)), bits(dense::times(rows, x)));
  EXPECT_EQ(bits(applied(csr_matrix_trans_mult_rvector, mat, x, y)),
            bits(dense::transpose_times(rows, n, x)));

  const column_rows columns = columns_of(rows);
  const csr_matrix bare = pattern(n, columns, spare);
  EXPECT_EQ(applied(csr_matrix_multiply_ivector, bare, integers, w),
            dense::times(columns, integers));
  EXPECT_EQ(applied(csr_matrix_trans_mult_ivector, bare, integers, w),
            dense::transpose_times(columns, n, integers));
}

// More entries than the cache holds, in rows of none, few, some and very many.
TEST(AllVectors, OfALargeMatrixAgreeWithTheDenseSumsBitForBit) {
  constexpr std::int32_t n = 1009;
  expect_dense_sums(n, [](std::int32_t i) {
    return i == n / 2 ? 240000 : i % 4 == 0 ? i % 401 : i % 29;
  });
}

// Rows of up to one, two and three entries, and of four, which are walked as longer ones. Entries
// are asked for where there is room for as many as above.
TEST(AllVectors, OfShortRowsAgreeWithTheDenseSumsBitForBit) {
  constexpr std::int32_t spare = 300'000;
  for (const std::int32_t most : {1, 2, 3, 4})
    for (const std::int32_t n : {1, 50, 500})
      expect_dense_sums(
          n, [most](std::int32_t i) { return i % 50 == 7 ? 0 : most; }, spare);
}

// A number below `kinds` that the one before does not tell.
std::int32_t any_of(std::int32_t kinds, std::int32_t i) {
  return static_cast<std::int32_t>((static_cast<std::uint32_t>(i) * 2654435761U >> 12U) %
                                   static_cast<std::uint32_t>(kinds));
}

// Rows as those of prolongations, triangles and tetrahedra, so many that their ends surprise. An
// infinite value behind the end of a row must not reach it.
TEST(AllVectors, OfUnevenRowsAgreeWithTheDenseSumsBitForBit) {
  constexpr std::int32_t n = 1 << 14;
  for (const auto& [least, most] : {std::pair{0, 3}, {5, 9}, {9, 19}})
    for (const std::int32_t last : {0, 1, 30})
      expect_dense_sums(
          n,
          [&, few = least, kinds = most - least + 1](std::int32_t i) {
            return i == n - 1 ? last : few + any_of(kinds, i);
          },
          0, 5003);
}

// Some uneven rows, so many that they are walked in steps, of which `change` moves a start.
void expect_products_of_uneven_rows(void (*change)(csr_matrix&, column_rows&, std::size_t)) {
  constexpr std::int32_t n = 1 << 14;
  for (const std::int32_t kinds : {4, 9}) {
    column_rows rows(n);
    for (std::int32_t i = 0; i < n; ++i)
      rows[static_cast<std::size_t>(i)].assign(static_cast<std::size_t>(any_of(kinds, i)), i + 1);
    csr_matrix mat = pattern(n, rows);
    change(mat, rows, n / 2);
    const ints x(n, 3), y(n, 9);
    EXPECT_EQ(applied(csr_matrix_multiply_ivector, mat, x, y), dense::times(rows, x));
    EXPECT_EQ(applied(csr_matrix_trans_mult_ivector, mat, x, y),
              dense::transpose_times(rows, n, x));
  }
}

// A row that begins before the row before it, which is none then.
TEST(AllVectors, OfUnevenRowsThatShareEntriesVisitThemAgain) {
  expect_products_of_uneven_rows(begin_two_rows_earlier<column_rows>);
}

TEST(AllVectors, OfUnevenRowsSkipOneThatEndsBeforeItBegins) {
  expect_products_of_uneven_rows(end_before_it_begins<column_rows>);
}

csr_matrix with_lengths(std::int32_t n, const std::function<std::int32_t(std::int32_t i)>& length) {
  column_rows rows(static_cast<std::size_t>(n));
  for (std::int32_t i = 0; i < n; ++i)
    rows[static_cast<std::size_t>(i)].assign(static_cast<std::size_t>(length(i)), 1);
  return pattern(1, rows);
}

TEST(EndsOfRows, SurpriseWhereLengthsDifferAndAreWithinOneStep) {
  constexpr std::int32_t n = 1 << 14;
  const auto surprise = [](std::int32_t rows, std::int32_t step, const auto& length) {
    return ends_surprise(with_lengths(rows, length), step);
  };
  const auto mixed = [](std::int32_t least, std::int32_t kinds) {
    return [=](std::int32_t i) { return least + any_of(kinds, i); };
  };
  EXPECT_TRUE(surprise(n, 8, mixed(5, 5)));
  EXPECT_TRUE(surprise(n, 4, mixed(0, 4)));
  EXPECT_FALSE(surprise(n - 1, 8, mixed(5, 5)));
  EXPECT_FALSE(surprise(n, 8, mixed(7, 1)));
  EXPECT_FALSE(surprise(n, 4, [](std::int32_t i) { return i % 10 == 0 ? 1 : 0; }));
  EXPECT_FALSE(surprise(n, 8, mixed(20, 60)));
}

}  // namespace
