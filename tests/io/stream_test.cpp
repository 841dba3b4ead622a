// SPDX-License-Identifier: MIT
// Bytes and lines across the seams of the buffer.
#include "../../src/io/stream.hpp"

#include "../support/files.hpp"
#include "../support/observe.hpp"
#include "../support/refuse.hpp"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <cstdint>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

namespace {

using csr_matrix_mod::byte_sink;
using csr_matrix_mod::byte_source;
using csr_matrix_mod::direction;
using csr_matrix_mod::open_stream;

// Every test runs with buffers of this many bytes.
class Stream : public ::testing::TestWithParam<std::size_t> {
 protected:
  Stream() { csr_matrix_mod::set_buffer_size(GetParam()); }
  ~Stream() override { csr_matrix_mod::set_buffer_size(0); }

  template <class Use>
  void read(std::string_view bytes, const Use& use) const {
    const std::string path = folder_.path("in");
    tests::write_file(path, bytes);
    const auto file = open_stream(path, direction::reading);
    byte_source source(file.get(), path);
    use(source);
  }

  std::vector<std::string> lines(std::string_view bytes) const {
    std::vector<std::string> all;
    read(bytes, [&](byte_source& source) {
      for (std::string_view line; source.next_line(line);) {
        all.emplace_back(line);
        EXPECT_EQ(source.line_number(), static_cast<std::int64_t>(all.size()));
      }
    });
    return all;
  }

  tests::temporary_folder folder_;
};

INSTANTIATE_TEST_SUITE_P(BufferSizes, Stream, ::testing::Values(1, 2, 3, 7, 64, 0));

using list = std::vector<std::string>;

TEST_P(Stream, GivesLinesWithoutTheirEnds) {
  EXPECT_EQ(lines("one\ntwo\r\n\n\r\nfive"), (list{"one", "two", "", "", "five"}));
  EXPECT_EQ(lines("one\n"), (list{"one"}));
  EXPECT_EQ(lines(""), list{});
}

TEST_P(Stream, KnowsWhetherTheLastLineEnded) {
  std::string_view line;
  read("one\ntwo", [&](byte_source& source) {
    EXPECT_TRUE(source.next_line(line));
    EXPECT_FALSE(source.line_unfinished());
    EXPECT_TRUE(source.next_line(line));
    EXPECT_TRUE(source.line_unfinished());
    EXPECT_FALSE(source.next_line(line));
  });
}

TEST_P(Stream, GivesTheBeginningOfALongLine) {
  const std::string many(5000, 'x');
  const list got = lines(many + "\nnext");
  ASSERT_EQ(got.size(), 2U);
  EXPECT_EQ(got[0].size(), byte_source::kept_of_a_line);
  EXPECT_EQ(got[0], many.substr(0, got[0].size()));
  EXPECT_EQ(got[1], "next");
}

TEST_P(Stream, PassesOverTheBeginningOfALine) {
  const std::string many(5000, ' ');
  std::string_view line;
  read(many + "a b\n\n  c", [&](byte_source& source) {
    EXPECT_TRUE(source.next_line(line, " "));
    EXPECT_EQ(line, "a b");
    EXPECT_TRUE(source.next_line(line, " "));
    EXPECT_EQ(line, "");
    EXPECT_TRUE(source.next_line(line, " "));
    EXPECT_EQ(line, "c");
    EXPECT_FALSE(source.next_line(line, " "));
  });
}

TEST_P(Stream, ReadsAndSkipsAcrossSeams) {
  std::string bytes;
  for (int k = 0; k < 300; ++k) bytes += static_cast<char>(k);
  read(bytes, [&](byte_source& source) {
    std::string got(100, '?');
    EXPECT_EQ(source.bytes_left(), 300);
    EXPECT_EQ(source.read(got.data(), 100), 100U);
    EXPECT_EQ(got, bytes.substr(0, 100));
    EXPECT_TRUE(source.skip(50));
    EXPECT_EQ(source.bytes_left(), 150);
    EXPECT_EQ(source.read(got.data(), 1), 1U);
    EXPECT_EQ(got[0], bytes[150]);
    EXPECT_EQ(source.read(got.data(), 100), 100U);
    EXPECT_EQ(got, bytes.substr(151, 100));
    EXPECT_FALSE(source.skip(50));
    EXPECT_EQ(source.read(got.data(), 1), 0U);
    EXPECT_EQ(source.bytes_left(), 0);
  });
}

TEST_P(Stream, CountsTheBytesLeftInAPipeToo) {
  const std::string path = folder_.path("pipe");
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  std::thread writer([&] { tests::write_file(path, "one\ntwo\nthree\n"); });
  {
    const auto file = open_stream(path, direction::reading);
    byte_source source(file.get(), path);
    std::string_view line;
    EXPECT_TRUE(source.next_line(line));
    EXPECT_EQ(source.bytes_left(), 10);
    EXPECT_TRUE(source.next_line(line));
    EXPECT_EQ(line, "two");
    EXPECT_EQ(source.bytes_left(), 6);
    EXPECT_TRUE(source.next_line(line));
    EXPECT_FALSE(source.next_line(line));
  }
  writer.join();
}

TEST_P(Stream, WritesAcrossSeams) {
  const std::string path = folder_.path("out");
  std::string expected;
  {
    const auto file = open_stream(path, direction::writing);
    byte_sink sink(file.get(), path);
    for (std::size_t length = 0; length < 100; ++length) {
      const std::string piece(length, static_cast<char>('!' + length % 90));
      sink.write(piece);
      char* const room = sink.room(length);
      std::copy(piece.begin(), piece.end(), room);
      sink.advance(length);
      expected += piece + piece;
    }
    sink.flush();
  }
  EXPECT_EQ(tests::read_file(path), expected);
}

TEST_P(Stream, StopsWhenTheDeviceIsFull) {
  const auto seen = tests::observe([] {
    const auto file = open_stream("/dev/full", direction::writing);
    byte_sink sink(file.get(), "/dev/full");
    sink.write("some bytes");
    sink.flush();
  });
  EXPECT_EQ(seen.stop, "/dev/full: cannot write: No space left on device");
}

TEST_P(Stream, StopsWhenThereIsNoMemoryForTheBuffer) {
  const std::string path = folder_.path("file");
  tests::write_file(path, "bytes");
  const auto file = open_stream(path, direction::reading);
  const tests::refuse_allocation reading(0);
  EXPECT_EQ(tests::observe([&] { byte_source source(file.get(), path); }).stop,
            path + ": cannot read: Cannot allocate memory");
  const tests::refuse_allocation writing(0);
  EXPECT_EQ(tests::observe([&] { byte_sink sink(file.get(), path); }).stop,
            path + ": cannot write: Cannot allocate memory");
}

}  // namespace
