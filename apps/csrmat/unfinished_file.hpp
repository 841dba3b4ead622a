// SPDX-License-Identifier: MIT
// A file that nobody is to find half written.
#pragma once

#include <sys/types.h>

#include <string>

namespace csrmat {

// A file of that name goes when this does, unless it has become another, and when one of the
// signals below ends the program. What is made last goes first.
class unfinished_file {
 public:
  explicit unfinished_file(std::string path);
  unfinished_file(const unfinished_file&) = delete;
  unfinished_file& operator=(const unfinished_file&) = delete;
  ~unfinished_file();

  [[nodiscard]] const std::string& path() const { return path_; }

  // Makes an empty file, the XXXXXX at the end of the name becoming what nobody else has; or gives
  // the file its name. False, and errno, when the system does not.
  [[nodiscard]] bool create(mode_t mode);
  [[nodiscard]] bool become(const std::string& target);

  static void remove_all() noexcept;

 private:
  std::string path_;
  const unfinished_file* before_;
};

// From now on a signal that asks the program to end, or tells it that its reader has gone or its
// time is up, takes unfinished files with it.
void remove_unfinished_files_on_signals();

}  // namespace csrmat
