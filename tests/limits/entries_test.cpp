// SPDX-License-Identifier: MIT
// More entries than a record has room for, with a limit low enough to be met by hand. Storage for
// entries takes 4 bytes a column and 8 a value: what is less was asked for row starts and markers.
#include "../support/files.hpp"
#include "../support/matrices.hpp"
#include "requests.hpp"

#include <csr_matrix_mod/csr_matrix_mod.hpp>

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

namespace {

using namespace csr_matrix_mod;  // NOLINT: every line below names one of its routines
using tests::entry_rows;
using tests::lowered_entry_limit;
using tests::stopped;
using tests::stopped_call;

//  [ 1  2  3 ]
//  [ 4  5  6 ]
//  [ 7  8  9 ]
csr_matrix dense() {
  return tests::real_matrix(3, {{{1, 1.0}, {2, 2.0}, {3, 3.0}},
                                {{1, 4.0}, {2, 5.0}, {3, 6.0}},
                                {{1, 7.0}, {2, 8.0}, {3, 9.0}}});
}

//  [ 1  .  . ]
//  [ 2  3  . ]
//  [ 4  5  6 ]
csr_matrix triangle() {
  return tests::real_matrix(3, {{{1, 1.0}}, {{1, 2.0}, {2, 3.0}}, {{1, 4.0}, {2, 5.0}, {3, 6.0}}});
}

csr_matrix unit() { return tests::real_matrix(3, {{{1, 1.0}}, {{2, 1.0}}, {{3, 1.0}}}); }

//  [ 1 ]
//  [ 1 ]     `rows` of them
//  [ 1 ]
csr_matrix one_column(std::int32_t m, std::size_t rows) {
  return tests::real_matrix(m, entry_rows(rows, {{1, 1.0}}));
}

// Each makes `entries` entries, in `routine`, into the record that it is given.
struct overflow {
  const char* routine;
  std::int64_t entries;
  std::function<void(csr_matrix& result)> call;

