// SPDX-License-Identifier: MIT
#include "stream.hpp"

#include "file_error.hpp"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <filesystem>
#include <utility>

namespace csr_matrix_mod {

namespace {

// Large enough that a call to the system is rare, small enough to stay in the cache.
constexpr std::size_t usual_buffer_size = std::size_t{1} << 18;
std::atomic<std::size_t> current_buffer_size{usual_buffer_size};

std::string_view without_return(std::string_view line) {
  if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  return line;
}

void make_buffer(scratch<char>& buffer, std::size_t bytes, std::string_view name,
                 std::string_view failure) {
  if (!buffer.allocate(static_cast<std::int64_t>(bytes), contents::undefined))
    stop_at_file(name, failure, ENOMEM);
}

}  // namespace

void set_buffer_size(std::size_t bytes) noexcept {
  current_buffer_size.store(bytes != 0 ? bytes : usual_buffer_size);
}

std::size_t buffer_size() noexcept { return current_buffer_size.load(); }

stream open_stream(std::string_view name, direction to) {
  const bool reads = to == direction::reading;
  const std::string_view failure = reads ? "cannot open for reading" : "cannot open for writing";
  const std::string path(name);
  std::error_code ignored;
  if (std::filesystem::is_directory(path, ignored)) stop_at_file(name, failure, EISDIR);
  errno = 0;
  stream file(std::fopen(path.c_str(), reads ? "rb" : "wb"));
  if (!file) stop_at_file(name, failure, errno);
  std::setvbuf(file.get(), nullptr, _IONBF, 0);
  return file;
}

void close_written(stream file, std::string_view name) {
  errno = 0;
  if (std::fclose(file.release()) != 0) stop_at_file(name, "cannot write", errno);
}

byte_source::byte_source(std::FILE* file, std::string_view name) : file_(file), name_(name) {
  make_buffer(buffer_, buffer_size(), name_, "cannot read");
}

std::size_t byte_source::read_file(void* to, std::size_t bytes) {
  errno = 0;
  const std::size_t got = std::fread(to, 1, bytes, file_);
  if (got < bytes && std::ferror(file_) != 0) stop_at_file(name_, "cannot read", errno);
  return got;
}

bool byte_source::refill() {
  next_ = 0;
  end_ = read_file(buffer_.data(), capacity());
  return end_ != 0;
}

bool byte_source::next_line(std::string_view& line, std::string_view passed_over) {
  kept_.clear();
  bool begun = false;
  while (next_ != end_ || refill()) {
    begun = true;
    const char* const first = buffer_.data() + next_;
    const std::size_t held = end_ - next_;
    const void* const feed = std::memchr(first, '\n', held);
    const std::size_t length =
        feed != nullptr ? static_cast<std::size_t>(static_cast<const char*>(feed) - first) : held;
    std::string_view piece(first, length);
    if (kept_.empty()) piece.remove_prefix(std::min(piece.find_first_not_of(passed_over), length));
    piece = piece.substr(0, kept_of_a_line - kept_.size());
    next_ += length;
    if (feed != nullptr) {
      ++next_;
      ++line_number_;
      line_unfinished_ = false;
      line = without_return(kept_.empty() ? piece : std::string_view(kept_.append(piece)));
      return true;
    }
    kept_.append(piece);
  }
  if (!begun) return false;
  ++line_number_;
  line_unfinished_ = true;
  line = without_return(kept_);
  return true;
}

std::size_t byte_source::read(void* to, std::size_t bytes) {
  char* const first = static_cast<char*>(to);
  std::size_t got = 0;
  while (got < bytes) {
    if (next_ == end_) {
      // What is larger than the buffer goes past it.
      if (bytes - got >= capacity()) return got + read_file(first + got, bytes - got);
      if (!refill()) return got;
    }
    const std::size_t piece = std::min(bytes - got, end_ - next_);
    std::memcpy(first + got, buffer_.data() + next_, piece);
    next_ += piece;
    got += piece;
  }
  return got;
}

bool byte_source::skip(std::int64_t bytes) {
  while (bytes > 0) {
    if (next_ == end_ && !refill()) return false;
    const auto piece = std::min(bytes, static_cast<std::int64_t>(end_ - next_));
    next_ += static_cast<std::size_t>(piece);
    bytes -= piece;
  }
  return true;
}

// The bytes from the present position of a regular file to its end; nothing for a pipe or a device.
std::optional<std::int64_t> byte_source::file_bytes_left() {
  std::error_code unknown;
  if (!std::filesystem::is_regular_file(name_, unknown)) return {};
  const long here = std::ftell(file_);
  if (here < 0 || std::fseek(file_, 0, SEEK_END) != 0) return {};
  const long end = std::ftell(file_);
  if (end < 0 || std::fseek(file_, here, SEEK_SET) != 0) stop_at_file(name_, "cannot read", errno);
  return std::max(end - here, 0L);
}

void byte_source::enlarge_buffer() {
  scratch<char> larger;
  make_buffer(larger, std::max(2 * capacity(), usual_buffer_size), name_, "cannot read");
  std::memcpy(larger.data(), buffer_.data() + next_, end_ - next_);
  end_ -= next_;
  next_ = 0;
  buffer_ = std::move(larger);
}

std::int64_t byte_source::bytes_left() {
  if (const auto in_file = file_bytes_left())
    return *in_file + static_cast<std::int64_t>(end_ - next_);
  for (;;) {
    if (end_ == capacity()) enlarge_buffer();
    const std::size_t got = read_file(buffer_.data() + end_, capacity() - end_);
    if (got == 0) return static_cast<std::int64_t>(end_ - next_);
    end_ += got;
  }
}

void byte_source::refuse(std::string_view what) const { stop_at_file(name_, what); }

void byte_source::refuse_item(std::string_view place, std::string_view expected,
                              std::string_view found) const {
  refuse(
      std::string(place).append(": expected ").append(expected).append(", found ").append(found));
}

byte_sink::byte_sink(std::FILE* file, std::string_view name) : file_(file), name_(name) {
  make_buffer(buffer_, buffer_size(), name_, "cannot write");
}

void byte_sink::write_file(const void* from, std::size_t bytes) {
  errno = 0;
  if (std::fwrite(from, 1, bytes, file_) != bytes) stop_at_file(name_, "cannot write", errno);
}

void byte_sink::make_room(std::size_t bytes) {
  flush();
  if (capacity() < bytes) make_buffer(buffer_, bytes, name_, "cannot write");
}

void byte_sink::write(const void* from, std::size_t bytes) {
  if (bytes == 0) return;
  if (bytes >= capacity()) {
    flush();
    write_file(from, bytes);
    return;
  }
  std::memcpy(room(bytes), from, bytes);
  advance(bytes);
}

void byte_sink::flush() {
  const std::size_t bytes = used_;
  used_ = 0;
  if (bytes != 0) write_file(buffer_.data(), bytes);
}

}  // namespace csr_matrix_mod
