// SPDX-License-Identifier: MIT
// Products of matrices whose rows have the columns of the row before, as where several unknowns
// stand at one point, against the two passes that walk every row: the same arrays to the last bit.
#include "../../src/products/twins.hpp"

#include "faster_ways.hpp"

#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

using namespace csr_matrix_mod;
using namespace tests;
using csr_matrix_mod::products::twins;

namespace {

// How many unknowns stand at each point.
using points = std::vector<std::int32_t>;

std::int32_t unknowns(const points& at) { return std::accumulate(at.begin(), at.end(), 0); }

// The rows of one point have the same columns: all unknowns of some points, and now and then a
// column more, a column again, or any order. Values are any, zeros of both signs among them.
class random_rows {
 public:
  explicit random_rows(std::uint32_t seed) : random_(seed) {}

  entry_rows of(const points& rows, const points& columns, std::int32_t most_points) {
    entry_rows made;
    for (const std::int32_t number : rows) {
      const std::vector<std::int32_t> drawn = draw_columns(columns, most_points);
      for (std::int32_t r = 0; r < number; ++r) {
        auto& row = made.emplace_back();
        for (const std::int32_t column : drawn) row.push_back({column, value()});
      }
    }
    return made;
  }

 private:
  std::int32_t below(std::int32_t end) {
    return static_cast<std::int32_t>(random_() % static_cast<std::uint32_t>(end));
  }

  double value() {
    const std::int32_t drawn = below(1 << 20) - (1 << 19);
    return drawn % 16 == 0 ? -0.0 : drawn % 16 == 1 ? 0.0 : drawn / 3.0;
  }

  std::vector<std::int32_t> draw_columns(const points& columns, std::int32_t most_points) {
    std::vector<bool> taken(columns.size());
    for (std::int32_t t = below(most_points + 1); t > 0 && !columns.empty(); --t)
      taken[static_cast<std::size_t>(below(static_cast<std::int32_t>(columns.size())))] = true;
    std::vector<std::int32_t> drawn;
    std::int32_t column = 0;
    for (std::size_t p = 0; p < columns.size(); ++p)
      for (std::int32_t u = 0; u < columns[p]; ++u) {
        ++column;
        if (taken[p] && below(20) > 0) drawn.push_back(column);
      }
    const std::int32_t oddity = below(12);
    if (oddity == 0 && !drawn.empty()) drawn.push_back(drawn[drawn.size() / 2]);
    if (oddity == 1) std::shuffle(drawn.begin(), drawn.end(), random_);
    return drawn;
  }

