// SPDX-License-Identifier: MIT
#include "replacement.hpp"

#include "console.hpp"
#include "failure.hpp"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <filesystem>

namespace csrmat {

namespace {

[[noreturn]] void refuse(const std::string& target) {
  throw failure(target + ": cannot be written: " + std::strerror(errno));
}

// The file that a chain of links leads to, whether it is there or not.
std::filesystem::path followed(std::filesystem::path path) {
  constexpr int most_links = 40;
  std::error_code error;
  for (int link = 0; link < most_links && std::filesystem::is_symlink(path, error); ++link)
    path = path.parent_path() / std::filesystem::read_symlink(path, error);
  return path;
}

// A name beside the file, for `mkstemp`: names have 255 bytes at most.
std::string name_beside(const std::filesystem::path& file) {
  constexpr std::size_t most = 200;
  const std::string name = file.filename().string().substr(0, most);
  return (file.parent_path() / (name + ".XXXXXX")).string();
}

bool are_same(const struct stat& file, const std::filesystem::path& path) {
  struct stat other {};
  return stat(path.c_str(), &other) == 0 && other.st_dev == file.st_dev &&
         other.st_ino == file.st_ino;
}

mode_t usual_mode() {
  const mode_t mask = umask(0);
  umask(mask);
  return static_cast<mode_t>(0666) & ~mask;
}

}  // namespace

replacement::replacement(const std::string& target) : asked_(target), target_(target) {
  if (const std::string own = standard_output_as_file(target); !own.empty()) {
    target_ = own;
    return;
  }
  struct stat present {};
  const bool exists = stat(target.c_str(), &present) == 0;
  if (!exists && errno != ENOENT) refuse(target);
  if (exists && access(target.c_str(), W_OK) != 0) refuse(target);
  if (exists && S_ISDIR(present.st_mode)) {
    errno = EISDIR;
    refuse(target);
  }
  if (exists && !S_ISREG(present.st_mode)) return;

  const std::filesystem::path file = followed(target);
  if (exists && !are_same(present, file)) return;  // an open file that has no name any more
  target_ = file.string();
  beside_.emplace(name_beside(file));
  const mode_t mode = exists ? present.st_mode & static_cast<mode_t>(07777) : usual_mode();
  if (!beside_->create(mode)) refuse(target);
}

void replacement::commit() {
  if (beside_ && !beside_->become(target_)) refuse(asked_);
}

}  // namespace csrmat
