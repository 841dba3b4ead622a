// SPDX-License-Identifier: MIT
// read(dump(x)) = x: what is written is read back, in both encodings, across every seam.
#include "../../src/io/records.hpp"
#include "../../src/io/stream.hpp"

#include "../support/files.hpp"
#include "../support/generators.hpp"
#include "../support/observe.hpp"
#include "gallery.hpp"

#include <csr_matrix_mod/exchange.hpp>
#include <csr_matrix_mod/io.hpp>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

namespace {

using csr_matrix_mod::csr_matrix;

constexpr std::optional<std::string_view> text = std::nullopt;
constexpr std::optional<std::string_view> records = "unformatted";

// Buffers and subrecords of any size, for the length of one test.
class seams {
 public:
  seams(std::size_t buffer, std::int32_t subrecord) {
    csr_matrix_mod::set_buffer_size(buffer);
    csr_matrix_mod::set_subrecord_size(subrecord);
  }
  seams(const seams&) = delete;
  seams& operator=(const seams&) = delete;
  ~seams() {
    csr_matrix_mod::set_buffer_size(0);
    csr_matrix_mod::set_subrecord_size(0);
  }
};

// Written, read into storage that is larger, and loaded.
struct round_trip {
  round_trip(const csr_matrix& mat, std::optional<std::string_view> form) {
    const tests::temporary_folder folder;
    const std::int32_t unit = csr_matrix_mod::vacant_unit();
    csr_matrix_dump(folder.path("file"), mat, form);
    csr_matrix_mod::close_unit(unit);
    read = tests::read_back(folder.path("file"), form, mat.n + 2, mat.ja.length() + 3);
    csr_matrix_load(folder.path("file"), loaded, form);
  }

