// SPDX-License-Identifier: MIT
// Sizes next to the largest integer. Storage of that many elements is refused, but asked for in
// full: a size that had wrapped around would be granted.
#include "../../src/support/scratch.hpp"
#include "../support/files.hpp"
#include "../support/matrices.hpp"
#include "requests.hpp"

#include <csr_matrix_mod/csr_matrix_mod.hpp>

#include <gtest/gtest.h>

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string>
#include <vector>

namespace {

using namespace csr_matrix_mod;  // NOLINT: every line below names one of its routines
using tests::stopped;
using tests::stopped_call;

constexpr std::int32_t largest = std::numeric_limits<std::int32_t>::max();
constexpr std::size_t columns_in_bytes = 4 * std::size_t{largest};

void expect_refused(const stopped_call& seen, const std::string& stop, std::size_t bytes) {
  EXPECT_EQ(seen.stop, stop);
  EXPECT_EQ(seen.largest_request, bytes);
}

//  [ .  .  ...  7 ]    1 by 2147483647
csr_matrix long_row() { return tests::real_matrix(largest, {{{largest, 7.0}}}); }

TEST(TheLargestNumberOfRows, AsksForOneRowStartMore) {
  csr_matrix mat;
  expect_refused(stopped([&] { csr_matrix_initial(largest, mat); }),
                 "allocation error in csr_matrix_initial", columns_in_bytes + 4);
  expect_refused(stopped([&] { coo_to_csr_format(largest, 0, {}, {}, {}, mat); }),
                 "allocation error in csr_matrix_initial", columns_in_bytes + 4);
  expect_refused(stopped([&] { csr_matrix_transpose(long_row(), mat); }),
                 "allocation error in csr_matrix_initial", columns_in_bytes + 4);
  const csr_matrix one = tests::real_matrix(1, {{{1, 2.0}}});
  expect_refused(stopped([&] { csr_matrix_transpose(one, mat, largest); }),
                 "allocation error in csr_matrix_initial", columns_in_bytes + 4);
}

// 2^62 integers take 2^64 bytes, a number that a size of 64 bits takes for 0.
TEST(MoreBytesThanASizeTells, AreRefused) {
  constexpr std::int64_t elements = std::int64_t{1} << 62;
  constexpr std::size_t most = std::numeric_limits<std::size_t>::max();
  for (const contents initial : {contents::undefined, contents::zero})
    expect_refused(stopped([&] { scratch<std::int32_t>(elements, initial, "routine"); }),
                   "allocation error in routine", most);
  array_ref<std::int32_t> array;
  ASSERT_TRUE(array.allocate(3));
  expect_refused(stopped([&] {
                   if (!detail::storage_access::resize(array, elements)) stop("refused");
                 }),
                 "refused", most);
  EXPECT_EQ(array.length(), 3);
}

TEST(TheLargestNumberOfEntries, AsksForAllOfThem) {
  csr_matrix mat;
  csr_matrix_initial(1, mat, 1, matrix_structure_only);
  expect_refused(stopped([&] { csr_matrix_allocate(mat, largest); }),
                 "allocation error in csr_matrix_allocate", columns_in_bytes);
  csr_matrix_allocate(mat, 1);
  expect_refused(stopped([&] { csr_matrix_reallocate(mat, largest); }),
                 "allocation error in csr_matrix_allocate", columns_in_bytes);
}

// Storage of so many elements, of which none is there. A refused request leaves all as it was.
TEST(TheLargestNumberOfEntries, IsWhereARowBufferGrowsTo) {
  constexpr std::int32_t many = 1'960'000'000;
  std::int32_t column = 0;
  double value = 0.0;
  csr_row row{many, array_ref<std::int32_t>::wrap(&column, many),
              array_ref<double>::wrap(&value, many)};
  const stopped_call seen = stopped([&] { csr_matrix_extrow(row, 1, 1.0); });
  EXPECT_EQ(seen.stop, std::nullopt);
  EXPECT_EQ(seen.largest_request, columns_in_bytes);
  EXPECT_EQ(row.count, many);

  row = {largest, array_ref<std::int32_t>::wrap(&column, largest),
         array_ref<double>::wrap(&value, largest)};
  EXPECT_EQ(stopped([&] { csr_matrix_extrow(row, 1, 1.0); }).largest_request, 0);
  EXPECT_EQ(row.count, largest);
}

TEST(TheLargestNumberOfColumns, AsksForAMarkerOfThem) {
  const csr_matrix one = tests::real_matrix(1, {{{1, 2.0}}});
  const csr_matrix row = long_row();
  csr_matrix result;
  expect_refused(stopped([&] { csr_matrix_sum(row, row, result); }),
                 "allocation error in csr_matrix_sum", columns_in_bytes);
  expect_refused(stopped([&] { csr_matrix_multiply(one, row, result); }),
                 "allocation error in matmul_size", columns_in_bytes);
  expect_refused(stopped([&] { csr_matrix_multiply_graph(one, row, result); }),
                 "allocation error in matmul_size_graph", columns_in_bytes);
  std::int32_t nz = 0;
  expect_refused(stopped([&] { matmul_size(1, largest, one.ia, one.ja, row.ia, row.ja, nz); }),
                 "allocation error in matmul_size", columns_in_bytes);
}

TEST(TheLargestColumn, IsAColumnAsAnyOther) {
  csr_matrix row;
  coo_to_csr_format(1, 2, std::vector<std::int32_t>{1, 1}, std::vector<std::int32_t>{largest, 3},
                    std::vector<double>{7.0, 5.0}, row);
  EXPECT_EQ(row.m, largest);
  EXPECT_EQ(csr_matrix_check(row), std::nullopt);
  csr_matrix_sort(row);
  EXPECT_EQ(tests::entries_of(row), (tests::entry_rows{{{3, 5.0}, {largest, 7.0}}}));
  csr_matrix_remove_diag(row);
  EXPECT_EQ(csr_matrix_num_nz(row), 2);
}

// The vector is as long as the row and holds its last element only; nothing else is touched.
TEST(TheLargestColumn, MeetsTheLastElementOfAVector) {
  constexpr std::size_t bytes = std::size_t{largest} * sizeof(double);
  void* const place = mmap(nullptr, bytes, PROT_READ | PROT_WRITE,
                           MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (place == MAP_FAILED) GTEST_SKIP() << "there are no addresses for a vector of this length";
  auto* const x = static_cast<double*>(place);
  x[largest - 1] = 3.0;
  std::vector<double> y(1);
  csr_matrix_multiply_rvector(long_row(), array_view<const double>(x, largest), y);
  EXPECT_EQ(y.front(), 21.0);
  munmap(place, bytes);
}

TEST(TheLargestNumberOfColumns, IsWrittenAndReadBack) {
  const tests::temporary_folder folder;
  const csr_matrix row = long_row();
  csr_matrix text;
  csr_matrix_dump(folder.path("text"), row);
  csr_matrix_load(folder.path("text"), text);
  EXPECT_EQ(text.m, largest);
  EXPECT_EQ(tests::entries_of(text), tests::entries_of(row));
  csr_matrix binary;
  csr_matrix_dump(folder.path("binary"), row, "unformatted");
  csr_matrix_load(folder.path("binary"), binary, "unformatted");
  EXPECT_EQ(binary.m, largest);
  EXPECT_EQ(tests::entries_of(binary), tests::entries_of(row));
}

// ------------------------------------------------------------------------- what a file may claim

// The buffer of a file is asked for, nothing else.
constexpr std::size_t buffer = std::size_t{1} << 18;

std::string bytes_of(const std::vector<std::int32_t>& words) {
  return {reinterpret_cast<const char*>(words.data()), 4 * words.size()};
}

class Claim : public ::testing::Test {
 protected:
  void expect_load_refused(const std::string& contents, std::optional<std::string_view> form,
                           const std::string& stop) {
    const std::string file = write(contents);
    csr_matrix mat;
    expect_refused(stopped([&] { csr_matrix_load(file, mat, form); }), file + ": " + stop, buffer);
    EXPECT_FALSE(mat.ia.allocated());
  }

  void expect_read_refused(const std::string& contents, std::optional<std::string_view> form,
                           const std::string& stop) {
    const std::string file = write(contents);
    csr_matrix mat = tests::real_matrix(1, {{{1, 1.0}}});
    expect_refused(stopped([&] { csr_matrix_read(file, mat, form); }), file + ": " + stop, buffer);
  }

  std::string write(const std::string& contents) {
    tests::write_file(folder_.path("claim"), contents);
    return folder_.path("claim");
  }

 private:
  tests::temporary_folder folder_;
};

TEST_F(Claim, OfTheLargestNumberOfRowsIsNotBelieved) {
  const std::string text = "   F\n2147483647         1\n         1\n         1\n";
  expect_load_refused(text, {}, "line 2: expected 2147483648 row starts, found only 22 bytes more");
  expect_read_refused(text, {},
                      "line 2: expected room for 2147483648 row starts in ia, found room for 2");

  const std::string records = bytes_of({4, 0, 4, 8, largest, 1, 8, 4, 1, 4});
  expect_load_refused(records, "unformatted",
                      "record 2: expected 2147483648 row starts, found only 12 bytes more");
  expect_read_refused(records, "unformatted",
                      "record 2: expected room for 2147483648 row starts in ia, found room for 2");
}

TEST_F(Claim, OfTheLargestNumberOfEntriesIsNotBelieved) {
  const std::string text = "   F\n         1         1\n         1\n2147483647\n         1\n";
  const std::string file = write(text);
  csr_matrix mat;
  EXPECT_EQ(stopped([&] { csr_matrix_load(file, mat); }).stop,
            file + ": line 4: expected 2147483646 entries, found only 11 bytes more");
  expect_read_refused(text, {},
                      "line 4: expected room for 2147483646 columns in ja, found room for 1");

  const std::string records = bytes_of({4, 0, 4, 8, 1, 1, 8, 8, 1, largest, 8, 4, 1, 4});
  expect_load_refused(records, "unformatted",
                      "record 3, item 2: expected 2147483646 entries, found only 12 bytes more");
  expect_read_refused(
      records, "unformatted",
      "record 3, item 2: expected room for 2147483646 columns in ja, found room for 1");
}

TEST_F(Claim, OfTheLargestSizesInAMarketFileIsNotBelieved) {
  csr_matrix mat;
  const std::string rows =
      write("%%MatrixMarket matrix coordinate real general\n2147483646 1 1\n1 1 1\n");
  expect_refused(stopped([&] { csr_matrix_read_market(rows, mat); }),
                 rows +
                     ": line 2: expected at most 134217728 rows in a file as short as this, found "
                     "2147483646",
                 buffer);
  const std::string elements =
      write("%%MatrixMarket matrix array real general\n2147483646 2147483646\n");
  EXPECT_EQ(stopped([&] { csr_matrix_read_market(elements, mat); }).largest_request, buffer);
  EXPECT_FALSE(mat.ia.allocated());
}

// ---------------------------------------------------------------------------- rows without entries

// 2147483648 row starts, all 1: one small piece of memory seen again and again.
class OnesWithoutEnd {
 public:
  OnesWithoutEnd()
      : place_(static_cast<char*>(
            mmap(nullptr, length, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0))) {
    const std::string name = "/tmp/ones.XXXXXX";
    std::vector<char> path(name.c_str(), name.c_str() + name.size() + 1);
    const int file = mkstemp(path.data());
    unlink(path.data());
    const std::vector<std::int32_t> ones(piece / 4, 1);
    const bool written = write(file, ones.data(), piece) == static_cast<ssize_t>(piece);
    good_ = written && place_ != MAP_FAILED;
    for (std::size_t at = 0; good_ && at < length; at += piece)
      good_ = mmap(place_ + at, piece, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_FIXED, file, 0) !=
              MAP_FAILED;
    close(file);
  }
  OnesWithoutEnd(const OnesWithoutEnd&) = delete;
  OnesWithoutEnd& operator=(const OnesWithoutEnd&) = delete;
  ~OnesWithoutEnd() { munmap(place_, length); }

  [[nodiscard]] bool good() const { return good_; }
  [[nodiscard]] array_ref<std::int32_t> row_starts() const {
    return array_ref<std::int32_t>::wrap(reinterpret_cast<std::int32_t*>(place_),
                                         std::int64_t{largest} + 1);
  }

 private:
  static constexpr std::size_t piece = std::size_t{1} << 22;
  static constexpr std::size_t length = columns_in_bytes + 4;

  char* place_;
  bool good_;
};

TEST(TheLargestNumberOfRows, IsWalkedToItsEnd) {
#ifndef NDEBUG
  GTEST_SKIP() << "takes long unless optimised";
#endif
  const OnesWithoutEnd ones;
  if (!ones.good()) GTEST_SKIP() << "there are no addresses for so many row starts";
  csr_matrix mat;
  mat.n = largest;
  mat.m = largest;
  mat.type = matrix_structure_only;
  mat.ia = ones.row_starts();
  EXPECT_EQ(csr_matrix_num_nz(mat), 0);
  EXPECT_EQ(csr_matrix_num_row_entries(mat, largest), 0);
  EXPECT_EQ(csr_matrix_check(mat), std::nullopt);
  csr_matrix_remove_diag(mat);
  EXPECT_EQ(mat.ia(std::int64_t{largest} + 1), 1);
}

}  // namespace
