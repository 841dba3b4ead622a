// SPDX-License-Identifier: MIT
// csr_matrix_read: into the caller's storage, from a file that a Fortran program could have read.
#include "../support/files.hpp"
#include "../support/observe.hpp"
#include "gallery.hpp"
#include "units.hpp"

#include <csr_matrix_mod/io.hpp>

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace {

using csr_matrix_mod::close_unit;
using csr_matrix_mod::csr_matrix;
using csr_matrix_mod::csr_matrix_read;
using csr_matrix_mod::vacant_unit;

// [ 1.5 .  2.5 ]
// [  .  .   .  ]
const char* const sample_text =
    " F\n"
    "         2         3\n"
    "         1\n"
    "         3\n"
    "         3\n"
    "         1\n"
    "         3\n"
    "\n"
    "       1.5000000    \n"
    "       2.5000000    \n"
    "\n";
const tests::entry_rows sample_rows = {{{1, 1.5}, {3, 2.5}}, {}};

class Read : public ::testing::Test {
 protected:
  std::string file(std::string_view bytes) const {
    tests::write_file(folder_.path("file"), bytes);
    return folder_.path("file");
  }

  // What the reader says of a file; FILE stands for its name.
  std::string stop_of(std::string_view bytes, csr_matrix& mat,
                      std::optional<std::string_view> form = {}) const {
    const std::string path = file(bytes);
    const tests::observed seen = tests::observe([&] { csr_matrix_read(path, mat, form); });
    EXPECT_EQ(seen.output, "");
    std::string stop = seen.stop.value_or("none");
    if (stop.starts_with(path)) stop.replace(0, path.size(), "FILE");
    return stop;
  }
  std::string stop_of(std::string_view bytes, std::optional<std::string_view> form = {}) const {
    csr_matrix mat = tests::room_for(10, 10);
    return stop_of(bytes, mat, form);
  }

  tests::temporary_folder folder_;
};

TEST_F(Read, FillsTheStorageThatIsThere) {
  csr_matrix mat = tests::room_for(5, 4);
  const std::int32_t* const columns = mat.ja.data();
  const std::int32_t unit = vacant_unit();
  tests::expect_silent([&] { csr_matrix_read(file(sample_text), mat); });
  close_unit(unit);
  EXPECT_EQ(tests::entries_of(mat), sample_rows);
  EXPECT_EQ(mat.m, 3);
  EXPECT_EQ(mat.ja.data(), columns);
  EXPECT_EQ(mat.ia.length(), 6);
  EXPECT_EQ(mat.ja.length(), 4);
  EXPECT_EQ(mat.a.length(), 4);
  EXPECT_EQ(mat.ja(3), -77);
  EXPECT_EQ(mat.a(4), -77.0);
}

TEST_F(Read, NeedsNoMoreRoomThanTheMatrixHas) {
  EXPECT_EQ(tests::entries_of(tests::read_back(file(sample_text), {}, 2, 2)), sample_rows);
}

TEST_F(Read, ReadsAMatrixWithoutRowsFromThreeLines) {
  const csr_matrix mat = tests::read_back(file(" F\n         0         4\n         1\n"), {}, 0, 0);
  EXPECT_EQ(mat.n, 0);
  EXPECT_EQ(mat.m, 4);
  EXPECT_EQ(mat.ia(1), 1);
}

TEST_F(Read, PassesOverAnyNumberOfBlanksBeforeTheFirstItem) {
  const csr_matrix mat = tests::read_back(
      file(std::string(3000, ' ') + "\tF\n         0         4\n         1\n"), {}, 0, 0);
  EXPECT_EQ(mat.m, 4);
}

TEST_F(Read, NeedsNoValuesOfAStructureOnlyMatrix) {
  csr_matrix mat;
  ASSERT_TRUE(mat.ia.allocate(2) && mat.ja.allocate(1));
  const std::int32_t unit = vacant_unit();
  csr_matrix_read(file(" T\n         1         7\n         1\n         2\n         7\n"), mat);
  close_unit(unit);
  EXPECT_EQ(tests::columns_of(mat), (tests::column_rows{{7}}));
  EXPECT_EQ(mat.type, csr_matrix_mod::matrix_structure_only);
  EXPECT_FALSE(mat.a.allocated());
}

TEST_F(Read, LeavesTheUnitOpenSoThatTwoReadsTakeTwo) {
  const std::int32_t unit = vacant_unit();
  csr_matrix mat = tests::room_for(2, 2);
  csr_matrix_read(file(sample_text), mat);
  EXPECT_EQ(vacant_unit(), unit + 1);
  csr_matrix_read(file(sample_text), mat);
  EXPECT_EQ(vacant_unit(), unit + 2);
  close_unit(unit);
  EXPECT_EQ(vacant_unit(), unit);
  close_unit(unit + 1);
}

TEST_F(Read, IgnoresBlanksBehindTheFormWord) {
  csr_matrix_dump(folder_.path("records"), tests::real_matrix(3, sample_rows), "unformatted");
  EXPECT_EQ(tests::entries_of(tests::read_back(folder_.path("records"), "unformatted  ", 2, 2)),
            sample_rows);
}

TEST_F(Read, RefusesEveryOtherFormWordOnceTheFileIsOpen) {
  for (const char* const word :
       {"FORMATTED", "formatted", "UNFORMATTED", "", "unformatte", " unformatted"}) {
    const std::int32_t unit = vacant_unit();
    EXPECT_EQ(stop_of(sample_text, word), "can not read this format!") << word;
    EXPECT_EQ(vacant_unit(), unit + 1) << word;
    close_unit(unit);
  }
}

TEST_F(Read, StopsOfAMissingFileBeforeItLooksAtTheFormWord) {
  csr_matrix mat = tests::room_for(2, 2);
  const std::int32_t unit = vacant_unit();
  const std::string missing = folder_.path("missing");
  for (const char* const word : {"unformatted", "FORMATTED"})
    EXPECT_EQ(tests::observe([&] { csr_matrix_read(missing, mat, word); }).stop,
              missing + ": cannot open for reading: No such file or directory");
  EXPECT_EQ(vacant_unit(), unit);
}

TEST_F(Read, StopsOfAFolder) {
  csr_matrix mat = tests::room_for(2, 2);
  EXPECT_EQ(tests::observe([&] { csr_matrix_read(folder_.path("."), mat); }).stop,
            folder_.path(".") + ": cannot open for reading: Is a directory");
}

TEST_F(Read, StopsOfAFileThatCannotBeReadThough) {
  csr_matrix mat = tests::room_for(2, 2);
  const tests::observed seen = tests::observe([&] { csr_matrix_read("/proc/self/mem", mat); });
  EXPECT_EQ(seen.stop, "/proc/self/mem: cannot read: Input/output error");
}

TEST_F(Read, StopsWhenNoUnitIsVacant) {
  const tests::all_units_taken taken;
  EXPECT_EQ(stop_of(sample_text), "no vacant unit exists!");
}

TEST_F(Read, ReleasesTheUnitOfABadFile) {
  const std::int32_t unit = vacant_unit();
  EXPECT_EQ(stop_of(" F\nx\n"), "FILE: line 2: expected an integer in columns 1 to 10, found 'x'");
  EXPECT_EQ(vacant_unit(), unit);
}

TEST_F(Read, StopsOfABadFieldWithWhatItFound) {
  EXPECT_EQ(stop_of("x\n"), "FILE: line 1: expected a truth value, T or F, found 'x'");
  EXPECT_EQ(stop_of(" F\n         2     three\n"),
            "FILE: line 2: expected an integer in columns 11 to 20, found '     three'");
  EXPECT_EQ(stop_of(" F\n         1         1\n       1.0\n"),
            "FILE: line 3: expected an integer in columns 1 to 10, found '       1.0'");
  EXPECT_EQ(stop_of(" F\n         1         1\n         1\n         2\n2147483648\n"),
            "FILE: line 5: expected an integer in columns 1 to 10, found '2147483648'");
  EXPECT_EQ(stop_of(" F\n         1         1\n         1\n         2\n         1\n1.0.0\n"),
            "FILE: line 6: expected a value in columns 1 to 20, found '1.0.0'");
}

TEST_F(Read, ShowsHarmlesslyWhatItFound) {
  EXPECT_EQ(
      stop_of(" F\n\x1b[2J\t\xff~\x7f\n"),
      "FILE: line 2: expected an integer in columns 1 to 10, found '\\x1b[2J\\x09\\xff~\\x7f'");
  EXPECT_EQ(
      stop_of(std::string(2000, 'x') + "\n"),
      "FILE: line 1: expected a truth value, T or F, found '" + std::string(40, 'x') + "'...");
}

TEST_F(Read, CountsTheLinesBeforeTheFirst) {
  EXPECT_EQ(stop_of("\n  \n F\nx\n"),
            "FILE: line 4: expected an integer in columns 1 to 10, found 'x'");
}

TEST_F(Read, StopsWhereTheFileEnds) {
  EXPECT_EQ(stop_of(""), "FILE: line 1: expected a truth value, T or F, found the end of the file");
  EXPECT_EQ(stop_of("\n\n"),
            "FILE: line 3: expected a truth value, T or F, found the end of the file");
  EXPECT_EQ(stop_of(" F\n"),
            "FILE: line 2: expected n and m in columns 1 to 20, found the end of the file");
  const std::string head = " F\n         2         2\n         1\n         1\n         2\n";
  EXPECT_EQ(stop_of(head),
            "FILE: line 6: expected the empty line of row 1, found the end of the file");
  EXPECT_EQ(stop_of(head + "\n"),
            "FILE: line 7: expected an integer in columns 1 to 10, found the end of the file");
  EXPECT_EQ(stop_of(head + "\n         2\n\n"),
            "FILE: line 9: expected a value in columns 1 to 20, found the end of the file");
}

TEST_F(Read, NeedsNoEndOfTheLastLine) {
  EXPECT_EQ(
      tests::entries_of(tests::read_back(
          file(" F\n         1         1\n         1\n         2\n         1\n2.5"), {}, 1, 1)),
      (tests::entry_rows{{{1, 2.5}}}));
}

TEST_F(Read, StopsOfFewerThan0Rows) {
  EXPECT_EQ(stop_of(" F\n        -1         1\n"),
            "FILE: line 2: expected 0 rows or more, found -1");
}

TEST_F(Read, KeepsANumberOfColumnsBelow0) {
  EXPECT_EQ(tests::read_back(file(" F\n         0        -3\n         1\n"), {}, 0, 0).m, -3);
}

TEST_F(Read, StopsWhereThereIsNoRoom) {
  csr_matrix few_rows = tests::room_for(1, 10);
  EXPECT_EQ(stop_of(sample_text, few_rows),
            "FILE: line 2: expected room for 3 row starts in ia, found room for 2");
  csr_matrix nothing;
  EXPECT_EQ(stop_of(sample_text, nothing),
            "FILE: line 2: expected room for 3 row starts in ia, found room for 0");
  csr_matrix few_entries = tests::room_for(2, 1);
  EXPECT_EQ(stop_of(sample_text, few_entries),
            "FILE: line 4: expected room for 2 columns in ja, found room for 1");
  csr_matrix few_values = tests::room_for(2, 2);
  few_values.a.release();
  EXPECT_EQ(stop_of(sample_text, few_values),
            "FILE: line 4: expected room for 2 values in a, found room for 0");
}

TEST_F(Read, StopsOfAnEntryBeforeTheFirst) {
  EXPECT_EQ(stop_of(" T\n         1         1\n         0\n         2\n         1\n         1\n"),
            "FILE: line 3: expected 1 or more, found 0");
}

// Row 1 transfers nothing, row 2 the entries 1 to 2.
TEST_F(Read, TransfersNothingForARowThatEndsBeforeItBegins) {
  csr_matrix mat = tests::room_for(2, 2);
  const std::int32_t unit = vacant_unit();
  csr_matrix_read(file(" T\n         2         9\n         7\n         1\n         3\n"
                       "\n         8\n         9\n"),
                  mat);
  close_unit(unit);
  EXPECT_EQ(mat.ia(1), 7);
  EXPECT_EQ(mat.ja(1), 8);
  EXPECT_EQ(mat.ja(2), 9);
}

TEST_F(Read, KeepsColumnsOutsideOfTheMatrix) {
  const csr_matrix mat = tests::read_back(
      file(" T\n         1         1\n         1\n         3\n        -5\n       700\n"), {}, 1, 2);
  EXPECT_EQ(mat.ja(1), -5);
  EXPECT_EQ(mat.ja(2), 700);
}

template <class... Number>
std::string bytes_of(const Number&... numbers) {
  std::string bytes;
  (bytes.append(reinterpret_cast<const char*>(&numbers), sizeof numbers), ...);
  return bytes;
}

TEST_F(Read, ReadsNoFifthRecordOfAStructureOnlyMatrix) {
  const csr_matrix mat = tests::read_back(
      file(bytes_of(4, 1, 4) + bytes_of(8, 1, 2, 8) + bytes_of(8, 1, 2, 8) + bytes_of(4, 2, 4)),
      "unformatted", 1, 1);
  EXPECT_EQ(tests::columns_of(mat), (tests::column_rows{{2}}));
}

TEST_F(Read, TakesTheLeadingItemsOfALongerRecord) {
  const csr_matrix mat = tests::read_back(
      file(bytes_of(8, 0, 99, 8) + bytes_of(12, 1, 2, 99, 12) + bytes_of(12, 1, 2, 99, 12) +
           bytes_of(8, 2, 99, 8) + bytes_of(16, 2.5, 99.0, 16)),
      "unformatted", 1, 1);
  EXPECT_EQ(tests::entries_of(mat), (tests::entry_rows{{{2, 2.5}}}));
}

TEST_F(Read, StopsOfABadRecord) {
  EXPECT_EQ(stop_of("", "unformatted"),
            "FILE: record 1: expected a whole record, found the end of the file");
  EXPECT_EQ(stop_of(bytes_of(4, 0, 4) + bytes_of(4, 1, 4), "unformatted"),
            "FILE: record 2: expected 8 bytes, found 4");
  EXPECT_EQ(stop_of(bytes_of(4, 0, 8), "unformatted"),
            "FILE: record 1: expected the length 4 after it, found 8");
  EXPECT_EQ(stop_of(bytes_of(0x04000000, 0, 0x04000000), "unformatted"),
            "FILE: record 1: expected 4 bytes, found them in the other byte order");
  EXPECT_EQ(stop_of(bytes_of(4, 0, 4) + bytes_of(8, -1, 1, 8), "unformatted"),
            "FILE: record 2: expected 0 rows or more, found -1");
}

TEST_F(Read, StopsOfATypeThatIsNeither0Nor1) {
  for (const std::int32_t type : {2, -1, 256})
    EXPECT_EQ(
        stop_of(bytes_of(4, type, 4) + bytes_of(8, 0, 0, 8) + bytes_of(4, 1, 4), "unformatted"),
        "FILE: record 1: expected a truth value, 0 or 1, found " + std::to_string(type));
}

TEST_F(Read, StopsWhereThereIsNoRoomForARecord) {
  const std::string head = bytes_of(4, 0, 4) + bytes_of(8, 1, 1, 8);
  EXPECT_EQ(stop_of(head + bytes_of(8, 1, 12, 8), "unformatted"),
            "FILE: record 3, item 2: expected room for 11 columns in ja, found room for 10");
  const std::int32_t smallest = std::numeric_limits<std::int32_t>::min();
  csr_matrix mat = tests::room_for(1, 1);
  EXPECT_EQ(stop_of(head + bytes_of(8, 1, smallest, 8) + bytes_of(0, 0) + bytes_of(0, 0), mat,
                    "unformatted"),
            "none");
  close_unit(10);
}

TEST_F(Read, CanBeRepeatedIntoTheSameRecordAfterAStop) {
  csr_matrix mat = tests::room_for(5, 5);
  EXPECT_NE(stop_of(" T\n         5         5\n         1\nx\n", mat), "none");
  const std::int32_t unit = vacant_unit();
  csr_matrix_read(file(sample_text), mat);
  close_unit(unit);
  EXPECT_EQ(tests::entries_of(mat), sample_rows);
}

}  // namespace
