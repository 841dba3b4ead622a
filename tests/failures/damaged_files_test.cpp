// SPDX-License-Identifier: MIT
// Small files of every kind, cut behind each byte and damaged in each byte. A reader refuses what
// it finds in one line that names the file, or it gives a matrix that is well formed; where the
// file tells the difference, it gives none but the matrix that was written.
#include "../../src/io/stream.hpp"
#include "../support/observe.hpp"
#include "readers.hpp"
#include "record_text.hpp"
#include "stop_of.hpp"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

using csr_matrix_mod::csr_matrix;
using tests::file_kind;
using tests::golden_file;
using tests::reader;
using tests::readers;

// A file in memory, under a name.
class memory_file {
 public:
  memory_file() : descriptor_(memfd_create("matrix", 0)) {
    if (descriptor_ < 0) throw std::runtime_error("no file in memory");
    path_ = "/proc/self/fd/" + std::to_string(descriptor_);
  }
  memory_file(const memory_file&) = delete;
  memory_file& operator=(const memory_file&) = delete;
  ~memory_file() { close(descriptor_); }

  const std::string& holding(std::string_view bytes) const {
    if (ftruncate(descriptor_, 0) != 0 ||
        pwrite(descriptor_, bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size()))
      throw std::runtime_error("no room in memory");
    return path_;
  }

 private:
  int descriptor_;
  std::string path_;
};

struct read_matrix {
  std::optional<std::string> stop;
  csr_matrix mat;
};

// Room for what the whole file holds, and a little more, for readers that need it.
csr_matrix room_like(const csr_matrix& whole) {
  return tests::room_for(whole.n + 3, csr_matrix_num_nz(whole) + 5);
}

class DamagedFile : public testing::TestWithParam<golden_file> {
 protected:
  void TearDown() override { csr_matrix_mod::set_buffer_size(0); }

  // What became of the file; expects what holds whatever its bytes are.
  [[nodiscard]] read_matrix read(const reader& with, std::string_view bytes) {
    ++files_read_;
    const std::string& path = file_.holding(bytes);
    read_matrix result;
    result.mat = with.allocates ? tests::pattern(2, {{2}}) : room_like(whole_);
    const std::int32_t* const columns = result.mat.ja.data();
    result.stop = tests::stop_of([&] { with.read(path, result.mat); });
    if (result.stop) {
      expect_one_line(*result.stop, path);
      if (with.allocates) {
        EXPECT_EQ(result.mat.n, 1);
        EXPECT_EQ(result.mat.ja.data(), columns);
      }
    } else if (with.allocates) {
      EXPECT_EQ(csr_matrix_check(result.mat).value_or("well formed"), "well formed");
      EXPECT_EQ(result.mat.ja.length(), std::max(csr_matrix_num_nz(result.mat), 1));
    }
    return result;
  }

  template <class Each>
  void for_each_reader(const Each& each) {
    const golden_file& golden = GetParam();
    const auto seen = tests::observe([&] {
      for (const reader& with : readers)
        if (with.kind == golden.kind) {
          SCOPED_TRACE(with.name);
          if (golden.kind == file_kind::market)
            csr_matrix_read_market(file_.holding(golden.bytes), whole_);
          else
            csr_matrix_load(file_.holding(golden.bytes), whole_,
                            golden.kind == file_kind::text ? form() : form("unformatted"));
          each(with);
        }
    });
    EXPECT_EQ(seen.stop, std::nullopt);
    EXPECT_EQ(seen.output, "");
    EXPECT_EQ(csr_matrix_mod::vacant_unit(), 10);
    RecordProperty("files", files_read_);
  }

  csr_matrix whole_;  // what the undamaged file holds

 private:
  using form = std::optional<std::string_view>;

  static void expect_one_line(const std::string& message, const std::string& path) {
    EXPECT_EQ(message.compare(0, path.size() + 2, path + ": "), 0) << message;
    EXPECT_TRUE(std::all_of(message.begin(), message.end(), [](unsigned char c) {
      return std::isprint(c) != 0;
    })) << message;
    EXPECT_LT(message.size(), path.size() + 250) << message;
  }

  memory_file file_;
  int files_read_ = 0;
};

// Where the last line begins that is not blank.
std::size_t begin_of_last_line(const std::string& bytes) {
  const std::size_t last = bytes.find_last_not_of(" \n");
  const std::size_t feed = bytes.find_last_of('\n', last);
  return feed == std::string::npos ? 0 : feed + 1;
}

