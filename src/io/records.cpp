// SPDX-License-Identifier: MIT
#include "records.hpp"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <string>

namespace csr_matrix_mod {

namespace {

std::atomic<std::int32_t> current_subrecord_size{usual_subrecord_size};

std::int32_t other_byte_order(std::int32_t value) {
  const auto bits = static_cast<std::uint32_t>(value);
  return static_cast<std::int32_t>((bits >> 24) | ((bits >> 8) & 0xff00U) |
                                   ((bits & 0xff00U) << 8) | (bits << 24));
}

std::int64_t size_of(std::int32_t marker) { return std::abs(std::int64_t{marker}); }

std::string bytes_text(std::int64_t bytes) { return std::to_string(bytes) + " bytes"; }

void write_marker(byte_sink& file, std::int64_t length, bool negative) {
  const auto marker = static_cast<std::int32_t>(negative ? -length : length);
  file.write(&marker, sizeof marker);
}

}  // namespace

void set_subrecord_size(std::int32_t bytes) noexcept {
  current_subrecord_size.store(bytes > 0 ? bytes : usual_subrecord_size);
}

void record_source::refuse(std::string_view what) const {
  file_.refuse(std::string("record ").append(std::to_string(number_)).append(": ").append(what));
}

void record_source::require(bool there) const {
  if (!there) refuse("expected a whole record, found the end of the file");
}

std::int32_t record_source::marker() {
  std::int32_t value = 0;
  require(file_.read(&value, sizeof value) == sizeof value);
  return value;
}

// The first record tells the byte order. The length of a later one, read in the other order, may
// happen to be what is wanted: records may be longer than that.
record_source::subrecord record_source::begin_subrecord(std::int64_t wanted) {
  const std::int32_t before = marker();
  if (number_ == 1 && size_of(before) != wanted && size_of(other_byte_order(before)) == wanted)
    refuse("expected " + bytes_text(wanted) + ", found them in the other byte order");
  return {size_of(before), before < 0};
}

void record_source::end_subrecord(std::int64_t expected) {
  const std::int32_t after = marker();
  if (after != expected)
    refuse("expected the length " + std::to_string(expected) + " after it, found " +
           std::to_string(after));
}

void record_source::read(void* to, std::int64_t bytes, surplus rest) {
  ++number_;
  char* const first = static_cast<char*>(to);
  std::int64_t got = 0;
  std::int64_t held = 0;
  for (bool more = true; more;) {
    const subrecord piece = begin_subrecord(bytes - got);
    const std::int64_t taken = std::min(piece.length, bytes - got);
    const auto count = static_cast<std::size_t>(taken);
    require(file_.read(first + got, count) == count && file_.skip(piece.length - taken));
    end_subrecord(held == 0 ? piece.length : -piece.length);
    got += taken;
    held += piece.length;
    more = piece.continued;
  }
  if (got < bytes || (rest == surplus::refused && held > bytes))
    refuse("expected " + bytes_text(bytes) + ", found " + std::to_string(held));
}

void write_record(byte_sink& file, const void* from, std::int64_t bytes) {
  const char* const first = static_cast<const char*>(from);
  const std::int64_t most = current_subrecord_size.load();
  std::int64_t written = 0;
  do {
    const std::int64_t length = std::min(bytes - written, most);
    write_marker(file, length, written + length < bytes);
    file.write(first + written, static_cast<std::size_t>(length));
    write_marker(file, length, written > 0);
    written += length;
  } while (written < bytes);
}

}  // namespace csr_matrix_mod
