// SPDX-License-Identifier: MIT
// The files that a target reads and writes, thousands of times a second: TMPDIR had better be
// memory.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <span>
#include <string>

namespace fuzz {

using bytes = std::span<const std::uint8_t>;

// A folder of this process, gone at its end.
class scratch_folder {
 public:
  scratch_folder()
      : path_(std::filesystem::temp_directory_path() / ("fuzz." + std::to_string(getpid()))) {
    std::filesystem::create_directories(path_);
  }
  scratch_folder(const scratch_folder&) = delete;
  scratch_folder& operator=(const scratch_folder&) = delete;
  ~scratch_folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  [[nodiscard]] std::string path(const std::string& name) const { return path_ / name; }

 private:
  std::filesystem::path path_;
};

// One file whose bytes are replaced again and again; it stays open.
class scratch_file {
 public:
  explicit scratch_file(std::string path)
      : path_(std::move(path)),
        descriptor_(open(path_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)) {
    if (descriptor_ < 0) std::abort();
  }
  scratch_file(const scratch_file&) = delete;
  scratch_file& operator=(const scratch_file&) = delete;
  ~scratch_file() { close(descriptor_); }

  void fill(bytes contents) {
    const auto size = static_cast<off_t>(contents.size());
    if (pwrite(descriptor_, contents.data(), contents.size(), 0) != size ||
        ftruncate(descriptor_, size) != 0)
      std::abort();
  }

  [[nodiscard]] std::string contents() const {
    std::string text(static_cast<std::size_t>(lseek(descriptor_, 0, SEEK_END)), '\0');
    if (pread(descriptor_, text.data(), text.size(), 0) != static_cast<ssize_t>(text.size()))
      std::abort();
    return text;
  }

  [[nodiscard]] const std::string& path() const { return path_; }

 private:
  std::string path_;
  int descriptor_;
};

}  // namespace fuzz
