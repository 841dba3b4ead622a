// SPDX-License-Identifier: MIT
// An open file and the two ways bytes pass through it. A source or sink holds the large buffer, for
// the length of one call; the stream itself holds none, so nothing is ever left unwritten in it.
#pragma once

#include "../support/scratch.hpp"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace csr_matrix_mod {

enum class direction { reading, writing };

struct stream_closer {
  void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};
using stream = std::unique_ptr<std::FILE, stream_closer>;

// Opens `name`, taken as given; a file to be written is emptied. Stops with "NAME: cannot open for
// reading: REASON" (or writing); a directory is refused too.
[[nodiscard]] stream open_stream(std::string_view name, direction to);

// Closes a file that was written. Some file systems say only now that the disk is full: stops with
// "NAME: cannot write: REASON".
void close_written(stream file, std::string_view name);

// The size of the buffers that are made from now on. Tests set 1 so that every seam is crossed.
void set_buffer_size(std::size_t bytes) noexcept;
[[nodiscard]] std::size_t buffer_size() noexcept;

// Bytes or lines of a file from its present position on.
class byte_source {
 public:
  byte_source(std::FILE* file, std::string_view name);

  // The next line without its end (a line feed, or carriage return and line feed); false at the end
  // of the file. Only the first `kept_of_a_line` bytes of a longer line are given, behind those at
  // its begin that are `passed_over`. The view holds until the next call.
  [[nodiscard]] bool next_line(std::string_view& line, std::string_view passed_over = {});
  static constexpr std::size_t kept_of_a_line = 1024;

  // The bytes from the next line on that are in the buffer, and the way past the first `count`
  // lines of them, all of `bytes` bytes: fields of fixed columns are read where they are, without a
  // search for each line's end.
  [[nodiscard]] std::string_view held() const noexcept {
    return {buffer_.data() + next_, end_ - next_};
  }
  void pass_lines(std::int64_t count, std::size_t bytes) noexcept {
    if (count == 0) return;
    next_ += static_cast<std::size_t>(count) * bytes;
    line_number_ += count;
    line_unfinished_ = false;
  }

  // Number of the line given last, counted from 1, and whether the file ended before its end did.
  [[nodiscard]] std::int64_t line_number() const noexcept { return line_number_; }
  [[nodiscard]] bool line_unfinished() const noexcept { return line_unfinished_; }

  // Up to `bytes` bytes; fewer only at the end of the file.
  [[nodiscard]] std::size_t read(void* to, std::size_t bytes);

  // Passes over `bytes` bytes; false if the file ends before.
  [[nodiscard]] bool skip(std::int64_t bytes);

  // How many bytes are left. What is not a regular file (a pipe) is read to its end to know.
  [[nodiscard]] std::int64_t bytes_left();

  [[nodiscard]] const std::string& name() const noexcept { return name_; }

  // Stops with "NAME: WHAT", or "NAME: PLACE: expected EXPECTED, found FOUND".
  [[noreturn]] void refuse(std::string_view what) const;
  [[noreturn]] void refuse_item(std::string_view place, std::string_view expected,
                                std::string_view found) const;

 private:
  [[nodiscard]] std::size_t capacity() const noexcept {
    return static_cast<std::size_t>(buffer_.length());
  }
  [[nodiscard]] bool refill();
  [[nodiscard]] std::size_t read_file(void* to, std::size_t bytes);
  [[nodiscard]] std::optional<std::int64_t> file_bytes_left();
  void enlarge_buffer();

  std::FILE* file_;
  std::string name_;
  scratch<char> buffer_;
  std::size_t next_ = 0;  // bytes next_ to end_ of the buffer are not given out yet
  std::size_t end_ = 0;
  std::string kept_;  // a line across a seam
  std::int64_t line_number_ = 0;
  bool line_unfinished_ = false;
};

// Bytes to a file. They are out for certain only after `flush`, which every writer ends with; bytes
// left when a sink goes are dropped, and nobody claims otherwise.
class byte_sink {
 public:
  byte_sink(std::FILE* file, std::string_view name);

  // Room for up to `bytes` bytes in one piece, of which `advance` says how many were written.
  [[nodiscard]] char* room(std::size_t bytes) {
    if (space() < bytes) make_room(bytes);
    return buffer_.data() + used_;
  }
  void advance(std::size_t bytes) noexcept { used_ += bytes; }

  // The bytes for which there is room already.
  [[nodiscard]] std::size_t space() const noexcept { return capacity() - used_; }

  void write(const void* from, std::size_t bytes);
  void write(std::string_view text) { write(text.data(), text.size()); }

  // Stops with "NAME: cannot write: REASON".
  void flush();

 private:
  void make_room(std::size_t bytes);
  void write_file(const void* from, std::size_t bytes);
  [[nodiscard]] std::size_t capacity() const noexcept {
    return static_cast<std::size_t>(buffer_.length());
  }

  std::FILE* file_;
  std::string name_;
  scratch<char> buffer_;
  std::size_t used_ = 0;
};

}  // namespace csr_matrix_mod
