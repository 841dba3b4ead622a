// SPDX-License-Identifier: MIT
// Small matrices of every shape that a file may have to hold, and what is done with files in most
// tests.
#pragma once

#include "../support/files.hpp"
#include "../support/matrices.hpp"

#include <csr_matrix_mod/io.hpp>

#include <string>
#include <vector>

namespace tests {

struct named_matrix {
  std::string name;
  csr_matrix mat;
};

inline std::vector<named_matrix> gallery() {
  std::vector<named_matrix> all;
  const auto add = [&all](const char* name, csr_matrix mat) {
    all.push_back({name, std::move(mat)});
  };
  add("no rows", real_matrix(3, {}));
  add("no columns", real_matrix(0, {{}, {}}));
  add("nothing at all", real_matrix(0, {}));
  // [ 1.5   .   -2e-5 ]
  // [  .    .     .   ]
  // [  .  1e300   .   ]
  add("an empty row inside", real_matrix(3, {{{1, 1.5}, {3, -2e-5}}, {}, {{2, 1e300}}}));
  add("an empty first and last row", real_matrix(2, {{}, {{2, -0.25}}, {}}));
  std::vector<entry> dense;
  for (std::int32_t j = 1; j <= 60; ++j) dense.push_back({j, 0.1 * j - 3.0});
  add("one dense row", real_matrix(60, {{}, dense, {{60, 1.0}}}));
  add("repeated columns", real_matrix(2, {{{2, 1.0}, {2, 2.0}, {1, 3.0}, {2, 4.0}}}));
  add("unsorted rows", real_matrix(5, {{{5, 1.0}, {1, 2.0}, {3, 3.0}}}));
  add("explicit zeros", real_matrix(2, {{{1, 0.0}, {2, -0.0}}}));
  add("spare capacity", real_matrix(2, {{{1, 7.0}}, {{2, 8.0}}}, 5));
  add("large numbers", real_matrix(2147483647, {{{2147483647, 12345.678}}, {{1, 123456789.0}}}));
  add("structure only", pattern(4, {{1, 4}, {}, {2}}));
  add("structure only, no entries", pattern(2, {{}, {}}));
  add("structure only, spare capacity", pattern(2, {{2}, {1}}, 3));
  return all;
}

// The file that csr_matrix_dump writes, byte for byte; its unit is closed.
inline std::string dumped(const csr_matrix& mat, std::optional<std::string_view> format = {}) {
  const temporary_folder folder;
  const std::int32_t unit = csr_matrix_mod::vacant_unit();
  csr_matrix_dump(folder.path("out"), mat, format);
  csr_matrix_mod::close_unit(unit);
  return read_file(folder.path("out"));
}

// A record with room for so many rows and entries, holding no matrix yet.
inline csr_matrix room_for(std::int64_t rows, std::int64_t entries) {
  csr_matrix mat;
  if (!mat.ia.allocate(rows + 1) || !mat.ja.allocate(entries) || !mat.a.allocate(entries))
    throw std::bad_alloc();
  std::fill(mat.ja.begin(), mat.ja.end(), -77);
  std::fill(mat.a.begin(), mat.a.end(), -77.0);
  return mat;
}

// What csr_matrix_read makes of the file, its unit closed.
inline csr_matrix read_back(const std::string& path, std::optional<std::string_view> form,
                            std::int64_t rows, std::int64_t entries) {
  csr_matrix mat = room_for(rows, entries);
  const std::int32_t unit = csr_matrix_mod::vacant_unit();
  csr_matrix_read(path, mat, form);
  csr_matrix_mod::close_unit(unit);
  return mat;
}

}  // namespace tests
