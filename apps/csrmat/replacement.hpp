// SPDX-License-Identifier: MIT
// A file that appears under its name when it is complete, or not at all.
#pragma once

#include <string>

namespace csrmat {

// While this lives, the file is written beside its target, which keeps its old contents until
// `commit`. A target that is no regular file (a device, a pipe) is written directly.
class replacement {
 public:
  explicit replacement(const std::string& target);
  replacement(const replacement&) = delete;
  replacement& operator=(const replacement&) = delete;
  ~replacement();

  [[nodiscard]] const std::string& path() const { return path_; }
  void commit();

 private:
  std::string target_;
  std::string path_;
  bool beside_ = false;  // path_ is a sibling that goes away unless it is committed
};

}  // namespace csrmat
