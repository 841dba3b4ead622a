// SPDX-License-Identifier: MIT
// Runs every routine on a gallery of matrices and says in one number what came out, to the last
// bit.
//
//   same_bits FOLDER [EXPECTED]   prints a digest a routine and one of all; leaves in FOLDER, which
//                                 is to be empty, the files that were written. Fails if the file
//                                 EXPECTED holds anything else.
//   same_bits --load FILE         loads a binary matrix file, and stops as the library does
#include "report.hpp"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string>

namespace {

constexpr const char* lines_name = "lines.txt";

std::string contents_of(const std::string& name) {
  std::ifstream file(name, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// All routines, with what they print in a file of its own.
same_bits::report run_all() {
  same_bits::report results;
  std::fflush(stdout);
  const int standard_output = dup(STDOUT_FILENO);
  if (std::freopen(lines_name, "w", stdout) == nullptr) throw std::runtime_error("no lines.txt");
  same_bits::support_routines(results);
  same_bits::record_routines(results);
  same_bits::ordering_routines(results);
  same_bits::convert_routines(results);
  same_bits::product_routines(results);
  same_bits::file_routines(results);
  std::fflush(stdout);
  dup2(standard_output, STDOUT_FILENO);
  close(standard_output);
  results["lines that were printed"].add(std::string_view(contents_of(lines_name)));
  return results;
}

std::string text_of(const same_bits::report& results) {
  std::ostringstream text;
  const auto line = [&text](const std::string& what, std::uint64_t value) {
    text << std::left << std::setw(40) << what << std::right << std::hex << std::setw(16)
         << std::setfill('0') << value << std::setfill(' ') << std::dec << '\n';
  };
  same_bits::digest all;
  for (const auto& [what, result] : results) {
    line(what, result.value());
    all.add(result.value());
  }
  line("ALL", all.value());
  return text.str();
}

int run(const std::string& folder, const char* expected_name) {
  const std::string expected = expected_name == nullptr ? "" : contents_of(expected_name);
  std::filesystem::create_directories(folder);
  std::filesystem::current_path(folder);
  const std::string found = text_of(run_all());
  std::cout << found;
  if (expected_name == nullptr || found == expected) return EXIT_SUCCESS;
  std::cerr << "expected:\n" << expected;
  return EXIT_FAILURE;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::cerr << "usage: same_bits FOLDER [EXPECTED] | same_bits --load FILE\n";
    return EXIT_FAILURE;
  }
  if (argv[1] == std::string("--load") && argc == 3) {
    csr_matrix_mod::csr_matrix mat;
    csr_matrix_load(argv[2], mat, "unformatted");
    return EXIT_SUCCESS;
  }
  return run(argv[1], argc > 2 ? argv[2] : nullptr);
}
