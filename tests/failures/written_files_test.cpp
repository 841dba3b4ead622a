// SPDX-License-Identifier: MIT
// Writers on a disk that is full, that fills behind any byte, or that fails at any call. What is
// left is the beginning of the file, the stop says so in one line, and no unit stays taken.
#include "../../src/io/stream.hpp"
#include "../support/observe.hpp"
#include "faults.hpp"
#include "readers.hpp"
#include "stop_of.hpp"
#include "without_privileges.hpp"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <optional>
#include <ostream>
#include <string>

namespace tests {

std::ostream& operator<<(std::ostream& out, const writer& of) { return out << of.name; }

}  // namespace tests

namespace {

using csr_matrix_mod::csr_matrix;
using tests::writer;

// No file grows beyond so many bytes while this lives.
class largest_file {
 public:
  explicit largest_file(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit now{bytes, before_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &now);
  }
  largest_file(const largest_file&) = delete;
  largest_file& operator=(const largest_file&) = delete;
  ~largest_file() {
    setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, handler_);
  }

 private:
  void (*handler_)(int);
  rlimit before_{};
};

//     [ .  -.5   1  ]
//     [ .   .    .  ]
//     [ 7   .  1e-9 ]
csr_matrix sample() {
  return tests::real_matrix(3, {{{3, 1.0}, {2, -0.5}}, {}, {{1, 7.0}, {3, 1e-9}}}, 2);
}

csr_matrix pattern_sample() { return tests::pattern(3, {{3, 2}, {}, {1, 3}}, 2); }

class Writer : public testing::TestWithParam<writer> {
 protected:
  void TearDown() override { csr_matrix_mod::set_buffer_size(0); }

  void write(const csr_matrix& mat) const { GetParam().write(path, mat); }

  // A file is made more quickly than it is emptied.
  void remove() const {
    std::filesystem::remove(path);
    std::filesystem::remove(path + ".com");
  }

  [[nodiscard]] std::string whole(const csr_matrix& mat, const std::string& suffix) const {
    remove();
    (void)tests::observe([&] { write(mat); });
    const std::string file = path + suffix;
    return std::filesystem::exists(file) ? tests::read_file(file) : "";
  }

  tests::temporary_folder folder;
  const std::string path = folder.path("a matrix");
};

std::string beginning(const std::string& path) {
  return std::filesystem::exists(path) ? tests::read_file(path) : "";
}

TEST_P(Writer, LeavesTheBeginningOnADiskThatFillsBehindAnyByte) {
  for (const csr_matrix& mat : {sample(), pattern_sample()}) {
    const std::string bytes = whole(mat, "");
    const std::string commands = whole(mat, ".com");
    for (const std::size_t buffer : {std::size_t{0}, std::size_t{1}, std::size_t{37}}) {
      csr_matrix_mod::set_buffer_size(buffer);
      for (rlim_t room = 0; room < bytes.size(); ++room) {
        remove();
        const auto seen = tests::observe([&] {
          const largest_file full(room);
          write(mat);
        });
        const std::string file = room < commands.size() ? path + ".com" : path;
        EXPECT_EQ(seen.stop, file + ": cannot write: File too large");
        EXPECT_EQ(beginning(file), (room < commands.size() ? commands : bytes).substr(0, room));
        EXPECT_EQ(csr_matrix_mod::vacant_unit(), 10);
      }
      remove();
      const auto seen = tests::observe([&] {
        const largest_file full(std::max(bytes.size(), commands.size()));
        write(mat);
      });
      EXPECT_EQ(seen.stop, std::nullopt);
      EXPECT_EQ(beginning(path), bytes);
    }
  }
}

