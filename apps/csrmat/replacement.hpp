// SPDX-License-Identifier: MIT
// A file that appears under its name when it is complete, or not at all.
#pragma once

#include "unfinished_file.hpp"

#include <optional>
#include <string>

namespace csrmat {

// While this lives, the file is written beside its target, which keeps its old contents until
// `commit`. A target that is no regular file (a device, a pipe), or an open one that has no name
// any more, is written directly.
class replacement {
 public:
  explicit replacement(const std::string& target);

  [[nodiscard]] const std::string& path() const { return beside_ ? beside_->path() : target_; }
  void commit();

 private:
  std::string asked_;   // as errors name it
  std::string target_;  // where it leads
  std::optional<unfinished_file> beside_;
};

}  // namespace csrmat
