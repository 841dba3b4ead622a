// SPDX-License-Identifier: MIT
#include "data_files.hpp"

#include "../support/files.hpp"

#include <csr_matrix_mod/exchange.hpp>

#include <algorithm>
#include <cctype>
#include <stdexcept>

namespace tests {

namespace fs = std::filesystem;

std::vector<fs::path> data_files(const std::string& folder) {
  std::vector<fs::path> files;
  for (const auto& found : fs::directory_iterator(fs::path(TEST_DATA) / folder))
    if (found.path().extension() != ".expected") files.push_back(found.path());
  std::sort(files.begin(), files.end());
  return files;
}

void read_data_file(const fs::path& file, csr_matrix_mod::csr_matrix& mat) {
  if (file.extension() == ".mtx")
    csr_matrix_read_market(file.string(), mat);
  else if (file.extension() == ".csr")
    csr_matrix_load(file.string(), mat);
  else if (file.extension() == ".csrb")
    csr_matrix_load(file.string(), mat, "unformatted");
  else
    throw std::runtime_error("nobody knows how to read " + file.string());
}

std::string expectation_of(const fs::path& file) {
  return read_file(fs::path(file).replace_extension(".expected").string());
}

std::string test_name_of(const fs::path& file) {
  std::string name = file.stem().string();
  std::replace_if(
      name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
  return name;
}

}  // namespace tests
