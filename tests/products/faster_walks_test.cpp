// SPDX-License-Identifier: MIT
// Products whose left columns jump, for which the right rows of the paths to come are asked for,
// those with one entry in each right row, which are not looked up, and those of which no processor
// foresees which paths lead to new columns, which are stored without a branch, against the two
// passes that do neither: the same arrays to the last bit.
#include "passes.hpp"
#include "products.hpp"

#include <ostream>
#include <string>
#include <vector>

using namespace csr_matrix_mod;
using namespace tests;

namespace {

// n rows of 0 to 15 random columns out of m, some of them repeated, about 8 a row; in the first
// `narrow` rows out of 2.
csr_matrix random_matrix(std::int32_t n, std::int32_t m, std::uint64_t seed,
                         std::size_t narrow = 0) {
  std::uint64_t state = seed;
  const auto draw = [&state](std::int32_t below) {
    state = state * 6364136223846793005U + 1442695040888963407U;
    return static_cast<std::int32_t>((state >> 33U) % static_cast<std::uint64_t>(below));
  };
  entry_rows rows(static_cast<std::size_t>(n));
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const std::int32_t length = draw(16);
    for (std::int32_t t = 0; t < length; ++t) {
      const std::int32_t column = draw(i < narrow ? 2 : m) + 1;
      const std::int32_t drawn = draw(1 << 20) - (1 << 19);
      rows[i].push_back({column, drawn % 4 == 0 ? -0.0 : drawn / 3.0});
    }
  }
  return real_matrix(m, rows);
}

// Row j of the right operand holds one entry, as where fine vertices go to coarse ones.
csr_matrix one_entry_a_row(std::int32_t n, std::int32_t m) {
  entry_rows rows(static_cast<std::size_t>(n));
  for (std::int32_t j = 0; j < n; ++j)
    rows[static_cast<std::size_t>(j)].push_back({j * 7 / 3 % m + 1, 1.0 / (j + 2)});
  return real_matrix(m, rows);
}

// As many entries as rows, but two in one of them and none in another.
csr_matrix one_entry_in_most_rows(std::int32_t n, std::int32_t m) {
  entry_rows rows(static_cast<std::size_t>(n));
  for (std::int32_t j = 0; j < n; ++j)
    rows[static_cast<std::size_t>(j == n / 2 ? j - 1 : j)].push_back({j % m + 1, 1.0 / (j + 2)});
  return real_matrix(m, rows);
}

// Rows of none, of few and now and then of some hundred entries.
csr_matrix long_rows_among_short(std::int32_t n, std::int32_t m) {
  entry_rows rows(static_cast<std::size_t>(n));
  for (std::int32_t j = 0; j < n; ++j)
    for (std::int32_t k = j % 50 == 7 ? 130 + j % 200 : j % 4; k > 0; --k)
      rows[static_cast<std::size_t>(j)].push_back({(j + 3 * k) % m + 1, 1.0 / (j + k)});
  return real_matrix(m, rows);
}

struct pair_of_operands {
  std::string name;
  csr_matrix (*left)();
  csr_matrix (*right)();

  friend std::ostream& operator<<(std::ostream& out, const pair_of_operands& of) {
    return out << of.name;
  }
};

class FasterWalk : public testing::TestWithParam<pair_of_operands> {
 protected:
  csr_matrix left = GetParam().left();
  csr_matrix right = GetParam().right();
};

// Columns that jump have enough entries for the look to be worth it, and lead to more than the
// cache holds, in rows that are not the same number; few have not.
INSTANTIATE_TEST_SUITE_P(
    Of, FasterWalk,
    testing::Values(
        pair_of_operands{"ManyColumnsThatJump", [] { return random_matrix(9000, 14000, 1); },
                         [] { return random_matrix(14000, 8000, 2); }},
        pair_of_operands{"ManyColumnsThatJumpInTheCache",
                         [] { return random_matrix(9000, 7000, 1); },
                         [] { return random_matrix(7000, 8000, 2); }},
        pair_of_operands{"ManyColumnsThatJumpToLongRows",
                         [] { return random_matrix(9000, 20000, 14); },
                         [] { return long_rows_among_short(20000, 2000); }},
        pair_of_operands{"ManyColumnsThatJumpToRowsOfOneEntry",
                         [] { return random_matrix(9000, 99000, 3); },
                         [] { return one_entry_a_row(99000, 2000); }},
        pair_of_operands{"FewColumnsToRowsOfOneEntry", [] { return random_matrix(90, 70, 4); },
                         [] { return one_entry_a_row(70, 70); }},
        pair_of_operands{"FewColumnsToAsManyEntriesAsRows", [] { return random_matrix(90, 70, 5); },
                         [] { return one_entry_in_most_rows(70, 20); }},
        pair_of_operands{"PathsThatNobodyForesees", [] { return random_matrix(9000, 300, 7); },
                         [] { return random_matrix(300, 60, 8); }},
        pair_of_operands{"PathsThatNobodyForeseesAndColumnsThatJump",
                         [] { return random_matrix(9000, 14000, 9); },
                         [] { return random_matrix(14000, 60, 10); }},
        pair_of_operands{"PathsThatNobodyForeseesToRowsOfOneEntry",
                         [] { return random_matrix(9000, 300, 11); },
                         [] { return one_entry_a_row(300, 7); }},
        pair_of_operands{"PathsForeseenAtFirst", [] { return random_matrix(9000, 300, 12, 4000); },
                         [] { return random_matrix(300, 60, 13); }},
        pair_of_operands{"OneRowOfOneEntry", [] { return random_matrix(5, 1, 6); },
                         [] { return one_entry_a_row(1, 1); }}),
    [](const auto& tested) { return tested.param.name; });

TEST_P(FasterWalk, GivesTheProductOfTheTwoPasses) {
  csr_matrix product;
  csr_matrix_multiply(left, right, product);
  EXPECT_TRUE(are_same(product, passes_of_product(left, right)));
}

TEST_P(FasterWalk, GivesTheProductOfPatternsOfTheTwoPasses) {
  left.type = matrix_structure_only;
  right.type = matrix_structure_only;
  csr_matrix product;
  csr_matrix_multiply(left, right, product);
  EXPECT_TRUE(are_same(product, passes_of_pattern(left, right)));
}

TEST_P(FasterWalk, GivesTheGraphProductOfTheTwoPasses) {
  csr_matrix paths;
  csr_matrix_multiply_graph(left, right, paths);
  EXPECT_TRUE(are_same(paths, passes_of_graph(left, right)));

  const std::vector<std::int32_t> weights = weights_for(left);
  csr_matrix_multiply_graph(left, right, paths, std::nullopt,
                            array_view<const std::int32_t>(weights));
  EXPECT_TRUE(are_same(paths, passes_of_graph(left, right, &weights)));
}

// Room for more than there will be is refused, then what comes behind it: there is no slot behind
// the last entry.
TEST_P(FasterWalk, GivesTheProductWhereThereIsNoRoomToSpare) {
  const passes expected = passes_of_product(left, right);
  int done = 0;
  bool reached = true;
  for (int k = 0; reached; ++k) {
    csr_matrix product;
    const refuse_allocation refuse(k);
    const observed seen = observe([&] { csr_matrix_multiply(left, right, product); });
    reached = refuse.reached();
    if (seen.stop) continue;
    ++done;
    EXPECT_TRUE(are_same(product, expected)) << "request " << k;
  }
  EXPECT_GE(done, 2);
}

}  // namespace
