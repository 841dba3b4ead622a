// SPDX-License-Identifier: MIT
// Unformatted records, split and damaged.
#include "../../src/io/records.hpp"

#include "../support/files.hpp"
#include "../support/observe.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

namespace {

using csr_matrix_mod::byte_sink;
using csr_matrix_mod::byte_source;
using csr_matrix_mod::direction;
using csr_matrix_mod::open_stream;
using csr_matrix_mod::record_source;
using csr_matrix_mod::surplus;

// A length as it stands before or after a subrecord.
std::string length(std::int32_t value) {
  return {reinterpret_cast<const char*>(&value), sizeof value};
}

class Records : public ::testing::Test {
 protected:
  ~Records() override { csr_matrix_mod::set_subrecord_size(0); }

  std::string written(std::string_view record, std::int32_t subrecord_size) const {
    csr_matrix_mod::set_subrecord_size(subrecord_size);
    const std::string path = folder_.path("out");
    {
      const auto file = open_stream(path, direction::writing);
      byte_sink sink(file.get(), path);
      write_record(sink, record.data(), static_cast<std::int64_t>(record.size()));
      sink.flush();
    }
    return tests::read_file(path);
  }

  // The first `bytes` bytes of the record, or what the reader says of it.
  std::string read(std::string_view file_bytes, std::size_t bytes,
                   surplus rest = surplus::passed_over) const {
    const std::string path = folder_.path("in");
    tests::write_file(path, file_bytes);
    std::string record(bytes, '?');
    const tests::observed seen = tests::observe([&] {
      const auto file = open_stream(path, direction::reading);
      byte_source source(file.get(), path);
      record_source(source).read(record.data(), static_cast<std::int64_t>(bytes), rest);
      if (source.bytes_left() != 0) record += " and more";
    });
    return seen.stop ? seen.stop->substr(path.size()) : record;
  }

  tests::temporary_folder folder_;
};

TEST_F(Records, StandBetweenTheirLengths) {
  EXPECT_EQ(written("abcde", 0), length(5) + "abcde" + length(5));
  EXPECT_EQ(written("", 0), length(0) + length(0));
}

TEST_F(Records, AreSplitWhenTheyAreTooLong) {
  EXPECT_EQ(written("abcde", 5), length(5) + "abcde" + length(5));
  EXPECT_EQ(written("abcde", 4), length(-4) + "abcd" + length(4) + length(1) + "e" + length(-1));
  EXPECT_EQ(written("abcde", 2), length(-2) + "ab" + length(2) + length(-2) + "cd" + length(-2) +
                                     length(1) + "e" + length(-1));
  EXPECT_EQ(written("abcd", 2), length(-2) + "ab" + length(2) + length(2) + "cd" + length(-2));
}

TEST_F(Records, AreReadWhole) {
  EXPECT_EQ(read(length(5) + "abcde" + length(5), 5), "abcde");
  EXPECT_EQ(read(length(0) + length(0), 0), "");
  for (std::int32_t size = 1; size <= 6; ++size)
    EXPECT_EQ(read(written("abcde", size), 5), "abcde");
}

TEST_F(Records, LendTheirLeadingItems) {
  EXPECT_EQ(read(length(5) + "abcde" + length(5), 2), "ab");
  for (std::int32_t size = 1; size <= 6; ++size)
    for (std::size_t bytes = 0; bytes <= 5; ++bytes)
      EXPECT_EQ(read(written("abcde", size), bytes), std::string("abcde").substr(0, bytes));
}

TEST_F(Records, AreRefusedWhenTheyHoldLess) {
  EXPECT_EQ(read(length(3) + "abc" + length(3), 4), ": record 1: expected 4 bytes, found 3");
  EXPECT_EQ(read(written("abc", 2), 4), ": record 1: expected 4 bytes, found 3");
}

TEST_F(Records, AreRefusedWhenTheyHoldMoreThanAStrictReaderWants) {
  EXPECT_EQ(read(length(3) + "abc" + length(3), 2, surplus::refused),
            ": record 1: expected 2 bytes, found 3");
  EXPECT_EQ(read(written("abc", 2), 2, surplus::refused), ": record 1: expected 2 bytes, found 3");
}

TEST_F(Records, AreRefusedWhenTheirLengthsDisagree) {
  EXPECT_EQ(read(length(3) + "abc" + length(4), 3),
            ": record 1: expected the length 3 after it, found 4");
  EXPECT_EQ(read(length(3) + "abc" + length(-3), 3),
            ": record 1: expected the length 3 after it, found -3");
  EXPECT_EQ(read(length(-2) + "ab" + length(2) + length(1) + "c" + length(1), 3),
            ": record 1: expected the length -1 after it, found 1");
}

TEST_F(Records, AreRefusedWhenTheFileEndsInThem) {
  const std::string whole = length(-2) + "ab" + length(2) + length(1) + "c" + length(-1);
  for (std::size_t bytes = 0; bytes < whole.size(); ++bytes)
    EXPECT_EQ(read(whole.substr(0, bytes), 3),
              ": record 1: expected a whole record, found the end of the file")
        << bytes;
}

TEST_F(Records, MayClaimToBeEnormous) {
  for (const std::int32_t claim :
       {std::numeric_limits<std::int32_t>::max(), std::numeric_limits<std::int32_t>::min()})
    EXPECT_EQ(read(length(claim) + "abcdefgh", 3),
              ": record 1: expected a whole record, found the end of the file");
}

TEST_F(Records, InTheOtherByteOrderAreCalledSo) {
  EXPECT_EQ(read(length(0x03000000) + "abc" + length(0x03000000), 3),
            ": record 1: expected 3 bytes, found them in the other byte order");
}

// 65536 bytes, of which 256 are wanted: in the other order the length of one is that of the other.
TEST_F(Records, BehindTheFirstMayBeOfAnyLength) {
  const std::string path = folder_.path("in");
  tests::write_file(path, length(1) + "a" + length(1) + length(0x10000) +
                              std::string(0x10000, 'b') + length(0x10000));
  const auto file = open_stream(path, direction::reading);
  byte_source source(file.get(), path);
  record_source records(source);
  std::string first(1, '?');
  std::string second(0x100, '?');
  records.read(first.data(), 1, surplus::passed_over);
  records.read(second.data(), 0x100, surplus::passed_over);
  EXPECT_EQ(first, "a");
  EXPECT_EQ(second, std::string(0x100, 'b'));
}

}  // namespace