  friend std::ostream& operator<<(std::ostream& out, const overflow& of) {
    return out << of.routine;
  }
};

std::vector<overflow> overflows() {
  return {
      {"csr_matrix_multiply", 9, [](csr_matrix& c) { csr_matrix_multiply(dense(), dense(), c); }},
      {"csr_matrix_multiply", 9,
       [](csr_matrix& c) {
         csr_matrix graph = dense();
         csr_matrix_set_type(graph, matrix_structure_only);
         csr_matrix_multiply(graph, graph, c);
       }},
      {"csr_matrix_multiply_graph", 6,
       [](csr_matrix& c) { csr_matrix_multiply_graph(dense(), dense(), c); }},
      {"csr_matrix_multiply_graph", 6,
       [](csr_matrix& c) {
         csr_matrix_multiply_graph(dense(), dense(), c, {}, std::vector<std::int32_t>{1, 2, 3});
       }},
      {"csr_matrix_restriction", 9,
       [](csr_matrix& c) {
         csr_matrix_restriction(unit(), one_column(1, 3), one_column(3, 9), c);
       }},
      {"csr_matrix_graph_restriction", 8,
       [](csr_matrix& c) {
         csr_matrix_graph_restriction(unit(), one_column(1, 3), one_column(3, 9), c);
       }},
      {"csr_matrix_sum", 9, [](csr_matrix& c) { csr_matrix_sum(dense(), triangle(), c); }},
      {"csr_matrix_sum_nodiag", 6,
       [](csr_matrix& c) { csr_matrix_sum_nodiag(dense(), triangle(), c); }},
      {"csr_matrix_transpose", 9, [](csr_matrix& c) { csr_matrix_transpose(one_column(3, 9), c); }},
      {"coo_to_csr_format", 9,
       [](csr_matrix& c) {
         const std::vector<std::int32_t> ones(9, 1);
         coo_to_csr_format(1, 9, ones, ones, std::vector<double>(9), c);
       }},
  };
}

class MoreEntriesThanFit : public ::testing::TestWithParam<overflow> {};

INSTANTIATE_TEST_SUITE_P(Results, MoreEntriesThanFit, ::testing::ValuesIn(overflows()),
                         [](const auto& test) {
                           return std::string(test.param.routine) + std::to_string(test.index);
                         });

TEST_P(MoreEntriesThanFit, StopTheProgramBeforeThereIsStorageForThem) {
  const auto& [routine, entries, call] = GetParam();
  const lowered_entry_limit limit(entries - 1);
  csr_matrix result;
  const stopped_call seen = stopped([&call = call, &result] { call(result); });
  EXPECT_EQ(seen.stop, std::string(routine) + ": " + std::to_string(entries) +
                           " entries do not fit, at most " + std::to_string(entries - 1));
  EXPECT_FALSE(result.ja.allocated());
  EXPECT_FALSE(result.a.allocated());
}

TEST_P(MoreEntriesThanFit, AreOneMoreThanDoFit) {
  const auto& [routine, entries, call] = GetParam();
  csr_matrix usual;
  csr_matrix result;
  call(usual);
  const lowered_entry_limit limit(entries);
  EXPECT_EQ(stopped([&call = call, &result] { call(result); }).stop, std::nullopt);
  EXPECT_EQ(csr_matrix_num_nz(result), entries);
  EXPECT_EQ(result.ja.length(), entries);
  EXPECT_EQ(tests::columns_of(result), tests::columns_of(usual));
  if (usual.type == matrix_real) {
    EXPECT_EQ(tests::entries_of(result), tests::entries_of(usual));
  }
}

// Row starts of a 3 by 3 matrix take 16 bytes, a marker 12, 6 entries 24 and more.
TEST(StorageBeforeAStop, IsThatOfRowStartsAndMarkers) {
  const csr_matrix left = dense();
  const csr_matrix right = triangle();
  csr_matrix result;
  const lowered_entry_limit limit(5);
  EXPECT_EQ(stopped([&] { csr_matrix_multiply(left, left, result); }).largest_request, 16U);
  EXPECT_EQ(stopped([&] { csr_matrix_multiply_graph(left, left, result); }).largest_request, 16U);
  EXPECT_EQ(stopped([&] { csr_matrix_sum(left, right, result); }).largest_request, 16U);
  EXPECT_EQ(stopped([&] { csr_matrix_sum_nodiag(left, right, result); }).largest_request, 16U);
}

TEST(MoreEntriesThanFitInASymmetricMatrix, LeaveTheMatrixAsItWas) {
  //  [ 1  .  . ]
  //  [ 2  3  . ]   and its transpose have 9 entries together, 6 off the diagonal
  //  [ 4  5  6 ]
  csr_matrix mat = triangle();
  {
    const lowered_entry_limit limit(8);
    EXPECT_EQ(stopped([&] { csr_matrix_symmetrize(mat); }).stop,
              "csr_matrix_sum: 9 entries do not fit, at most 8");
  }
  csr_matrix strict = tests::real_matrix(3, {{}, {{1, 2.0}}, {{1, 4.0}, {2, 5.0}}});
  {
    const lowered_entry_limit limit(5);
    EXPECT_EQ(stopped([&] { csr_matrix_symmetrize_nodiag(strict); }).stop,
              "csr_matrix_sum_nodiag: 6 entries do not fit, at most 5");
  }
  EXPECT_EQ(tests::entries_of(mat), tests::entries_of(triangle()));
  EXPECT_EQ(csr_matrix_num_nz(strict), 3);
  csr_matrix_symmetrize(mat);
  EXPECT_EQ(csr_matrix_num_nz(mat), 9);
}

TEST(MoreEntriesThanFitInTheFirstProductOfACoarseMatrix, AreBlamedOnThatProduct) {
  csr_matrix coarse;
  const lowered_entry_limit limit(2);
  EXPECT_EQ(stopped([&] {
              csr_matrix_restriction(unit(), one_column(1, 3), one_column(3, 1), coarse);
            }).stop,
            "csr_matrix_multiply: 3 entries do not fit, at most 2");
}

TEST(MoreEntriesThanFitInAPass, StopTheCount) {
  const csr_matrix mat = dense();
  std::int32_t nz = -1;
  const lowered_entry_limit limit(5);
  EXPECT_EQ(stopped([&] { matmul_size(3, 3, mat.ia, mat.ja, mat.ia, mat.ja, nz); }).stop,
            "matmul_size: 9 entries do not fit, at most 5");
  EXPECT_EQ(stopped([&] { matmul_size_graph(3, 3, mat.ia, mat.ja, mat.ia, mat.ja, nz); }).stop,
            "matmul_size_graph: 6 entries do not fit, at most 5");
  EXPECT_EQ(nz, -1);
}

// The limit as it is: one entry more than the largest row start can tell.
TEST(MoreCoordinatesThanFit, AreNotEvenLookedAt) {
  csr_matrix mat;
  const stopped_call seen = stopped(
      [&] { coo_to_csr_format(1, std::numeric_limits<std::int32_t>::max(), {}, {}, {}, mat); });
  EXPECT_EQ(seen.stop, "coo_to_csr_format: 2147483647 entries do not fit, at most 2147483646");
  EXPECT_EQ(seen.largest_request, 0U);
}

// ---------------------------------------------------------------------------------- from a file

stopped_call read_market(const std::string& text, csr_matrix& mat) {
  const tests::temporary_folder folder;
  const std::string file = folder.path("matrix.mtx");
  tests::write_file(file, text);
  stopped_call seen = stopped([&] { csr_matrix_read_market(file, mat); });
  if (seen.stop && seen.stop->rfind(file, 0) == 0) seen.stop->replace(0, file.size(), "FILE");
  return seen;
}

TEST(MoreEntriesThanFitInAnArrayFile, AreRefusedByItsSizes) {
  csr_matrix mat;
  const lowered_entry_limit limit(8);
  EXPECT_EQ(
      read_market("%%MatrixMarket matrix array real general\n3 3\n1\n2\n3\n4\n5\n6\n7\n8\n9\n", mat)
          .stop,
      "FILE: line 2: expected at most 8 entries, found 9");
  EXPECT_FALSE(mat.ia.allocated());
}

TEST(MoreEntriesThanFitWithTheirMirrorImages, AreRefusedOnceTheyAreRead) {
  const std::string file =
      "%%MatrixMarket matrix coordinate real symmetric\n3 3 3\n2 1 1\n3 1 2\n3 2 3\n";
  csr_matrix mat;
  {
    const lowered_entry_limit limit(5);
    EXPECT_EQ(read_market(file, mat).stop,
              "csr_matrix_read_market: 6 entries do not fit, at most 5");
    EXPECT_FALSE(mat.ia.allocated());
  }
  const lowered_entry_limit limit(6);
  EXPECT_EQ(read_market(file, mat).stop, std::nullopt);
  EXPECT_EQ(csr_matrix_num_nz(mat), 6);
}

}  // namespace