TEST_P(Writer, StopsAtEveryCallThatFails) {
  for (const csr_matrix& mat : {sample(), pattern_sample()}) {
    const std::string bytes = whole(mat, "");
    for (const std::size_t buffer : {std::size_t{0}, std::size_t{1}})
      for (int k = 0;; ++k) {
        csr_matrix_mod::set_buffer_size(buffer);
        remove();
        bool reached = false;
        std::optional<std::string> stop;
        const auto seen = tests::observe([&] {
          tests::fail_file_call(k);
          stop = tests::stop_of([&] { write(mat); });
          reached = tests::file_call_failed();
        });
        EXPECT_EQ(csr_matrix_mod::vacant_unit(), 10);
        if (!reached) {
          EXPECT_EQ(stop, std::nullopt);
          EXPECT_EQ(beginning(path), bytes);
          break;
        }
        if (!stop) {
          // A unit that stays open is closed by `close_unit`, which has no file to name.
          EXPECT_EQ(beginning(path), bytes);
          continue;
        }
        const std::string file =
            stop->compare(0, path.size() + 4, path + ".com") == 0 ? path + ".com" : path;
        EXPECT_TRUE(*stop == file + ": cannot write: No space left on device" ||
                    *stop == file + ": cannot open for writing: Too many open files")
            << *stop;
        EXPECT_EQ(bytes.compare(0, beginning(path).size(), beginning(path)), 0);
      }
  }
}

TEST_P(Writer, StopsAtADeviceThatIsFull) {
  const std::string device = "/dev/full";
  for (const csr_matrix& mat : {sample(), pattern_sample()})
    for (const std::size_t buffer : {std::size_t{0}, std::size_t{1}}) {
      csr_matrix_mod::set_buffer_size(buffer);
      if (GetParam().name == std::string("csr_matrix_dump_gnuplot")) continue;  // /dev/full.com
      const auto seen = tests::observe([&] { GetParam().write(device, mat); });
      EXPECT_EQ(seen.stop, device + ": cannot write: No space left on device");
      EXPECT_EQ(csr_matrix_mod::vacant_unit(), 10);
    }
}

TEST_P(Writer, WritesAFileWithBlanksInItsName) {
  for (const char* const name : {"a b", " a", "a ", " "}) {
    const std::string with_blanks = folder.path(name);
    const auto seen = tests::observe([&] { GetParam().write(with_blanks, sample()); });
    EXPECT_EQ(seen.stop, std::nullopt);
    EXPECT_GT(tests::read_file(with_blanks).size(), 0U);
  }
}

TEST_P(Writer, StopsWhereNoFileCanBe) {
  std::filesystem::create_directory(path);
  const auto stop_at = [&](const std::string& file) {
    return tests::observe([&] { GetParam().write(file, sample()); }).stop;
  };
  EXPECT_EQ(stop_at(path), path + ": cannot open for writing: Is a directory");
  const std::string nowhere = folder.path("nowhere/matrix");
  EXPECT_EQ(stop_at(nowhere), nowhere + ": cannot open for writing: No such file or directory");
  const std::string below_a_file = folder.path("file/matrix");
  tests::write_file(folder.path("file"), "");
  EXPECT_EQ(stop_at(below_a_file), below_a_file + ": cannot open for writing: Not a directory");
  EXPECT_EQ(stop_at(""), ": cannot open for writing: No such file or directory");
  const std::string too_long = folder.path(std::string(300, 'x'));
  EXPECT_EQ(stop_at(too_long), too_long + ": cannot open for writing: File name too long");
  EXPECT_EQ(csr_matrix_mod::vacant_unit(), 10);
}

TEST_P(Writer, StopsWithoutPermission) {
  if (!tests::without_privileges::possible()) GTEST_SKIP() << "nobody but root is here";
  const std::string forbidden = folder.path("matrix");
  std::filesystem::permissions(folder.path(""), std::filesystem::perms::owner_read);
  const auto seen = tests::observe([&] {
    const tests::without_privileges nobody_special;
    GetParam().write(forbidden, sample());
  });
  EXPECT_EQ(seen.stop, forbidden + ": cannot open for writing: Permission denied");
  std::filesystem::permissions(folder.path(""), std::filesystem::perms::owner_all);
}

std::string test_name_of(const testing::TestParamInfo<writer>& info) {
  std::string name = info.param.name;
  std::replace(name.begin(), name.end(), ' ', '_');
  return name;
}

INSTANTIATE_TEST_SUITE_P(Of, Writer, testing::ValuesIn(tests::writers), test_name_of);

}  // namespace
