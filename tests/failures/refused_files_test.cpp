// SPDX-License-Identifier: MIT
// Readers of files that cannot be opened, that fail at any call, that come in small pieces, or
// whose names hold blanks.
#include "../../src/io/stream.hpp"
#include "../support/observe.hpp"
#include "faults.hpp"
#include "readers.hpp"
#include "record_text.hpp"
#include "stop_of.hpp"
#include "without_privileges.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <ostream>
#include <string>
#include <thread>

namespace tests {

std::ostream& operator<<(std::ostream& out, const reader& of) { return out << of.name; }

}  // namespace tests

namespace {

using csr_matrix_mod::csr_matrix;
using tests::reader;

class Reader : public testing::TestWithParam<reader> {
 protected:
  void TearDown() override { csr_matrix_mod::set_buffer_size(0); }

  // A file that the reader takes:
  //     [ .  -.5  1 ]
  //     [ .   .   . ]
  //     [ 7   .   4 ]
  [[nodiscard]] std::string file_named(const std::string& name) const {
    const csr_matrix mat = tests::real_matrix(3, {{{3, 1.0}, {2, -0.5}}, {}, {{1, 7.0}, {3, 4.0}}});
    std::string file = folder.path(name);
    switch (GetParam().kind) {
      case tests::file_kind::text:
        csr_matrix_dump(file, mat);
        break;
      case tests::file_kind::binary:
        csr_matrix_dump(file, mat, "unformatted");
        break;
      case tests::file_kind::market:
        csr_matrix_write_market(file, mat);
        break;
    }
    return file;
  }

  [[nodiscard]] static csr_matrix record() { return tests::room_for(3, 4); }

  // What is read of it.
  [[nodiscard]] static std::string read(const std::string& file) {
    csr_matrix mat = record();
    tests::expect_silent([&] { GetParam().read(file, mat); });
    return tests::text_of(mat);
  }

  [[nodiscard]] static std::string stop_at(const std::string& file) {
    csr_matrix mat = record();
    const auto seen = tests::observe([&] { GetParam().read(file, mat); });
    EXPECT_EQ(seen.output, "");
    EXPECT_EQ(csr_matrix_mod::vacant_unit(), 10);
    return seen.stop.value_or("read");
  }

  tests::temporary_folder folder;
};

// The size of a file that cannot tell it is found by reading it.
TEST_P(Reader, StopsAtEveryCallThatFailsOrDoesWithoutIt) {
  const std::string file = file_named("matrix");
  const std::string expected = read(file);
  for (const std::size_t buffer : {std::size_t{0}, std::size_t{1}, std::size_t{16}})
    for (int k = 0;; ++k) {
      csr_matrix_mod::set_buffer_size(buffer);
      csr_matrix mat = record();
      const std::string before = tests::text_of(mat);
      tests::fail_file_call(k);
      const std::optional<std::string> stop = tests::stop_of([&] { GetParam().read(file, mat); });
      const bool reached = tests::file_call_failed();
      EXPECT_EQ(csr_matrix_mod::vacant_unit(), 10);
      if (!stop) {
        EXPECT_EQ(tests::text_of(mat), expected);
      } else {
        EXPECT_TRUE(*stop == file + ": cannot read: Input/output error" ||
                    *stop == file + ": cannot open for reading: Too many open files")
            << *stop;
        EXPECT_TRUE(!GetParam().allocates || tests::text_of(mat) == before);
      }
      if (!reached) break;
    }
}

TEST_P(Reader, TakesWhatComesInPieces) {
  const std::string file = file_named("matrix");
  const std::string bytes = tests::read_file(file);
  const std::string pipe = folder.path("pipe");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  for (const std::size_t piece : {std::size_t{1}, std::size_t{7}}) {
    std::thread sender([&] {
      const int to = open(pipe.c_str(), O_WRONLY | O_CLOEXEC);
      for (std::size_t at = 0; at < bytes.size(); at += piece)
        EXPECT_GT(write(to, bytes.data() + at, std::min(piece, bytes.size() - at)), 0);
      close(to);
    });
    EXPECT_EQ(read(pipe), read(file));
    sender.join();
  }
}

TEST_P(Reader, TakesAFileWithBlanksInItsName) {
  for (const char* const name : {"a b", " a", "a ", " "}) {
    const std::string file = file_named(name);
    csr_matrix mat = record();
    tests::expect_silent([&] { GetParam().read(file, mat); });
    EXPECT_EQ(mat.m, 3);
    std::filesystem::remove(file);
    EXPECT_EQ(stop_at(file), file + ": cannot open for reading: No such file or directory");
  }
}

TEST_P(Reader, StopsWhereNoFileIs) {
  const std::string nowhere = folder.path("nowhere/matrix");
  EXPECT_EQ(stop_at(nowhere), nowhere + ": cannot open for reading: No such file or directory");
  EXPECT_EQ(stop_at(""), ": cannot open for reading: No such file or directory");
  EXPECT_EQ(stop_at(folder.path("")),
            folder.path("") + ": cannot open for reading: Is a directory");
  const std::string below_a_file = file_named("file") + "/matrix";
  EXPECT_EQ(stop_at(below_a_file), below_a_file + ": cannot open for reading: Not a directory");
  const std::string too_long = folder.path(std::string(300, 'x'));
  EXPECT_EQ(stop_at(too_long), too_long + ": cannot open for reading: File name too long");
  EXPECT_EQ(stop_at("/proc/self/mem"), "/proc/self/mem: cannot read: Input/output error");
}

TEST_P(Reader, StopsWithoutPermission) {
  if (!tests::without_privileges::possible()) GTEST_SKIP() << "nobody but root is here";
  const std::string file = file_named("matrix");
  std::filesystem::permissions(file, std::filesystem::perms::none);
  std::filesystem::permissions(folder.path(""), std::filesystem::perms::all);
  csr_matrix mat = record();
  const auto seen = tests::observe([&] {
    const tests::without_privileges somebody_else;
    GetParam().read(file, mat);
  });
  EXPECT_EQ(seen.stop, file + ": cannot open for reading: Permission denied");
}

TEST_P(Reader, StopsAtAnEmptyDevice) {
  const std::string stop = stop_at("/dev/null");
  EXPECT_EQ(stop.compare(0, 11, "/dev/null: "), 0) << stop;
}

std::string test_name_of(const testing::TestParamInfo<reader>& info) {
  std::string name = info.param.name;
  std::replace(name.begin(), name.end(), ' ', '_');
  return name;
}

INSTANTIATE_TEST_SUITE_P(Of, Reader, testing::ValuesIn(tests::readers), test_name_of);

}  // namespace
