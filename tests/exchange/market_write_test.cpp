// SPDX-License-Identifier: MIT
#include "../../src/io/stream.hpp"
#include "../support/files.hpp"
#include "../support/generators.hpp"
#include "../support/matrices.hpp"
#include "../support/observe.hpp"
#include "../support/refusals.hpp"

#include <csr_matrix_mod/csr_matrix_mod.hpp>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <bit>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace {

using csr_matrix_mod::csr_matrix;
using tests::entry_rows;

class WriteMarket : public testing::Test {
 protected:
  void TearDown() override { csr_matrix_mod::set_buffer_size(0); }

  [[nodiscard]] std::string written(const csr_matrix& mat) const {
    tests::expect_silent([&] { csr_matrix_write_market(path, mat); });
    return tests::read_file(path);
  }

  [[nodiscard]] csr_matrix read_back() const {
    csr_matrix mat;
    tests::expect_silent([&] { csr_matrix_read_market(path, mat); });
    return mat;
  }

  tests::temporary_folder folder;
  const std::string path = folder.path("matrix.mtx");
};

//     [ .  -.5  1 ]
//     [ .   .   . ]
//     [ 0   .   3 ]
TEST_F(WriteMarket, WritesTheEntriesRowByRowInStoredOrder) {
  const csr_matrix mat =
      tests::real_matrix(3, {{{3, 1.0}, {2, -0.5}}, {}, {{1, 0.0}, {3, 2.0}, {3, 1.0}}}, 4);
  EXPECT_EQ(written(mat),
            "%%MatrixMarket matrix coordinate real general\n3 3 5\n"
            "1 3 1\n1 2 -0.5\n3 1 0\n3 3 2\n3 3 1\n");
}

//     [ x  .  . ]
//     [ x  .  x ]
TEST_F(WriteMarket, WritesAPatternWithoutValues) {
  EXPECT_EQ(written(tests::pattern(3, {{1}, {3, 1}}, 2)),
            "%%MatrixMarket matrix coordinate pattern general\n2 3 3\n1 1\n2 3\n2 1\n");
}

TEST_F(WriteMarket, WritesTheFewestDigitsThatReadBackExactly) {
  const csr_matrix mat = tests::real_matrix(
      1,
      {{{1, 0.1}}, {{1, 1.0 / 3.0}}, {{1, -0.0}}, {{1, 5e-324}}, {{1, -1.7976931348623157e308}}});
  EXPECT_EQ(written(mat),
            "%%MatrixMarket matrix coordinate real general\n5 1 5\n1 1 0.1\n"
            "2 1 0.3333333333333333\n3 1 -0\n4 1 5e-324\n5 1 -1.7976931348623157e+308\n");
}

TEST_F(WriteMarket, WritesWhatIsNotFiniteSoThatItReadsBack) {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  constexpr double nan = std::numeric_limits<double>::quiet_NaN();
  const entry_rows rows = {{{1, infinity}, {2, -infinity}, {3, nan}, {4, -nan}}};
  EXPECT_EQ(written(tests::real_matrix(4, rows)),
            "%%MatrixMarket matrix coordinate real general\n1 4 4\n"
            "1 1 inf\n1 2 -inf\n1 3 nan\n1 4 -nan\n");
  EXPECT_EQ(tests::entries_of(read_back()), rows);
}

TEST_F(WriteMarket, WritesAMatrixWithoutRowsColumnsOrEntries) {
  const std::string head = "%%MatrixMarket matrix coordinate real general\n";
  EXPECT_EQ(written(tests::real_matrix(2147483647, {})), head + "0 2147483647 0\n");
  EXPECT_EQ(written(tests::real_matrix(0, {{}, {}})), head + "2 0 0\n");
  EXPECT_EQ(written(tests::real_matrix(3, {{}, {}}, 1)), head + "2 3 0\n");
}

TEST_F(WriteMarket, EmptiesTheFileFirst) {
  tests::write_file(path, std::string(1000, 'x'));
  EXPECT_EQ(written(tests::pattern(1, {{1}})),
            "%%MatrixMarket matrix coordinate pattern general\n1 1 1\n1 1\n");
}