  std::mt19937 random_;
};

// Are they walked together?
bool looked_for(const csr_matrix& l, const csr_matrix& r) {
  return twins({l.n, r.m, l.ia, l.ja, r.ia, r.ja}, r.n).look();
}

// Of graphs and patterns, where paths of twins are worth the same. Both are patterns afterwards.
void expect_patterns_of_the_passes(csr_matrix& l, csr_matrix& r) {
  const std::vector<std::int32_t> weights = weights_for(l);
  csr_matrix product;
  observe([&] { csr_matrix_multiply_graph(l, r, product); });
  EXPECT_TRUE(are_same(product, passes_of_graph(l, r)));
  observe([&] { csr_matrix_multiply_graph(l, r, product, std::nullopt, weights); });
  EXPECT_TRUE(are_same(product, passes_of_graph(l, r, &weights)));
  l.type = matrix_structure_only;
  r.type = matrix_structure_only;
  observe([&] { csr_matrix_multiply(l, r, product); });
  EXPECT_TRUE(are_same(product, passes_of_pattern(l, r)));
}

RC_GTEST_PROP(TwinRows, AreTheRowsOfTheTwoPasses, ()) {
  const auto any_points = [] {
    return *rc::gen::container<points>(*rc::gen::inRange<std::size_t>(1, 30),
                                       rc::gen::inRange(1, 12));
  };
  const points n = any_points();
  const points middle = any_points();
  const points m = any_points();
  random_rows rows(*rc::gen::arbitrary<std::uint32_t>());
  csr_matrix l = real_matrix(unknowns(middle), rows.of(n, middle, 6));
  csr_matrix r = real_matrix(unknowns(m), rows.of(middle, m, 6));
  const passes expected = passes_of_product(l, r);
  in_registers_of_every_width([&] {
    csr_matrix product;
    observe([&] { csr_matrix_multiply(l, r, product); });
    RC_ASSERT(are_same(product, expected));
  });
  expect_patterns_of_the_passes(l, r);
  RC_ASSERT(!testing::Test::HasFailure());
}

// As many unknowns at each point; more than are walked together, too.
TEST(TwinRows, AreThoseOfAnyNumberOfUnknowns) {
  for (std::int32_t number = 2; number <= 20; ++number) {
    const points at(30, number);
    csr_matrix mat = real_matrix(unknowns(at), random_rows(7).of(at, at, 5));
    EXPECT_TRUE(looked_for(mat, mat)) << number;
    expect_product_of_the_passes(mat, mat);
    expect_patterns_of_the_passes(mat, mat);
  }
}

TEST(TwinRows, AreNotLookedForInMatricesThatHaveFew) {
  points at(400, 1);
  const csr_matrix alone = real_matrix(unknowns(at), random_rows(8).of(at, at, 3));
  EXPECT_FALSE(looked_for(alone, alone));

  // The first thousand rows decide.
  at.assign(1100, 1);
  at.resize(1500, 5);
  const csr_matrix late = real_matrix(unknowns(at), random_rows(9).of(at, at, 3));
  EXPECT_FALSE(looked_for(late, late));
  expect_product_of_the_passes(late, late);
}

TEST(TwinRows, AreNotLookedForInPairsThatLeadToRowsThatDiffer) {
  const points pairs(40, 2);
  const points fives(16, 5);
  const points alone(120, 1);
  random_rows rows(11);
  const csr_matrix two = real_matrix(80, rows.of(pairs, pairs, 4));
  const csr_matrix five = real_matrix(80, rows.of(fives, pairs, 4));
  const csr_matrix differing = real_matrix(120, rows.of(points(80, 1), alone, 4));
  EXPECT_TRUE(looked_for(two, two));
  EXPECT_FALSE(looked_for(two, differing));
  EXPECT_TRUE(looked_for(five, differing));
  expect_product_of_the_passes(two, differing);
  expect_product_of_the_passes(five, differing);
}

TEST(TwinRows, KeepInfinitiesAndTheSignOfZero) {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  const csr_matrix mat = real_matrix(3, {{{1, -0.0}, {2, infinity}, {3, 1e-300}},
                                         {{1, 1e-300}, {2, 0.0}, {3, -0.0}},
                                         {{1, 0.0}, {2, 1e-300}, {3, -infinity}}});
  EXPECT_TRUE(looked_for(mat, mat));
  expect_product_of_the_passes(mat, mat);
}

//   1 1 .       . 1 .     Rows 1 and 2 lead to columns 1 and 2, each leaves out its own: no more
//   1 1 .  -->  1 . .     is stored for both than for one alone. Row 3 must not take what they met
//   1 . .       1 1 .     for its own.
TEST(TwinRows, OfAGraphLeaveOutADiagonalEach) {
  const csr_matrix graph = pattern(3, {{1, 2}, {1, 2}, {1}});
  csr_matrix product;
  csr_matrix_multiply_graph(graph, graph, product);
  EXPECT_EQ(columns_of(product), (column_rows{{2}, {1}, {1, 2}}));
  EXPECT_TRUE(looked_for(graph, graph));
}

// Rows of which the sums need more room than those before, to the last row and the last column.
TEST(TwinRows, MayBecomeLonger) {
  entry_rows rows(60);
  for (std::int32_t i = 0; i < 60; ++i)
    for (std::int32_t j = 0; j <= i / 3; ++j)
      rows[static_cast<std::size_t>(i)].push_back({60 - j, 1.0 / (i + j + 1)});
  csr_matrix mat = real_matrix(60, rows);
  EXPECT_TRUE(looked_for(mat, mat));
  expect_product_of_the_passes(mat, mat);
  expect_patterns_of_the_passes(mat, mat);
}

// More rows than columns: some have no diagonal.
TEST(TwinRows, MayBeMoreThanColumns) {
  csr_matrix tall = real_matrix(9, random_rows(13).of(points(20, 4), points(3, 3), 3));
  csr_matrix square = real_matrix(9, random_rows(14).of(points(3, 3), points(3, 3), 3));
  EXPECT_TRUE(looked_for(tall, square));
  expect_patterns_of_the_passes(tall, square);
}

// Room for the bits, the columns or the sums is refused, once, twice or from then on: rows are
// walked alone, and nobody is told.
TEST(TwinRows, AreDoneWithoutWhereThereIsNoRoomToFindThem) {
  const points at(20, 3);
  const csr_matrix mat = real_matrix(unknowns(at), random_rows(10).of(at, at, 4));
  expect_square_in_shortage(mat, 7);
  expect_product_in_shortage(passes_of_graph(mat, mat), 8, [&](csr_matrix& product) {
    csr_matrix_multiply_graph(mat, mat, product);
  });
}

}  // namespace
