// SPDX-License-Identifier: MIT
// Runs a target on every file given, and on every file of the folders given.
#include "target.hpp"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <vector>

namespace {

namespace fs = std::filesystem;

std::vector<fs::path> files_in(const fs::path& given) {
  if (!fs::is_directory(given)) return {given};
  std::vector<fs::path> files;
  for (const fs::directory_entry& each : fs::directory_iterator(given))
    if (each.is_regular_file()) files.push_back(each.path());
  std::sort(files.begin(), files.end());
  return files;
}

std::vector<std::uint8_t> contents_of(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) throw std::runtime_error(file.string() + ": cannot be read");
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

}  // namespace

// The name of each file goes before it, so that the last one tells where a claim failed.
int main(int argc, char** argv) {
  int count = 0;
  for (int k = 1; k < argc; ++k)
    for (const fs::path& file : files_in(argv[k])) {
      std::fprintf(stderr, "%s\n", file.c_str());
      fuzz::run(contents_of(file));
      ++count;
    }
  std::fprintf(stderr, "%d files, every claim holds\n", count);
  return count > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