  csr_matrix read;
  csr_matrix loaded;
};

// Equal to 8 digits.
bool close(double left, double right) {
  return std::fabs(left - right) <= 5e-8 * std::fabs(left) &&
         std::signbit(left) == std::signbit(right);
}

bool close(const tests::entry_rows& left, const tests::entry_rows& right) {
  if (tests::columns_of(left) != tests::columns_of(right)) return false;
  for (std::size_t i = 0; i < left.size(); ++i)
    for (std::size_t k = 0; k < left[i].size(); ++k)
      if (!close(left[i][k].value, right[i][k].value)) return false;
  return true;
}

void expect_loaded_exactly(const csr_matrix& loaded) {
  const std::int64_t capacity = std::max(csr_matrix_num_nz(loaded), 1);
  RC_ASSERT(loaded.ia.length() == std::int64_t{loaded.n} + 1);
  RC_ASSERT(loaded.ja.length() == capacity);
  RC_ASSERT(loaded.a.length() == (loaded.type == csr_matrix_mod::matrix_real ? capacity : 0));
}

RC_GTEST_PROP(MatrixFile, OfRecordsComesBackBitForBit, ()) {
  const seams any(*rc::gen::inRange<std::size_t>(1, 40), *rc::gen::inRange(1, 40));
  const auto m = *tests::any_size();
  const tests::entry_rows rows = *tests::any_rows(*tests::any_size(), m);
  const round_trip trip(tests::real_matrix(m, rows, *rc::gen::inRange(0, 3)), records);
  RC_ASSERT(tests::entries_of(trip.read) == rows);
  RC_ASSERT(tests::entries_of(trip.loaded) == rows);
  RC_ASSERT((trip.read.m == m && trip.loaded.m == m));
  expect_loaded_exactly(trip.loaded);
}

RC_GTEST_PROP(MatrixFile, OfTextComesBackTo8Digits, ()) {
  const seams any(*rc::gen::inRange<std::size_t>(1, 40), 0);
  const auto m = *tests::any_size();
  const tests::entry_rows rows = *tests::any_rows(*tests::any_size(), m);
  const round_trip trip(tests::real_matrix(m, rows, *rc::gen::inRange(0, 3)), text);
  RC_ASSERT(close(tests::entries_of(trip.read), rows));
  RC_ASSERT(tests::entries_of(trip.loaded) == tests::entries_of(trip.read));
  RC_ASSERT((trip.read.m == m && trip.loaded.m == m));
  expect_loaded_exactly(trip.loaded);
}

RC_GTEST_PROP(MatrixFile, OfAPatternComesBackInBothEncodings, ()) {
  const seams any(*rc::gen::inRange<std::size_t>(1, 40), *rc::gen::inRange(1, 40));
  const auto m = *tests::any_size();
  const tests::column_rows rows = tests::columns_of(*tests::any_rows(*tests::any_size(), m));
  for (const auto& form : {text, records}) {
    const round_trip trip(tests::pattern(m, rows, *rc::gen::inRange(0, 3)), form);
    RC_ASSERT(tests::columns_of(trip.read) == rows);
    RC_ASSERT(tests::columns_of(trip.loaded) == rows);
    RC_ASSERT(trip.read.type == csr_matrix_mod::matrix_structure_only);
    expect_loaded_exactly(trip.loaded);
  }
}

RC_GTEST_PROP(MatrixFile, IsTheSameWhenWrittenAgain, ()) {
  const auto m = *tests::any_size();
  const csr_matrix mat = tests::real_matrix(m, *tests::any_rows(*tests::any_size(), m));
  for (const auto& form : {text, records})
    RC_ASSERT(tests::dumped(round_trip(mat, form).read, form) == tests::dumped(mat, form));
}

// One byte changed, or the end cut off.
std::string damaged(std::string bytes) {
  if (bytes.empty() || *rc::gen::arbitrary<bool>())
    return bytes.substr(0, *rc::gen::inRange<std::size_t>(0, bytes.size() + 1));
  const auto place = *rc::gen::inRange<std::size_t>(0, bytes.size());
  bytes[place] = *rc::gen::oneOf(rc::gen::arbitrary<char>(),
                                 rc::gen::element('0', '9', '-', ' ', '\n', '\x7f', '\xff'));
  return bytes;
}

// The readers never write outside of the storage, whatever the file says.
RC_GTEST_PROP(MatrixFile, ThatIsDamagedIsReadOrRefusedAndIfLoadedWellFormed, ()) {
  const auto m = *tests::any_size();
  const csr_matrix mat = tests::real_matrix(m, *tests::any_rows(*tests::any_size(), m));
  for (const auto& form : {text, records}) {
    const tests::temporary_folder folder;
    const std::string path = folder.path("file");
    tests::write_file(path, damaged(tests::dumped(mat, form)));

    csr_matrix loaded;
    const auto loading = tests::observe([&] { csr_matrix_load(path, loaded, form); });
    if (loading.stop)
      RC_ASSERT((loading.stop->starts_with(path + ": ") && !loaded.ia.allocated()));
    else
      RC_ASSERT(!csr_matrix_check(loaded).has_value());

    csr_matrix room = tests::room_for(mat.n, csr_matrix_num_nz(mat));
    const std::int32_t unit = csr_matrix_mod::vacant_unit();
    const auto reading = tests::observe([&] { csr_matrix_read(path, room, form); });
    csr_matrix_mod::close_unit(unit);
    const bool too_large = !loading.stop && (loaded.ia.length() > room.ia.length() ||
                                             csr_matrix_num_nz(loaded) > room.ja.length());
    if (reading.stop)
      RC_ASSERT((reading.stop->starts_with(path + ": ") && (loading.stop || too_large)));
  }
}

TEST(MatrixFile, KeepsWhatIsNoNumber) {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  const double not_a_number = std::numeric_limits<double>::quiet_NaN();
  const tests::entry_rows rows = {{{1, infinity}, {2, -infinity}, {3, not_a_number}, {4, -0.0}}};
  const csr_matrix mat = tests::real_matrix(4, rows);
  EXPECT_EQ(tests::entries_of(round_trip(mat, text).read), rows);
  EXPECT_EQ(tests::entries_of(round_trip(mat, records).read), rows);
}

TEST(MatrixFile, IsTheSameWhateverTheSizeOfTheBuffer) {
  for (const tests::named_matrix& each : tests::gallery())
    for (const auto& form : {text, records}) {
      const std::string expected = tests::dumped(each.mat, form);
      for (const std::size_t buffer : {1U, 2U, 3U, 7U, 30U, 64U}) {
        const seams small(buffer, 0);
        EXPECT_EQ(tests::dumped(each.mat, form), expected) << each.name;
        EXPECT_EQ(tests::dumped(round_trip(each.mat, form).read, form), expected) << each.name;
      }
    }
}

}  // namespace
