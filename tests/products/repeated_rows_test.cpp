// SPDX-License-Identifier: MIT
// Products of stencils, whose rows repeat the row before moved by one column, against the two
// passes that walk every row: the same arrays to the last bit.
#include "../../src/products/row_repeats.hpp"
#include "../../src/products/shifted_rows.hpp"

#include "faster_ways.hpp"

#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <vector>

using namespace csr_matrix_mod;
using namespace tests;

namespace {

// Rows that follow each other in stretches: in each all rows have the same columns relative to the
// row, in any order, repeated columns among them. What leaves the matrix is left out, as at the rim
// of a grid; in some matrices an entry more breaks a row now and then.
entry_rows stretches(std::int32_t n, std::int32_t m) {
  entry_rows rows(static_cast<std::size_t>(n));
  std::vector<std::int32_t> offsets;
  const bool broken = *rc::gen::inRange(0, 3) == 0;
  for (std::int32_t i = 0; i < n; ++i) {
    if (i == 0 || *rc::gen::inRange(0, 90) == 0)
      offsets = *rc::gen::container<std::vector<std::int32_t>>(*rc::gen::inRange<std::size_t>(0, 7),
                                                               rc::gen::inRange(-12, 13));
    auto& row = rows[static_cast<std::size_t>(i)];
    for (const std::int32_t offset : offsets)
      if (i + offset >= 0 && i + offset < m) row.push_back({i + offset + 1, 0.0});
    if (broken && m > 0 && *rc::gen::inRange(0, 80) == 0)
      row.push_back({*rc::gen::inRange(1, m + 1), 0.0});
  }
  // Drawing each value would take seconds.
  std::uint64_t state = *rc::gen::arbitrary<std::uint64_t>();
  for (auto& row : rows)
    for (auto& [column, value] : row) {
      state = state * 6364136223846793005U + 1442695040888963407U;
      const auto drawn = static_cast<std::int32_t>(state >> 40U) - (1 << 23);
      value = drawn % 16 == 0 ? -0.0 : drawn % 16 == 1 ? 0.0 : drawn / 3.0;
    }
  return rows;
}

struct operand_pair {
  csr_matrix left, right;
};

operand_pair any_pair() {
  const auto n = *rc::gen::inRange<std::int32_t>(1, 400);
  const auto middle = n + *rc::gen::inRange<std::int32_t>(-3, 4);
  const auto m = n + *rc::gen::inRange<std::int32_t>(-3, 4);
  return {real_matrix(std::max(middle, 0), stretches(n, std::max(middle, 0))),
          real_matrix(std::max(m, 0), stretches(std::max(middle, 0), std::max(m, 0)))};
}

// The square of one stencil, where both operands are one record, in a third of the cases.
const csr_matrix& right_of(const operand_pair& of) {
  return of.left.n == of.left.m && *rc::gen::inRange(0, 3) == 0 ? of.left : of.right;
}

void require_product(const csr_matrix& l, const csr_matrix& r, const passes& expected) {
  in_registers_of_every_width([&] {
    csr_matrix product;
    observe([&] { csr_matrix_multiply(l, r, product); });
    RC_ASSERT(are_same(product, expected));
  });
}

RC_GTEST_PROP(RepeatedRows, AreTheRowsOfTheTwoPassesInAProduct, ()) {
  const operand_pair of = any_pair();
  const csr_matrix& right = right_of(of);
  require_product(of.left, right, passes_of_product(of.left, right));
}

RC_GTEST_PROP(RepeatedRows, AreTheRowsOfTheTwoPassesInAProductOfPatterns, ()) {
  operand_pair of = any_pair();
  of.left.type = matrix_structure_only;
  of.right.type = matrix_structure_only;
  const csr_matrix& right = right_of(of);
  require_product(of.left, right, passes_of_pattern(of.left, right));
}

RC_GTEST_PROP(RepeatedRows, AreTheRowsOfTheTwoPassesInAGraphProduct, ()) {
  const operand_pair of = any_pair();
  const csr_matrix& right = right_of(of);
  const passes counted = passes_of_graph(of.left, right);
  in_registers_of_every_width([&] {
    csr_matrix paths;
    observe([&] { csr_matrix_multiply_graph(of.left, right, paths); });
    RC_ASSERT(are_same(paths, counted));
  });

  const std::vector<std::int32_t> weights = weights_for(of.left);
  const passes weighed = passes_of_graph(of.left, right, &weights);
  in_registers_of_every_width([&] {
    csr_matrix weighted;
    observe([&] {
      csr_matrix_multiply_graph(of.left, right, weighted, std::nullopt,
                                array_view<const std::int32_t>(weights));
    });
    RC_ASSERT(are_same(weighted, weighed));
  });
}

// n rows of the columns i - reach to i + reach, those inside.
entry_rows band(std::int32_t n, std::int32_t reach, double value) {
  entry_rows rows(static_cast<std::size_t>(n));
  for (std::int32_t i = 1; i <= n; ++i)
    for (std::int32_t j = std::max(1, i - reach); j <= std::min(n, i + reach); ++j)
      rows[static_cast<std::size_t>(i - 1)].push_back({j, value / (i + j)});
  return rows;
}

void expect_square_of_the_passes(const csr_matrix& mat) { expect_product_of_the_passes(mat, mat); }

// The stencil of a point and its neighbours on a grid, the corners of its cube or not.
csr_matrix grid(std::int32_t width, std::int32_t height, std::int32_t depth, bool corners = false) {
  entry_rows rows;
  for (std::int32_t z = 0; z < depth; ++z)
    for (std::int32_t y = 0; y < height; ++y)
      for (std::int32_t x = 0; x < width; ++x) {
        auto& row = rows.emplace_back();
        for (std::int32_t step = 0; step < 27; ++step) {
          const std::int32_t dx = step % 3 - 1;
          const std::int32_t dy = step / 3 % 3 - 1;
          const std::int32_t dz = step / 9 - 1;
          if (!corners && std::abs(dx) + std::abs(dy) + std::abs(dz) > 1) continue;
          if (x + dx < 0 || x + dx >= width || y + dy < 0 || y + dy >= height) continue;
          if (z + dz < 0 || z + dz >= depth) continue;
          const std::int32_t column = ((z + dz) * height + y + dy) * width + x + dx + 1;
          row.push_back({column, 1.0 / (static_cast<double>(rows.size()) + 3.0 * step)});
        }
      }
  return real_matrix(width * height * depth, rows);
}

// 33 * 33 paths a row are written down, 141 * 141 are more than there is room for.
TEST(RepeatedRows, AreWalkedWhereTheyHaveTooManyPaths) {
  expect_square_of_the_passes(real_matrix(300, band(300, 16, 1.0)));
  expect_square_of_the_passes(real_matrix(300, band(300, 70, 1.0)));
}

// Grids whose lines have every length around 16 rows at a time, in two and three dimensions: rims
// repeat those of the line before, planes those of the plane before.
TEST(RepeatedRows, AreThoseOfStencilsOnGridsOfAnySize) {
  for (const std::int32_t side : {12, 17, 18, 19, 20, 21, 22, 24, 31, 35, 36, 40, 70})
    expect_square_of_the_passes(grid(side, 9, 1));
  for (const std::int32_t side : {17, 20, 23, 38, 70}) {
    expect_square_of_the_passes(grid(side, 6, 5));
    expect_square_of_the_passes(grid(side, 5, 4, true));
  }
}

// More kinds of rows than are remembered, and kinds that take the more room the later they come.
TEST(RepeatedRows, AreFoundWhateverManyKindsThereAre) {
  entry_rows rows;
  for (std::int32_t round = 0; round < 3; ++round)
    for (std::int32_t reach = 0; reach < 13; ++reach)
      for (std::int32_t i = 0; i < 21; ++i) {
        const auto row = static_cast<std::int32_t>(rows.size()) + 1;
        auto& columns = rows.emplace_back();
        for (std::int32_t j = row - reach; j <= row + reach; ++j)
          if (j >= 1 && j <= 3 * 13 * 21) columns.push_back({j, 1.0 / (row + j % 7)});
      }
  expect_square_of_the_passes(real_matrix(3 * 13 * 21, rows));
}

TEST(RepeatedRows, GoOnFarBeyondOneWordOfBits) {
  for (const std::int32_t n : {70, 71, 72, 73, 127, 128, 129, 1023, 1024, 1025, 3000})
    expect_square_of_the_passes(real_matrix(n, band(n, 1, 1.0)));
}

TEST(RepeatedRows, KeepInfinitiesAndTheSignOfZero) {
  csr_matrix mat = real_matrix(64, band(64, 1, -0.0));
  mat.a(80) = std::numeric_limits<double>::infinity();
  mat.a(120) = std::numeric_limits<double>::denorm_min();
  expect_square_of_the_passes(mat);
}

// The first thousand rows decide: these do not repeat each other, those behind them do.
TEST(RepeatedRows, AreNotLookedForBehindManyThatDoNotRepeat) {
  entry_rows rows = band(2500, 1, 1.0);
  for (std::size_t i = 0; i < 1100; ++i)
    std::rotate(rows[i].begin(), rows[i].begin() + static_cast<std::ptrdiff_t>(i % 2),
                rows[i].end());
  expect_square_of_the_passes(real_matrix(2500, rows));
}

// More kinds of rows than are remembered, each so small that all would fit.
TEST(RepeatedRows, AreFoundWhereManySmallKindsFollowEachOther) {
  constexpr std::int32_t kinds = 300;
  constexpr std::int32_t stretch = 20;
  constexpr std::int32_t n = kinds * stretch;
  entry_rows rows(n);
  for (std::int32_t i = 0; i < n; ++i) {
    const std::int32_t column = i + i / stretch % (kinds / 2) + 1;
    if (column <= n) rows[static_cast<std::size_t>(i)].push_back({column, 1.0 / (i + 1)});
  }
  expect_square_of_the_passes(real_matrix(n, rows));
}

// Kinds of rows that differ in the columns of the right rows alone.
TEST(RepeatedRows, AreNotTakenForRowsThatLeadToOtherColumns) {
  constexpr std::int32_t n = 600;
  entry_rows left(n);
  entry_rows right(n);
  for (std::int32_t i = 0; i < n; ++i) {
    left[static_cast<std::size_t>(i)].push_back({i + 1, 1.0 / (i + 1)});
    for (const std::int32_t offset : {0, i / 25 % 4 + 1, 6})
      right[static_cast<std::size_t>(i)].push_back({i + offset + 1, 2.0 + i});
  }
  expect_product_of_the_passes(real_matrix(n, left), real_matrix(n + 6, right));
}

// The second hundred rows lead over other right rows to the same columns as the first hundred.
TEST(RepeatedRows, AreNotTakenForRowsThatLeadOverOthers) {
  entry_rows left(200);
  entry_rows right(210);
  for (std::int32_t i = 1; i <= 200; ++i)
    left[static_cast<std::size_t>(i - 1)].push_back({i <= 100 ? i : i + 10, 1.0 / i});
  for (std::int32_t j = 1; j <= 210; ++j)
    right[static_cast<std::size_t>(j - 1)].push_back({j <= 100 ? j : std::max(j - 10, 1), 3.0 / j});
  expect_product_of_the_passes(real_matrix(210, left), real_matrix(210, right));
}

// Rows that are the row before moved by one column, by their definition.
bool is_shifted(const entry_rows& rows, std::size_t row) {
  const auto& before = rows[row - 1];
  return !before.empty() && std::equal(before.begin(), before.end(), rows[row].begin(),
                                       rows[row].end(), [](const entry& one, const entry& next) {
                                         return next.column == one.column + 1;
                                       });
}

// Rows of one length are looked at together, and one by one where not all of them are shifted.
RC_GTEST_PROP(ShiftedRows, AreThoseThatAreTheRowBeforeMovedByOneColumn, ()) {
  const auto n = *rc::gen::inRange<std::int32_t>(1, 400);
  entry_rows rows = stretches(n, n + 400);
  for (std::int32_t changes = *rc::gen::inRange(0, 6); changes > 0; --changes) {
    auto& row = rows[*rc::gen::inRange<std::size_t>(0, rows.size())];
    if (!row.empty()) row[*rc::gen::inRange<std::size_t>(0, row.size())].column = 1;
  }
  const csr_matrix mat = real_matrix(n + 400, rows);
  std::int32_t expected = 0;
  for (std::size_t row = 1; row < rows.size(); ++row) expected += is_shifted(rows, row) ? 1 : 0;
  products::shifted_rows found;
  RC_ASSERT(found.look(n, mat.ia.data(), mat.ja.data()) == (4 * expected >= 3 * n));
  for (std::int32_t i = 2; i <= n; ++i)
    RC_ASSERT((found.from(i) & 1U) ==
              (is_shifted(rows, static_cast<std::size_t>(i - 1)) ? 1U : 0U));
}

// A row of three entries and those that repeat it, again and again.
csr_matrix runs_of(std::int32_t repeats) {
  constexpr std::int32_t n = 3000;
  entry_rows rows(n);
  for (std::int32_t i = 0; i < n; ++i) {
    const std::int32_t kind = i / (repeats + 1) % 2;
    for (const std::int32_t offset : {0, kind + 1, 3})
      rows[static_cast<std::size_t>(i)].push_back({i + offset + 1, 1.0 / (i + offset + 1)});
  }
  return real_matrix(n + 3, rows);
}

csr_matrix identity(std::int32_t n) { return real_matrix(n, band(n, 0, 1.0)); }

TEST(RowRepeats, AreWorthwhileWhereMoreThanEightFollowEachOther) {
  for (const std::int32_t repeats : {5, 6, 7, 8, 9, 40, 100}) {
    const csr_matrix left = identity(3000);
    const csr_matrix right = runs_of(repeats);
    const products::row_repeats found({left.n, right.m, left.ia, left.ja, right.ia, right.ja},
                                      right.n);
    EXPECT_EQ(found.worthwhile(), repeats > 8) << repeats;
    expect_product_of_the_passes(left, right);
  }
}

// Of so few paths that the entries may be counted beforehand, with more columns than rows and with
// fewer.
TEST(RepeatedRows, AreCountedInSmallProductsThatAreNotSquare) {
  constexpr std::int32_t n = 2500;
  for (const std::int32_t m : {n + 700, n / 2}) {
    entry_rows left(n);
    entry_rows right(n);
    for (std::int32_t i = 1; i <= n; ++i) {
      const auto row = static_cast<std::size_t>(i - 1);
      for (std::int32_t j = std::max(1, i - 1); j <= std::min(n, i + 1); ++j) {
        left[row].push_back({j, 0.1 * i});
        if (j + m - n > 0) right[row].push_back({j + m - n, 0.3 * j});
      }
    }
    expect_product_of_the_passes(real_matrix(n, left), real_matrix(m, right));
  }
}

// No column follows the largest.
TEST(RepeatedRows, AreNotFoundInTheLargestColumn) {
  constexpr std::int32_t largest = std::numeric_limits<std::int32_t>::max();
  const std::vector<std::int32_t> starts{1, 3, 5, 7};
  const std::vector<std::int32_t> columns{largest - 1, largest, largest, 1, largest, largest};
  products::shifted_rows rows;
  EXPECT_FALSE(rows.look(3, starts.data(), columns.data()));
}

// Room for the bits, for the patterns or for the sums is refused, once, twice or from then on: rows
// are walked, and nobody is told.
TEST(RepeatedRows, AreDoneWithoutWhereThereIsNoRoomToFindThem) {
  expect_square_in_shortage(grid(20, 8, 1), 9);
}

}  // namespace
