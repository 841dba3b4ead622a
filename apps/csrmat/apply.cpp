// SPDX-License-Identifier: MIT
#include "../../src/support/quoted.hpp"
#include "../../src/support/read_number.hpp"
#include "command.hpp"
#include "console.hpp"
#include "failure.hpp"
#include "files.hpp"
#include "limits.hpp"
#include "replacement.hpp"
#include "structure.hpp"

#include <csr_matrix_mod/csr_matrix_mod.hpp>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <fstream>
#include <memory>
#include <utility>
#include <vector>

namespace csrmat {

using namespace csr_matrix_mod;

namespace {

struct application {
  std::string matrix;
  std::string x;
  std::string y;
};

// More digits than any double has.
constexpr std::size_t longest_word = 2000;

// The numbers between blanks and ends of lines of a file.
class vector_reader {
 public:
  vector_reader(const std::string& path, std::int32_t length) : path_(path), length_(length) {}

  std::vector<double> read() {
    require_file(path_);
    std::ifstream file(path_);
    std::array<char, 4096> block{};
    do {
      file.read(block.data(), block.size());
      std::for_each_n(block.data(), file.gcount(), [this](char c) { take(c); });
    } while (file);
    if (!file.eof()) throw failure(path_ + ": cannot be read: " + std::strerror(errno));
    end_word();
    if (std::cmp_less(elements_.size(), length_))
      throw failure(path_ + ": " + expected() + std::to_string(elements_.size()));
    return std::move(elements_);
  }

 private:
  void take(char c) {
    const bool ends_line = c == '\n';
    if (ends_line || c == ' ' || c == '\t' || c == '\r')
      end_word();
    else if (word_.push_back(c); word_.size() > longest_word)
      refuse("expected a number of at most " + std::to_string(longest_word) + " characters, not " +
             csr_matrix_mod::quoted(word_));
    if (ends_line) ++line_;
  }

  void end_word() {
    if (word_.empty()) return;
    double value = 0.0;
    const std::errc error = read_real(word_, value);
    if (error == std::errc::result_out_of_range)
      refuse(csr_matrix_mod::quoted(word_) + " does not fit a double");
    if (error != std::errc()) refuse("expected a number, not " + csr_matrix_mod::quoted(word_));
    if (std::cmp_equal(elements_.size(), length_)) refuse(expected() + "more");
    elements_.push_back(value);
    word_.clear();
  }

  [[nodiscard]] std::string expected() const {
    return "expected " + std::to_string(length_) +
           " numbers, one for each column of the matrix, not ";
  }

  [[noreturn]] void refuse(const std::string& why) const {
    throw failure(path_ + ", line " + std::to_string(line_) + ": " + why);
  }

  const std::string& path_;
  std::int32_t length_;
  std::vector<double> elements_;
  std::string word_;
  std::int64_t line_ = 1;
};

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
  require_memory(std::int64_t{sizeof(double)} * mat.n, what.matrix + ": an element for each row");
  const std::vector<double> x = vector_reader(what.x, mat.m).read();
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
