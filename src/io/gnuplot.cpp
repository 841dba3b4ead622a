// SPDX-License-Identifier: MIT
// The pattern of a matrix as a gnuplot picture: a point an entry, row 1 at the top.
#include "../support/fields.hpp"
#include "file_error.hpp"
#include "row_lines.hpp"
#include "unit_table.hpp"

#include "../support/stop.hpp"

#include <csr_matrix_mod/io.hpp>

#include <string>

namespace csr_matrix_mod {

namespace {

constexpr int point_columns = 10;

// Sums of a size and a position from the caller wrap at 32 bits.
std::int32_t sum(std::int32_t left, std::int32_t right) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(left) +
                                   static_cast<std::uint32_t>(right));
}

// n+1 - position: the height of a row, counted from the bottom.
std::int32_t height(std::int32_t n, std::int32_t position) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(n) + 1U -
                                   static_cast<std::uint32_t>(position));
}

std::string commands(const csr_matrix& mat, const std::string& name) {
  const auto wide = [](std::int32_t value) { return int2str(value, 12); };
  const std::string rows = wide(mat.n);
  const std::string last_column = int2str(mat.m, digit(mat.m));
  std::string text;
  const auto line = [&text](const auto&... pieces) { (text.append(pieces), ...).append("\n"); };
  line("set xrange [0:", wide(sum(mat.m, 1)), "]");
  line("set yrange [0:", wide(sum(mat.n, 1)), "]");
  line("set ytics (\"1\" ", rows, ", \"", rows, "\"  1 )");
  line("set noxtics");
  line("set x2tics (\"1\" 1, \"", last_column, "\" ", wide(mat.m), " )");
  line("set nolabel ");
  line("set term post portrait ");
  line("set out \"", name, ".ps\"");
  line("set size  square");
  line("plot \"", name, "\" using 1:2 notitle w p ps 0.3");
  return text;
}

// across(j) and down(i) are the positions at which column j and row i are drawn.
template <class Across, class Down>
void write_plot(const csr_matrix& mat, std::string_view filename, const Across& across,
                const Down& down) {
  const std::string name(filename);
  print_line(" writing gnuplot formatted matrix in " + name + " and " + name + ".com");
  connected_unit data_unit(name, direction::writing);
  connected_unit command_unit(name + ".com", direction::writing);

  byte_sink command_file(command_unit.file(), name + ".com");
  command_file.write(commands(mat, name));
  command_file.flush();
  command_unit.close_written(name + ".com");

  byte_sink data(data_unit.file(), name);
  const std::int32_t* const columns = mat.ja.data();
  write_row_lines(data, mat, 2 * point_columns, [&](char* to, std::int32_t i, std::int32_t k) {
    return put_integer(put_integer(to, across(columns[k - 1]), point_columns),
                       height(mat.n, down(i)), point_columns);
  });
  data.flush();
  data_unit.close_written(name);
}

}  // namespace

void csr_matrix_dump_gnuplot(const csr_matrix& mat, std::string_view filename) {
  const auto in_place = [](std::int32_t position) { return position; };
  at_file(filename, "cannot write", [&] { write_plot(mat, filename, in_place, in_place); });
}

void csr_matrix_dump_gnuplot_ordered(const csr_matrix& mat, std::string_view filename,
                                     array_view<const std::int32_t> row_order,
                                     array_view<const std::int32_t> col_order) {
  at_file(filename, "cannot write", [&] { write_plot(mat, filename, col_order, row_order); });
}

}  // namespace csr_matrix_mod
