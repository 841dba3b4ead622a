// SPDX-License-Identifier: MIT
#include "replacement.hpp"

#include "console.hpp"
#include "failure.hpp"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
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

replacement::replacement(const std::string& target) : target_(target) {
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

  target_ = followed(target);
  beside_.emplace(target_ + ".XXXXXX");
  const mode_t mode = exists ? present.st_mode & static_cast<mode_t>(07777) : usual_mode();
  if (!beside_->create(mode)) refuse(target);
}

void replacement::commit() {
  if (beside_ && !beside_->become(target_)) refuse(target_);
}

}  // namespace csrmat
