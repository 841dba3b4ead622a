// SPDX-License-Identifier: MIT
// Who may write where. Results go to standard output. The library writes its warnings there too, so
// its lines are held back: after a command has succeeded they go to standard error.
#pragma once

#include <cstdio>
#include <string>

namespace csrmat {

// One of these lives as long as the program.
class console {
 public:
  console();
  console(const console&) = delete;
  console& operator=(const console&) = delete;
  ~console();

  // Writes out what is pending. Throws when standard output does not take it.
  void finish();
};

// Where results go.
std::FILE* results();

// The lines of the library since the last call.
std::string library_lines();

// The name under which the file of standard output can be opened when `path` is that file, for
// instance /dev/stdout; otherwise empty.
std::string standard_output_as_file(const std::string& path);

}  // namespace csrmat
