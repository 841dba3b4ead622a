// SPDX-License-Identifier: MIT
// A matrix into a file, in the layout that a format word names.
#include "file_error.hpp"
#include "form_word.hpp"
#include "layouts.hpp"
#include "unit_table.hpp"

#include <csr_matrix_mod/io.hpp>

namespace csr_matrix_mod {

namespace {

struct layout {
  std::string_view word;
  void (*write)(byte_sink& out, const csr_matrix& mat);
  bool pattern_stays_open;  // the unit, after a structure only matrix: programs count on it
};

constexpr layout text_layout = {"", write_text, true};
constexpr layout layouts[] = {
    {"unformatted", write_unformatted, false},
    {"dump", write_rows, true},
    {"ij", write_ij, false},
    {"ija", write_ija, false},
};

// An unknown word is text too.
const layout& layout_of(std::optional<std::string_view> format) {
  if (format)
    for (const layout& known : layouts)
      if (is_word(*format, known.word)) return known;
  return text_layout;
}

}  // namespace

void csr_matrix_dump(std::string_view filename, const csr_matrix& mat,
                     std::optional<std::string_view> format,
                     std::optional<array_view<const std::int32_t>> row_order,
                     std::optional<array_view<const std::int32_t>> col_order) {
  if (format && is_word(*format, "gnuplot")) return csr_matrix_dump_gnuplot(mat, filename);
  if (format && is_word(*format, "gnuplot_ordered"))
    return csr_matrix_dump_gnuplot_ordered(mat, filename, *row_order, *col_order);
  if (format && is_word(*format, "hypergraph")) return csr_matrix_dump_hypergraph(mat, filename);

  const layout& chosen = layout_of(format);
  at_file(filename, "cannot write", [&] {
    connected_unit unit(filename, direction::writing);
    byte_sink out(unit.file(), filename);
    chosen.write(out, mat);
    out.flush();
    if (chosen.pattern_stays_open && mat.type == matrix_structure_only)
      unit.leave_open();
    else
      unit.close_written(filename);
  });
}

}  // namespace csr_matrix_mod
