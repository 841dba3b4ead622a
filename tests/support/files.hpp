// SPDX-License-Identifier: MIT
// Files as bytes, and a folder that goes when the test does.
#pragma once

#include <string>
#include <string_view>

namespace tests {

class temporary_folder {
 public:
  temporary_folder();
  temporary_folder(const temporary_folder&) = delete;
  temporary_folder& operator=(const temporary_folder&) = delete;
  ~temporary_folder();

  [[nodiscard]] std::string path(std::string_view name) const;

 private:
  std::string folder_;
};

std::string read_file(const std::string& path);
void write_file(const std::string& path, std::string_view bytes);

}  // namespace tests
