// SPDX-License-Identifier: MIT
#include "command.hpp"
#include "console.hpp"
#include "failure.hpp"
#include "files.hpp"
#include "replacement.hpp"
#include "structure.hpp"

#include <csr_matrix_mod/csr_matrix_mod.hpp>

#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <fstream>
#include <memory>
#include <string_view>
#include <vector>

namespace csrmat {

using namespace csr_matrix_mod;

namespace {

struct application {
  std::string matrix;
  std::string x;
  std::string y;
};

constexpr std::string_view blanks = " \t\r";

double number(std::string_view word, const std::string& place) {
  if (word.size() > 1 && word[0] == '+' && word[1] != '-') word.remove_prefix(1);
  double value = 0.0;
  const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
  if (error == std::errc::result_out_of_range)
    throw failure(place + ": '" + std::string(word) + "' does not fit a double");
  if (error != std::errc() || end != word.data() + word.size())
    throw failure(place + ": expected a number, not '" + std::string(word.substr(0, 40)) + "'");
  return value;
}

// Numbers between blanks and ends of lines, no more than `length` of them.
std::vector<double> read_vector(const std::string& path, std::int32_t length) {
  require_file(path);
  std::ifstream file(path);
  std::vector<double> elements;
  std::int64_t line_number = 0;
  for (std::string line; std::getline(file, line);) {
    const std::string place = path + ", line " + std::to_string(++line_number);
    const std::string_view text = line;
    for (std::size_t k = text.find_first_not_of(blanks); k != text.npos;
         k = text.find_first_not_of(blanks, k)) {
      const std::size_t end = std::min(text.find_first_of(blanks, k), text.size());
      elements.push_back(number(text.substr(k, end - k), place));
      k = end;
    }
  }
  if (static_cast<std::int64_t>(elements.size()) != length)
    throw failure(path + ": expected " + std::to_string(length) +
                  " numbers, one for each column of the matrix, not " +
                  std::to_string(elements.size()));
  return elements;
}

// One element a line, in the fewest digits that read back as the same number.
void print_vector(const std::vector<double>& elements, std::FILE* stream) {
  std::array<char, 32> text{};
  for (const double element : elements) {
    char* const end = std::to_chars(text.data(), text.data() + text.size(), element).ptr;
    *end = '\n';
    std::fwrite(text.data(), 1, static_cast<std::size_t>(end + 1 - text.data()), stream);
  }
}

void write_vector(const std::vector<double>& elements, const std::string& path) {
  replacement file(path);
  std::FILE* const stream = std::fopen(file.path().c_str(), "w");
  if (stream == nullptr) throw failure(path + ": cannot be written: " + std::strerror(errno));
  print_vector(elements, stream);
  const bool complete = std::ferror(stream) == 0;
  if (std::fclose(stream) != 0 || !complete)
    throw failure(path + ": cannot be written: " + std::strerror(errno));
  file.commit();
}

void apply(const application& what) {
  const csr_matrix mat = with_values(read_matrix(what.matrix));
  const std::vector<double> x = read_vector(what.x, mat.m);
  std::vector<double> y(static_cast<std::size_t>(mat.n));
  csr_matrix_multiply_rvector(mat, x, y);
  if (what.y.empty())
    print_vector(y, results());
  else
    write_vector(y, what.y);
}

}  // namespace

void declare_apply(CLI::App& command) {
  const auto what = std::make_shared<application>();
  command.add_option("A", what->matrix, "The matrix; one that is structure only counts as ones")
      ->required();
  command.add_option("X", what->x, "Text file with a number for each column of A")->required();
  command.add_option("OUT", what->y, "The file to write; else standard output");
  command.callback([what] { apply(*what); });
}

}  // namespace csrmat
