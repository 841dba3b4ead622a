// SPDX-License-Identifier: MIT
#include "command.hpp"
#include "console.hpp"
#include "files.hpp"
#include "limits.hpp"
#include "structure.hpp"

#include <csr_matrix_mod/csr_matrix_mod.hpp>

#include <algorithm>
#include <memory>
#include <new>

namespace csrmat {

using namespace csr_matrix_mod;

namespace {

void print(const char* property, const std::string& value) {
  std::fprintf(results(), "%-29s %s\n", property, value.c_str());
}

void print(const char* property, std::int64_t value) { print(property, std::to_string(value)); }

void print_row_lengths(const csr_matrix& mat) {
  std::int32_t longest = 0;
  std::int32_t shortest = mat.n == 0 ? 0 : csr_matrix_num_row_entries(mat, 1);
  for (std::int64_t i = 1; i <= mat.n; ++i) {
    const std::int32_t length = csr_matrix_num_row_entries(mat, static_cast<std::int32_t>(i));
    longest = std::max(longest, length);
    shortest = std::min(shortest, length);
  }
  print("longest row", longest);
  print("shortest row", shortest);
}

std::string place(std::int32_t i, std::int32_t j) {
  return "(" + std::to_string(i) + ", " + std::to_string(j) + ")";
}

std::string symmetry(const csr_matrix& mat) {
  if (mat.n != mat.m) return "no: not square";
  const auto unpaired = unpaired_entry(mat);
  if (!unpaired) return "yes";
  const auto [i, j] = *unpaired;
  return "no: " + place(i, j) + " without " + place(j, i);
}

// The test of the library has its own idea of the matter and says so in a line.
std::string library_symmetry(const csr_matrix& mat) {
  library_lines();  // about copies that were made here
  if (matrix_is_struct_symmetric(mat)) return "true";
  std::string line = library_lines();
  line.erase(0, line.find_first_not_of(' '));
  return "false: " + line.substr(0, line.find('\n'));
}

std::int32_t condensed_columns(const csr_matrix& mat) {
  csr_matrix pattern;  // condensation works in place, and takes each column of a row once
  csr_matrix_assign(pattern, pattern_of(mat));
  if (csr_matrix_num_nz(pattern) > 0) csr_matrix_clean(pattern);
  array_ref<std::int32_t> weights;
  if (!weights.allocate(mat.m)) throw std::bad_alloc();
  std::fill_n(weights.data(), mat.m, 1);
  csr_matrix_condense(pattern, weights);
  return pattern.m;
}

void info(const std::string& file) {
  const csr_matrix mat = read_matrix(file);
  require_memory_for_columns(mat.m, 7, file + ": condensing its columns");
  print("rows", mat.n);
  print("columns", mat.m);
  print("entries", csr_matrix_num_nz(mat));
  print_row_lengths(mat);
  print("kind", mat.type == matrix_real ? "values" : "structure only");
  print("well formed", "yes");  // else it was not read
  print("structurally symmetric", symmetry(mat));
  print("matrix_is_struct_symmetric", library_symmetry(mat));
  print("condensed columns", condensed_columns(mat));
  library_lines();  // about copies that were made here
}

}  // namespace

void declare_info(CLI::App& command) {
  const auto file = std::make_shared<std::string>();
  command.add_option("FILE", *file, "The matrix")->required();
  command.callback([file] { info(*file); });
}

}  // namespace csrmat
