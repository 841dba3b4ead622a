// SPDX-License-Identifier: MIT
#include "replacement.hpp"

#include "console.hpp"
#include "failure.hpp"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>

namespace csrmat {

namespace {

[[noreturn]] void refuse(const std::string& target) {
  throw failure(target + ": cannot be written: " + std::strerror(errno));
}

// The file that a chain of links leads to; a link to nothing stays as it is.
std::string followed(const std::string& path) {
  std::error_code error;
  const auto real = std::filesystem::canonical(path, error);
  return error ? path : real.string();
}

mode_t usual_mode() {
  const mode_t mask = umask(0);
  umask(mask);
  return static_cast<mode_t>(0666) & ~mask;
}

}  // namespace

replacement::replacement(const std::string& target) : target_(target), path_(target) {
  if (const std::string own = standard_output_as_file(target); !own.empty()) {
    path_ = own;
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

  target_ = followed(target);
  path_ = target_ + ".XXXXXX";
  const int file = mkstemp(path_.data());
  if (file < 0) refuse(target);
  beside_ = true;
  fchmod(file, exists ? present.st_mode & static_cast<mode_t>(07777) : usual_mode());
  close(file);
}

replacement::~replacement() {
  if (beside_) unlink(path_.c_str());
}

void replacement::commit() {
  if (!beside_) return;
  if (std::rename(path_.c_str(), target_.c_str()) != 0) refuse(target_);
  beside_ = false;
}

}  // namespace csrmat
