// SPDX-License-Identifier: MIT
// Every writer and every reader of files, and what the files hold to the last byte.
#include "gallery.hpp"
#include "report.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <fstream>
#include <iterator>
#include <limits>
#include <string>
#include <vector>

namespace same_bits {

using namespace csr_matrix_mod;  // NOLINT: every line below names one of its routines

namespace {

std::string bytes_of(const std::string& name) {
  std::ifstream file(name, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// The words of a file of records, the fifth record made of words of 8 bytes, all others of 4.
void add_words(digest& result, const std::string& bytes) {
  std::size_t place = 0;
  const auto word = [&](auto of_this_size) {
    std::memcpy(&of_this_size, bytes.data() + place, sizeof of_this_size);
    result.add(of_this_size);
    place += sizeof of_this_size;
    return of_this_size;
  };
  for (std::int32_t record = 1; place < bytes.size(); ++record) {
    const auto length = static_cast<std::size_t>(word(std::int32_t{}));
    const std::size_t end = place + length;
    while (place < end) {
      if (record == 5)
        word(double{});
      else
        word(std::int32_t{});
    }
    word(std::int32_t{});
  }
}

// Writes through `write`, which may leave its unit open, and adds the bytes of the file.
template <class Write>
void add_file(report& results, const char* routine, const std::string& name, const Write& write) {
  const std::int32_t unit = vacant_unit();
  write(name);
  close_unit(unit);
  results[routine].add(std::string_view(bytes_of(name)));
}

void listings(report& results, const csr_matrix& mat, const std::string& number) {
  struct layout {
    const char* word;
    const char* routine;
  };
  constexpr std::array layouts = {layout{"dump", "csr_matrix_dump, dump"},
                                  layout{"ij", "csr_matrix_dump, ij"},
                                  layout{"ija", "csr_matrix_dump, ija"}};
  for (const layout& each : layouts) {
    if (each.word == std::string_view("ija") && mat.type == matrix_structure_only) continue;
    add_file(results, each.routine, number + "." + each.word,
             [&](const std::string& name) { csr_matrix_dump(name, mat, each.word); });
  }
  add_file(results, "csr_matrix_dump_hypergraph", number + ".hypergraph",
           [&](const std::string& name) { csr_matrix_dump_hypergraph(mat, name); });
  add_file(results, "csr_matrix_dump_gnuplot", number + ".gnuplot",
           [&](const std::string& name) { csr_matrix_dump_gnuplot(mat, name); });
  results["csr_matrix_dump_gnuplot"].add(std::string_view(bytes_of(number + ".gnuplot.com")));
  const std::vector<std::int32_t> rows = permutation(mat.n, 1);
  const std::vector<std::int32_t> columns = permutation(mat.m, 2);
  add_file(
      results, "csr_matrix_dump_gnuplot_ordered", number + ".ordered",
      [&](const std::string& name) { csr_matrix_dump_gnuplot_ordered(mat, name, rows, columns); });
}

// The matrix file in both encodings and Matrix Market, written and read again.
void matrix_files(report& results, const csr_matrix& mat, const std::string& number) {
  csr_matrix again;
  add_file(results, "csr_matrix_dump, text", number + ".csr",
           [&](const std::string& name) { csr_matrix_dump(name, mat); });
  csr_matrix_load(number + ".csr", again);
  results["csr_matrix_load"].add(again);
  const std::int32_t unit = vacant_unit();
  csr_matrix_read(number + ".csr", again);
  close_unit(unit);
  results["csr_matrix_read"].add(again);

  csr_matrix_dump(number + ".csrb", mat, "unformatted");
  add_words(results["csr_matrix_dump, unformatted"], bytes_of(number + ".csrb"));
  csr_matrix_load(number + ".csrb", again, "unformatted");
  results["csr_matrix_load, unformatted"].add(again);

  add_file(results, "csr_matrix_write_market", number + ".mtx",
           [&](const std::string& name) { csr_matrix_write_market(name, mat); });
  csr_matrix_read_market(number + ".mtx", again);
  results["csr_matrix_read_market"].add(again);
}

// Numbers as no writer writes them, of up to `digits` digits in all.
std::string odd_number(numbers& random, std::int32_t digits, bool fortran) {
  std::string text = random.below(2) == 0 ? "-" : random.below(2) == 0 ? "+" : "";
  const std::int32_t point = random.below(digits + 1);
  for (std::int32_t k = 0; k <= digits; ++k)
    text += k == point ? '.' : static_cast<char>('0' + random.below(10));
  if (random.below(3) == 0) return text;
  text += fortran ? "EDQed"[random.below(5)] : "Ee"[random.below(2)];
  text += random.below(2) == 0 ? "-" : "+";
  return text + std::to_string(random.below(260));
}

std::string in_columns(const std::string& text, std::size_t columns) {
  return text + std::string(columns - std::min(columns, text.size()), ' ');
}

// 4 values a row, one a line, for both readers.
void odd_numbers(report& results) {
  constexpr std::int32_t rows = 1500;
  numbers random(99);
  std::ofstream text("odd.csr", std::ios::binary);
  std::ofstream market("odd.mtx", std::ios::binary);
  text << " false\n" << in_columns(int2str(rows, 10) + int2str(9, 10), 20) << '\n';
  market << "%%MatrixMarket MATRIX Coordinate real general\n% odd\n\n"
         << rows << " 9 " << 4 * rows << '\n';
  for (std::int32_t i = 0; i <= rows; ++i) text << int2str(4 * i + 1, 10) << '\n';
  for (std::int32_t k = 0; k < 4 * rows; ++k)
    text << in_columns(std::to_string(k % 9 + 1), 10) << " a remark\n";
  for (std::int32_t k = 0; k < 4 * rows; ++k) {
    text << in_columns(odd_number(random, 1 + k % 13, true), 20) << '\n';
    market << k / 4 + 1 << '\t' << k % 9 + 1 << "  " << odd_number(random, 1 + k % 40, false)
           << '\n';
  }
  text.close();
  market.close();
  csr_matrix mat;
  csr_matrix_load("odd.csr", mat);
  results["csr_matrix_load, odd numbers"].add(mat);
  csr_matrix_read_market("odd.mtx", mat);
  results["csr_matrix_read_market, odd numbers"].add(mat);
}

// Magnitudes about every power of ten, above all about those where the form of a field changes.
csr_matrix all_magnitudes() {
  csr_matrix mat = unsorted(60, 60, 80, kind::even, 123);
  numbers random(321);
  std::int32_t k = 1;
  const std::int32_t nnz = csr_matrix_num_nz(mat);
  for (double power = 1e-320; k < nnz && power < 1e307; power *= 10)
    mat.a(k++) = power * (1.0 - 1e-9 * random.below(20));
  for (const double number :
       {0.1, 0.099999999, 0.0999999995, 99999999.0, 99999999.5, 1e8, 123456785.0, 0.5, 9.9999999499,
        9.99999995, std::numeric_limits<double>::infinity(),
        -std::numeric_limits<double>::infinity(), std::numeric_limits<double>::max(),
        std::numeric_limits<double>::denorm_min(), 0.0, -0.0})
    if (k < nnz) mat.a(k++) = number;
  return mat;
}

}  // namespace

void file_routines(report& results) {
  std::int32_t number = 0;
  for (const sample& each : square_matrices()) {
    const std::string name = std::to_string(++number);
    matrix_files(results, each.mat, name);
    listings(results, each.mat, name);
  }
  for (const kind values : {kind::even, kind::wide, kind::pattern}) {
    const csr_matrix mat = unsorted(40, 900, 20, values, 44);
    const std::string name = std::to_string(++number);
    matrix_files(results, mat, name);
    listings(results, mat, name);
  }
  const csr_matrix magnitudes = all_magnitudes();
  matrix_files(results, magnitudes, "magnitudes");
  listings(results, magnitudes, "magnitudes");
  matrix_files(results, five_point(150, 150, kind::wide), "grid");
  odd_numbers(results);
}

}  // namespace same_bits