// Text may break off within its last number and still be whole to look at; only a strict reader of
// fields of fixed width tells.
TEST_P(DamagedFile, CutBehindAnyByteIsRefusedOrHoldsTheMatrix) {
  const std::string& bytes = GetParam().bytes;
  for_each_reader([&](const reader& with) {
    const csr_matrix& whole = whole_;
    csr_matrix first = read(with, bytes).mat;
    const std::string expected = tests::text_of(first);
    const bool sees_every_cut =
        with.kind == file_kind::binary || (with.kind == file_kind::text && with.allocates);
    for (std::size_t length = 0; length < bytes.size(); ++length)
      for (const std::size_t buffer : {std::size_t{0}, std::size_t{1}}) {
        csr_matrix_mod::set_buffer_size(buffer);
        const auto cut = read(with, std::string_view(bytes).substr(0, length));
        if (cut.stop) continue;
        if (sees_every_cut) {
          EXPECT_EQ(tests::text_of(cut.mat), expected) << length << " bytes";
        } else {
          EXPECT_GT(length, begin_of_last_line(bytes));
          EXPECT_EQ(cut.mat.n, whole.n);
          EXPECT_EQ(cut.mat.m, whole.m);
          if (whole.n > 0) {
            EXPECT_EQ(csr_matrix_num_nz(cut.mat), csr_matrix_num_nz(whole));
          }
        }
      }
  });
}

// The first line of text, every length around a record: nothing there has a second meaning, but for
// the case of a letter, and for the kind of a text file that has no entries.
bool tells_the_kind(const golden_file& golden, std::size_t at) {
  if (golden.kind == file_kind::text && golden.entries == 0) return false;
  if (golden.kind != file_kind::binary) return at < golden.bytes.find('\n');
  for (std::size_t marker = 0; marker < golden.bytes.size();) {
    std::int32_t length = 0;
    std::memcpy(&length, golden.bytes.data() + marker, sizeof length);
    const std::size_t behind = marker + 4 + static_cast<std::size_t>(length);
    if ((marker <= at && at < marker + 4) || (behind <= at && at < behind + 4)) return true;
    marker = behind + 4;
  }
  return false;
}

TEST_P(DamagedFile, InAnyByteIsRefusedOrHoldsAMatrixThatIsWellFormed) {
  const std::string& bytes = GetParam().bytes;
  for_each_reader([&](const reader& with) {
    const csr_matrix first = read(with, bytes).mat;
    const std::string expected = tests::text_of(first);
    for (std::size_t at = 0; at < bytes.size(); ++at) {
      std::vector<char> damages;
      for (int bit = 0; bit < 8; ++bit)
        damages.push_back(static_cast<char>(bytes[at] ^ static_cast<char>(1 << bit)));
      for (const char byte : {'\0', '\n', '\r', ' ', '-', '9', ',', 'T', '\x7f', '\xff'})
        if (byte != bytes[at]) damages.push_back(byte);
      for (const char damage : damages) {
        std::string damaged = bytes;
        damaged[at] = damage;
        const auto seen = read(with, damaged);
        if (seen.stop || !with.allocates || !tells_the_kind(GetParam(), at)) continue;
        EXPECT_EQ(tests::text_of(seen.mat), expected) << "byte " << at << " is " << int{damage};
      }
    }
  });
}

TEST_P(DamagedFile, WithAByteMoreOrLessIsRefusedOrHoldsAMatrixThatIsWellFormed) {
  const std::string& bytes = GetParam().bytes;
  for_each_reader([&](const reader& with) {
    for (std::size_t at = 0; at <= bytes.size(); ++at) {
      if (at < bytes.size()) (void)read(with, std::string(bytes).erase(at, 1));
      for (const char byte : {'\0', '\n', ' ', '1', '\xff'})
        (void)read(with, std::string(bytes).insert(at, 1, byte));
    }
  });
}

// Nobody tells a reader what kind of file it is given.
TEST_P(DamagedFile, IsRefusedByTheReadersOfOtherKinds) {
  const golden_file& golden = GetParam();
  const tests::temporary_folder folder;
  const std::string path = folder.path("matrix");
  tests::write_file(path, golden.bytes);
  for (const reader& with : readers) {
    if (with.kind == golden.kind) continue;
    csr_matrix mat = tests::room_for(10, 100);
    const auto seen = tests::observe([&] { with.read(path, mat); });
    EXPECT_EQ(seen.output, "");
    EXPECT_EQ(seen.stop.value_or("read").compare(0, path.size() + 2, path + ": "), 0) << with.name;
  }
}

std::string test_name_of(const testing::TestParamInfo<golden_file>& info) {
  constexpr const char* kinds[] = {"text", "binary", "market"};
  std::string name = kinds[static_cast<int>(info.param.kind)];
  for (const char c : "_" + info.param.name) {
    if (std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_') name += c;
    if (c == ' ') name += '_';
  }
  return name;
}

INSTANTIATE_TEST_SUITE_P(Golden, DamagedFile, testing::ValuesIn(tests::golden_files()),
                         test_name_of);

}  // namespace
