// SPDX-License-Identifier: MIT
// What a call asks the system for, counted: an extra temporary, a copy or a growth shows here, on
// any machine, however busy. The numbers are measured; whoever saves an allocation lowers them.
#include "counted.hpp"

#include "../../src/support/memory.hpp"
#include "../support/files.hpp"
#include "../support/matrices.hpp"

#include <csr_matrix_mod/csr_matrix_mod.hpp>

#include <gtest/gtest.h>

#if defined(__GLIBC__)
#include <malloc.h>
#endif
#include <sys/resource.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <vector>

namespace {

using namespace csr_matrix_mod;  // NOLINT: every line below names one of its routines
using tests::counted;
using tests::requests;

// The 5-point stencil on a square of 16 by 16 points: 256 rows, 1216 entries.
constexpr std::int32_t side = 16;
constexpr std::int32_t n = side * side;
constexpr std::int32_t nnz = 5 * n - 4 * side;

tests::entry_rows stencil_rows() {
  tests::entry_rows rows(n);
  for (std::int32_t i = 0; i < n; ++i) {
    auto& row = rows[static_cast<std::size_t>(i)];
    if (i >= side) row.push_back({i - side + 1, -1.0});
    if (i % side > 0) row.push_back({i, -1.0});
    row.push_back({i + 1, 4.0});
    if (i % side < side - 1) row.push_back({i + 2, -1.0});
    if (i < n - side) row.push_back({i + side + 1, -1.0});
  }
  return rows;
}

csr_matrix stencil() { return tests::real_matrix(n, stencil_rows()); }

csr_matrix stencil_pattern() { return tests::pattern(n, tests::columns_of(stencil_rows())); }

// Every four points in a row become one.
csr_matrix aggregates() {
  tests::entry_rows rows(n);
  for (std::int32_t i = 0; i < n; ++i)
    rows[static_cast<std::size_t>(i)].push_back({i / 4 + 1, 1.0});
  return tests::real_matrix(n / 4, rows);
}

// The stencil with its columns backwards.
csr_matrix backwards() {
  tests::entry_rows rows = stencil_rows();
  for (auto& row : rows) std::reverse(row.begin(), row.end());
  return tests::real_matrix(n, rows);
}

// Every entry of the stencil stored twice.
csr_matrix repeated() {
  tests::entry_rows rows = stencil_rows();
  for (auto& row : rows) {
    const tests::entry_rows::value_type once = row;
    row.insert(row.end(), once.begin(), once.end());
  }
  return tests::real_matrix(n, rows);
}

constexpr std::int64_t integers(std::int64_t length) { return 4 * length; }
constexpr std::int64_t values(std::int64_t length) { return 8 * length; }

// Row starts, columns and values of a matrix.
constexpr std::int64_t matrix_bytes(std::int64_t of_rows, std::int64_t entries) {
  return integers(of_rows + 1) + integers(entries) + values(entries);
}

constexpr std::int64_t rows = n;
constexpr std::int64_t coarse = n / 4;
constexpr std::int64_t stencil_paths = 5 * nnz;  // of the stencil's square, were all rows longest
constexpr std::int64_t square_entries = 3012;    // of the stencil's square
constexpr std::int64_t prolonged_entries = 832;  // of stencil times aggregates
constexpr std::int64_t coarse_paths = 4 * rows;  // of aggregates times that, rows of 4 at most

// Room for the most entries, and the cut to those that came out; then row starts and a marker.
constexpr std::int64_t one_pass(std::int64_t starts, std::int64_t columns, std::int64_t most,
                                std::int64_t entries) {
  return matrix_bytes(starts, most) + matrix_bytes(starts, entries) - integers(starts + 1) +
         integers(columns);
}

// Patterns of rows are written down, and rows summed side by side.
constexpr std::int64_t patterns_room = integers(8192);
constexpr std::int64_t sums_room = values(2048);

// One bit a row says whether it repeats the row before.
constexpr std::int64_t row_bits(std::int64_t of_rows) { return values(of_rows / 64 + 3); }

TEST(Allocations, OfAProductAreItsArraysTheCutAMarkerABitARowAndPatterns) {
  const csr_matrix a = stencil();
  csr_matrix square;
  EXPECT_EQ(counted([&] { csr_matrix_multiply(a, a, square); }),
            (requests{9, one_pass(rows, rows, stencil_paths, square_entries) + row_bits(rows) +
                             patterns_room + sums_room}));
  ASSERT_EQ(csr_matrix_num_nz(square), square_entries);
}

// The first line of the grid, taken out by unit rows: no bits of a right operand that is larger.
TEST(Allocations, OfAProductOfFewRowsAreItsArraysTheCutAndAMarker) {
  tests::entry_rows unit_rows(side);
  for (std::int32_t i = 0; i < side; ++i) unit_rows[static_cast<std::size_t>(i)] = {{i + 1, 1.0}};
  const csr_matrix line = tests::real_matrix(n, unit_rows);
  const csr_matrix a = stencil();
  csr_matrix product;
  EXPECT_EQ(counted([&] { csr_matrix_multiply(line, a, product); }),
            (requests{6, one_pass(side, rows, 5 * side, 4 * side - 2)}));
  ASSERT_EQ(csr_matrix_num_nz(product), 4 * side - 2);
}

TEST(Allocations, OfAProductOfPatternsHaveNoValues) {
  const csr_matrix g = stencil_pattern();
  csr_matrix square;
  EXPECT_EQ(counted([&] { csr_matrix_multiply(g, g, square); }),
            (requests{6, integers(rows + 1) + integers(stencil_paths) + integers(square_entries) +
                             integers(rows) + row_bits(rows) + patterns_room}));
}

TEST(Allocations, OfAGraphProductAreThoseOfAProduct) {
  const csr_matrix g = stencil_pattern();
  csr_matrix square;
  EXPECT_EQ(counted([&] { csr_matrix_multiply_graph(g, g, square); }),
            (requests{9, one_pass(rows, rows, stencil_paths, square_entries - rows) +
                             row_bits(rows) + patterns_room + sums_room}));
}

TEST(Allocations, OfARestrictionAreThoseOfItsTwoProducts) {
  const csr_matrix a = stencil();
  const csr_matrix p = aggregates();
  csr_matrix r;
  csr_matrix_transpose(p, r);
  csr_matrix mc;
  EXPECT_EQ(counted([&] { csr_matrix_restriction(a, p, r, mc); }),
            (requests{14, row_bits(rows) + row_bits(coarse) +
                              one_pass(rows, coarse, nnz, prolonged_entries) +
                              one_pass(coarse, coarse, coarse_paths, 280)}));
  csr_matrix gc;
  EXPECT_EQ(counted([&] { csr_matrix_graph_restriction(a, p, r, gc); }),
            (requests{14, row_bits(rows) + row_bits(coarse) +
                              one_pass(rows, coarse, nnz, prolonged_entries) +
                              one_pass(coarse, coarse, coarse_paths, 280 - coarse)}));
}

TEST(Allocations, OfASumAreItsArraysTheCutAndAMarker) {
  const csr_matrix a = stencil();
  csr_matrix sum;
  EXPECT_EQ(counted([&] { csr_matrix_sum(a, a, sum); }),
            (requests{6, one_pass(rows, rows, 2 * nnz, nnz)}));
}

TEST(Allocations, OfATransposeAreItsArrays) {
  const csr_matrix a = stencil();
  csr_matrix t;
  EXPECT_EQ(counted([&] { csr_matrix_transpose(a, t); }), (requests{3, matrix_bytes(rows, nnz)}));
}

TEST(Allocations, OfSymmetrizingASymmetricPatternAreTheSumAndACursor) {
  csr_matrix a = stencil();
  EXPECT_EQ(counted([&] { csr_matrix_symmetrize(a); }),
            (requests{4, matrix_bytes(rows, nnz) + integers(rows)}));
}

TEST(Allocations, OfACopyAreItsArrays) {
  const csr_matrix a = stencil();
  csr_matrix copy;
  EXPECT_EQ(counted([&] { csr_matrix_assign(copy, a); }), (requests{3, matrix_bytes(rows, nnz)}));
}

// What the longest row needs while it is sorted, whatever the number of rows: its keys twice and
// its values once, 8 bytes each.
std::int64_t row_temporaries(std::int64_t longest) { return 3 * values(longest); }

TEST(Allocations, OfSortingAreThoseOfTheLongestRow) {
  csr_matrix b = backwards();
  EXPECT_EQ(counted([&] { csr_matrix_sort(b); }), (requests{3, row_temporaries(5)}));
}

TEST(Allocations, OfSortingWhatIsSortedAreNone) {
  csr_matrix a = backwards();
  csr_matrix_sort(a);
  EXPECT_EQ(counted([&] { csr_matrix_sort(a); }), (requests{0, 0}));
}

TEST(Allocations, OfSortingWithRepeatsAddTheCut) {
  csr_matrix twice = repeated();
  EXPECT_EQ(counted([&] { csr_matrix_sort(twice); }),
            (requests{5, row_temporaries(10) + integers(nnz) + values(nnz)}));
}

TEST(Allocations, OfCleaningAreAMarkerAndTheCut) {
  csr_matrix twice = repeated();
  EXPECT_EQ(counted([&] { csr_matrix_clean(twice); }),
            (requests{3, integers(rows) + integers(nnz) + values(nnz)}));
}

TEST(Allocations, OfCleaningWhatIsSortedAreNone) {
  csr_matrix a = stencil();
  EXPECT_EQ(counted([&] { csr_matrix_clean(a); }), (requests{0, 0}));
}

TEST(Allocations, OfCondensingAreThoseOfColumnsAndClassesAndTheCut) {
  csr_matrix g = stencil_pattern();
  std::vector<std::int32_t> weights(n, 1);
  EXPECT_EQ(counted([&] { csr_matrix_condense(g, weights); }),
            (requests{7, integers(2 * rows) + integers(3 * rows) + 2 * integers(rows) +
                             2 * integers(rows) + integers(nnz + 1)}));
}

// Four classes for three columns, of which one is kept.
TEST(Allocations, OfCondensingWithRepeatsAddClassesTwiceAsMany) {
  csr_matrix g = tests::pattern(3, {{1, 1}, {1}, {2}, {1, 1}, {1}});
  std::vector<std::int32_t> weights(3, 1);
  EXPECT_EQ(counted([&] { csr_matrix_condense(g, weights); }),
            (requests{8, integers(6) + integers(9) + integers(18) + integers(4) + integers(3) +
                             2 * integers(1) + integers(5)}));
}

TEST(Allocations, OfTheSymmetryTestAreRowStartsAndWhereTheyDifferAMarker) {
  const csr_matrix a = stencil();
  EXPECT_EQ(counted([&] { EXPECT_TRUE(matrix_is_struct_symmetric(a)); }),
            (requests{1, integers(rows + 1)}));
  const csr_matrix two = tests::pattern(2, {{1, 2}, {2}});
  EXPECT_EQ(counted([&] { EXPECT_TRUE(matrix_is_struct_symmetric(two)); }),
            (requests{2, integers(3) + integers(2)}));
}

TEST(Allocations, OfCoordinateListsAreTheListsAndBackInRowOrderTheArrays) {
  const csr_matrix a = stencil();
  std::int32_t entries = 0;
  array_ref<std::int32_t> row;
  array_ref<std::int32_t> col;
  array_ref<double> val;
  EXPECT_EQ(counted([&] { csr_matrix_to_coo(a, entries, row, col, val); }),
            (requests{3, 2 * integers(nnz) + values(nnz)}));
  csr_matrix back;
  EXPECT_EQ(counted([&] { coo_to_csr_format(n, entries, row, col, val, back); }),
            (requests{3, matrix_bytes(rows, nnz)}));
}

TEST(Allocations, OfPlainArraysAreTheArrays) {
  const csr_matrix a = stencil();
  std::int32_t n_out = 0;
  std::int32_t m_out = 0;
  std::int32_t entries = 0;
  array_ref<std::int32_t> ia;
  array_ref<std::int32_t> ja;
  array_ref<double> values_out;
  EXPECT_EQ(counted([&] { csr_to_csr_arrays(a, n_out, m_out, entries, ia, ja, &values_out); }),
            (requests{3, matrix_bytes(rows, nnz)}));
  csr_matrix back;
  EXPECT_EQ(counted([&] { csr_to_csr_matrix(n, n, back, ia, ja, values_out); }),
            (requests{3, matrix_bytes(rows, nnz)}));
}

TEST(Allocations, OfVectorProductsAndDiagonalsAreNone) {
  csr_matrix a = stencil();
  const std::vector<double> x(n, 1.0);
  std::vector<double> y(n);
  const std::vector<std::int32_t> counts(n, 1);
  std::vector<std::int32_t> sums(n);
  EXPECT_EQ(counted([&] {
              csr_matrix_multiply_rvector(a, x, y);
              csr_matrix_trans_mult_rvector(a, x, y);
              csr_matrix_multiply_ivector(a, counts, sums);
              csr_matrix_trans_mult_ivector(a, counts, sums);
              csr_matrix_movediag(a);
              csr_matrix_remove_diag(a);
            }),
            (requests{0, 0}));
}

TEST(Allocations, OfMatrixFilesAreOneBuffer) {
  constexpr requests one_buffer{1, 262144};
  const tests::temporary_folder folder;
  const csr_matrix a = stencil();
  csr_matrix back = stencil();
  EXPECT_EQ(counted([&] { csr_matrix_dump(folder.path("text"), a); }), one_buffer);
  EXPECT_EQ(counted([&] { csr_matrix_dump(folder.path("records"), a, "unformatted"); }),
            one_buffer);

  const std::int32_t unit = vacant_unit();
  EXPECT_EQ(counted([&] { csr_matrix_read(folder.path("text"), back); }), one_buffer);
  close_unit(unit);
  EXPECT_EQ(counted([&] { csr_matrix_read(folder.path("records"), back, "unformatted"); }),
            one_buffer);
  close_unit(unit);
}

#if defined(__GLIBC__) && !defined(__SANITIZE_ADDRESS__)

// Pages that the process has met so far without having touched them before.
std::int64_t pages_met() {
  rusage used{};
  ::getrusage(RUSAGE_SELF, &used);
  return used.ru_minflt;
}

// Three diagonals, but for the first and the last row, which are empty.
tests::entry_rows three_diagonals(std::int32_t order) {
  tests::entry_rows diagonals(static_cast<std::size_t>(order));
  for (std::int32_t i = 2; i < order; ++i)
    diagonals[static_cast<std::size_t>(i - 1)] = {{i - 1, -1.0}, {i, 2.0}, {i + 1, -1.0}};
  return diagonals;
}

// The square of 20 000 rows of 3 entries stands on 290 pages, for which there are others at first.
TEST(FreshPages, AreMetByTheFirstOfSomeProductsAlone) {
  const csr_matrix a = tests::real_matrix(20000, three_diagonals(20000));
  const auto multiply = [&a] {
    csr_matrix square;
    csr_matrix_multiply(a, a, square);
  };
  multiply();
  multiply();
  const std::int64_t before = pages_met();
  for (int again = 0; again < 10; ++again) multiply();
  EXPECT_LT(pages_met() - before, 290);
}

// Of squares with 22 482 paths the entries are counted where pages would be mapped for as many.
TEST(FreshPages, AreSparedByWhatFitsTheHeap) {
  constexpr std::int64_t order = 2500;
  constexpr std::int64_t paths = 9 * (order - 2);
  constexpr std::int64_t entries = 5 * order - 12;
  constexpr std::int64_t beside = row_bits(order) + patterns_room + sums_room;
  constexpr std::int64_t to_count = integers(order) + row_bits(order);
  const csr_matrix a = tests::real_matrix(order, three_diagonals(order));
  ASSERT_EQ(::mallopt(M_MMAP_THRESHOLD, 128 << 10), 1);
  std::vector<std::unique_ptr<double[]>> taken;  // what room there is in the heap
  while (!detail::maps_pages_for(values(paths)) && taken.size() < 1000)
    taken.emplace_back(new double[paths]);
  csr_matrix square;
  EXPECT_EQ(counted([&] { csr_matrix_multiply(a, a, square); }),
            (requests{9, matrix_bytes(order, entries) + integers(order) + to_count + beside}));
  EXPECT_EQ(counted([&] { csr_matrix_multiply_graph(a, a, square); }),
            (requests{9, matrix_bytes(order, entries - (order - 2)) + integers(order) + to_count +
                             beside}));
  ASSERT_EQ(::mallopt(M_MMAP_MAX, 0), 1);
  EXPECT_EQ(counted([&] { csr_matrix_multiply(a, a, square); }),
            (requests{9, one_pass(order, order, paths, entries) + beside}));
}

// Where the heap keeps what comes back, coarse operators that are formed again find room in it:
// here is what the two products ask for, row starts, room for all paths, and the cut.
TEST(Heap, DoesNotGrowWithCoarseOperatorsThatAreFormedAgain) {
  ASSERT_EQ(::mallopt(M_MMAP_MAX, 0), 1);
  ASSERT_EQ(::mallopt(M_TRIM_THRESHOLD, -1), 1);
  std::size_t before = 0;
  for (int again = 0; again < 12; ++again) {
    csr_matrix result;
    {
      csr_matrix half;
      csr_matrix_initial(1000000, half, 39304);
      csr_matrix_allocate(half, 27787264);
      csr_matrix_reallocate(half, 6236800);
      csr_matrix_initial(39304, result, 39304);
      csr_matrix_allocate(result, 20860000);
      csr_matrix_reallocate(result, 1000000);
    }
    if (again == 3) before = ::mallinfo2().arena;
  }
  EXPECT_EQ(::mallinfo2().arena, before);
}

#endif

}  // namespace
