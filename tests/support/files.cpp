// SPDX-License-Identifier: MIT
#include "files.hpp"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace tests {

temporary_folder::temporary_folder() {
  folder_ = (std::filesystem::temp_directory_path() / "csr_matrix_mod.XXXXXX").string();
  if (mkdtemp(folder_.data()) == nullptr) throw std::runtime_error("cannot make " + folder_);
}

temporary_folder::~temporary_folder() {
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

std::string temporary_folder::path(std::string_view name) const {
  return folder_ + "/" + std::string(name);
}

std::string read_file(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("cannot read " + path);
  return {std::istreambuf_iterator<char>(file), {}};
}

void write_file(const std::string& path, std::string_view bytes) {
  std::ofstream file(path, std::ios::binary);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  file.close();
  if (!file) throw std::runtime_error("cannot write " + path);
}

}  // namespace tests
