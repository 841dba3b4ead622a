// SPDX-License-Identifier: MIT
// A record as a Matrix Market file, coordinate and general.
#include "../io/file_error.hpp"
#include "../io/stream.hpp"

#include <csr_matrix_mod/exchange.hpp>

#include <charconv>
#include <utility>

namespace csr_matrix_mod {

namespace {

// The longest number is a double of 24 characters.
constexpr std::size_t room_for_number = 32;
constexpr std::size_t room_for_line = 3 * room_for_number;

// The fewest digits that read back as the same number, and what stands behind them.
template <class Number>
char* put_number(char* to, Number number, char behind) {
  to = std::to_chars(to, to + room_for_number - 1, number).ptr;
  *to++ = behind;
  return to;
}

void write_head(byte_sink& file, const csr_matrix& mat) {
  file.write("%%MatrixMarket matrix coordinate ");
  file.write(mat.type == matrix_real ? "real general\n" : "pattern general\n");
  char* const first = file.room(room_for_line);
  char* to = put_number(first, mat.n, ' ');
  to = put_number(to, mat.m, ' ');
  to = put_number(to, csr_matrix_num_nz(mat), '\n');
  file.advance(static_cast<std::size_t>(to - first));
}

void write_entries(byte_sink& file, const csr_matrix& mat) {
  const std::int32_t* const starts = mat.ia.data();
  const std::int32_t* const columns = mat.ja.data();
  const double* const values = mat.type == matrix_real ? mat.a.data() : nullptr;
  for (std::int64_t i = 1; i <= mat.n; ++i)
    for (std::int32_t k = starts[i - 1]; k < starts[i]; ++k) {
      char* const first = file.room(room_for_line);
      char* to = put_number(first, static_cast<std::int32_t>(i), ' ');
      to = put_number(to, columns[k - 1], values != nullptr ? ' ' : '\n');
      if (values != nullptr) to = put_number(to, values[k - 1], '\n');
      file.advance(static_cast<std::size_t>(to - first));
    }
}

}  // namespace

void csr_matrix_write_market(std::string_view filename, const csr_matrix& mat) {
  at_file(filename, "cannot write", [&] {
    stream file = open_stream(filename, direction::writing);
    byte_sink sink(file.get(), filename);
    write_head(sink, mat);
    write_entries(sink, mat);
    sink.flush();
    close_written(std::move(file), filename);
  });
}

}  // namespace csr_matrix_mod
