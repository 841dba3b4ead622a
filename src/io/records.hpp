// SPDX-License-Identifier: MIT
// Sequential unformatted records: a 4-byte length before and after each, in the byte order of this
// machine. A record longer than a length can tell is split into subrecords: the length before a
// subrecord is negative when another one follows, the length after it when one came before.
#pragma once

#include "stream.hpp"

#include <cstdint>
#include <string_view>

namespace csr_matrix_mod {

// The most that one subrecord holds.
inline constexpr std::int32_t usual_subrecord_size = 2147483639;

// The size at which records are split from now on; 0 restores the usual one. Tests set it small.
void set_subrecord_size(std::int32_t bytes) noexcept;

// What becomes of a record that holds more than is wanted of it.
enum class surplus { passed_over, refused };

class record_source {
 public:
  explicit record_source(byte_source& file) : file_(file) {}

  // The first `bytes` bytes of the next record.
  // Stops with "NAME: record N: ..." when it holds less, when its lengths disagree, when the file
  // ends in it.
  void read(void* to, std::int64_t bytes, surplus rest);

  // Number of the record given last, counted from 1.
  [[nodiscard]] std::int64_t number() const noexcept { return number_; }

  // Stops with "NAME: record N: WHAT" at the record given last.
  [[noreturn]] void refuse(std::string_view what) const;

 private:
  struct subrecord {
    std::int64_t length;
    bool continued;  // another one follows
  };
  [[nodiscard]] subrecord begin_subrecord(std::int64_t wanted);
  void end_subrecord(std::int64_t expected);
  [[nodiscard]] std::int32_t marker();
  void require(bool there) const;

  byte_source& file_;
  std::int64_t number_ = 0;
};

void write_record(byte_sink& file, const void* from, std::int64_t bytes);

}  // namespace csr_matrix_mod