TEST_F(WriteMarket, TakesNoUnit) {
  const std::int32_t vacant = csr_matrix_mod::vacant_unit();
  csr_matrix_write_market(path, tests::pattern(1, {{1}}));
  EXPECT_EQ(csr_matrix_mod::vacant_unit(), vacant);
}

// All doubles, whatever their bits: subnormal, infinite, the NaN that text can tell of.
double any_bits() {
  const auto value = std::bit_cast<double>(*rc::gen::arbitrary<std::uint64_t>());
  return value == value ? value : std::numeric_limits<double>::quiet_NaN();
}

RC_GTEST_FIXTURE_PROP(WriteMarket, ReadsBackBitForBit, ()) {
  const std::int32_t n = *tests::any_size();
  const std::int32_t m = *tests::any_size();
  entry_rows rows = *tests::any_rows(n, m);
  for (auto& row : rows)
    for (tests::entry& each : row)
      if (*rc::gen::arbitrary<bool>()) each.value = any_bits();

  csr_matrix_write_market(path, tests::real_matrix(m, rows, 2));
  csr_matrix mat;
  csr_matrix_read_market(path, mat);
  RC_ASSERT(mat.n == n);
  RC_ASSERT(mat.m == m);
  RC_ASSERT(tests::entries_of(mat) == rows);
}

RC_GTEST_FIXTURE_PROP(WriteMarket, ReadsAPatternBack, ()) {
  const std::int32_t n = *tests::any_size();
  const std::int32_t m = *tests::any_size();
  const tests::column_rows rows = tests::columns_of(*tests::any_rows(n, m));
  csr_matrix_write_market(path, tests::pattern(m, rows, 2));
  csr_matrix mat;
  csr_matrix_read_market(path, mat);
  RC_ASSERT(mat.type == csr_matrix_mod::matrix_structure_only);
  RC_ASSERT(mat.m == m);
  RC_ASSERT(tests::columns_of(mat) == rows);
}

TEST_F(WriteMarket, WritesTheSameThroughBuffersOfAnySize) {
  const csr_matrix mat = tests::real_matrix(
      2147483647, {{{2147483647, -2.2250738585072014e-308}, {1, 1.0 / 3.0}}, {{7, 1e100}}});
  const std::string expected = written(mat);
  for (const std::size_t bytes : {1U, 2U, 7U, 95U, 96U, 97U, 150U}) {
    csr_matrix_mod::set_buffer_size(bytes);
    EXPECT_EQ(written(mat), expected) << bytes;
  }
}

TEST_F(WriteMarket, StopsWhereTheFileCannotBeOpened) {
  const csr_matrix mat = tests::pattern(1, {{1}});
  const std::string nowhere = folder.path("nowhere/matrix.mtx");
  EXPECT_EQ(tests::observe([&] { csr_matrix_write_market(nowhere, mat); }).stop,
            nowhere + ": cannot open for writing: No such file or directory");
  EXPECT_EQ(tests::observe([&] { csr_matrix_write_market("/tmp", mat); }).stop,
            "/tmp: cannot open for writing: Is a directory");
}

TEST_F(WriteMarket, StopsWhereTheDeviceIsFull) {
  const csr_matrix mat = tests::real_matrix(2, {{{1, 1.0}, {2, 2.0}}});
  for (const std::size_t bytes : {0U, 1U, 40U}) {
    csr_matrix_mod::set_buffer_size(bytes);
    EXPECT_EQ(tests::observe([&] { csr_matrix_write_market("/dev/full", mat); }).stop,
              "/dev/full: cannot write: No space left on device");
  }
}

TEST_F(WriteMarket, StopsWhereThereIsNoStorage) {
  csr_matrix_mod::set_buffer_size(1);
  const auto stops = tests::refuse_each_request(
      [] {
        return tests::real_matrix(2, {{{1, 1.0}, {2, 2.0}}});
      },
      [&](const csr_matrix& mat) { csr_matrix_write_market(path, mat); },
      [](csr_matrix& mat) {
        EXPECT_EQ(tests::entries_of(mat), (entry_rows{{{1, 1.0}, {2, 2.0}}}));
        tests::expect_releasable(mat);
      });
  const std::string no_room = path + ": cannot write: Cannot allocate memory";
  EXPECT_EQ(stops, (std::vector<std::string>{no_room, no_room}));
}

}  // namespace
