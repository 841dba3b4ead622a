// SPDX-License-Identifier: MIT
// Every reader, every writer, and small files of every kind that they agree on.
#pragma once

#include "../io/gallery.hpp"

#include <csr_matrix_mod/csr_matrix_mod.hpp>

#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace tests {

enum class file_kind { text, binary, market };

struct reader {
  const char* name;
  file_kind kind;
  bool allocates;  // else it reads into storage that is there
  void (*read)(const std::string& path, csr_matrix& mat);
};

// Closes the unit that a call leaves open. After a stop it is closed already.
template <class Call>
void closing_its_unit(const Call& call) {
  const std::int32_t unit = csr_matrix_mod::vacant_unit();
  call();
  csr_matrix_mod::close_unit(unit);
}

inline constexpr reader readers[] = {
    {"csr_matrix_load", file_kind::text, true,
     [](const std::string& path, csr_matrix& mat) { csr_matrix_load(path, mat); }},
    {"csr_matrix_load unformatted", file_kind::binary, true,
     [](const std::string& path, csr_matrix& mat) { csr_matrix_load(path, mat, "unformatted"); }},
    {"csr_matrix_read_market", file_kind::market, true,
     [](const std::string& path, csr_matrix& mat) { csr_matrix_read_market(path, mat); }},
    {"csr_matrix_read", file_kind::text, false,
     [](const std::string& path, csr_matrix& mat) {
       closing_its_unit([&] { csr_matrix_read(path, mat); });
     }},
    {"csr_matrix_read unformatted", file_kind::binary, false,
     [](const std::string& path, csr_matrix& mat) {
       closing_its_unit([&] { csr_matrix_read(path, mat, "unformatted"); });
     }}};

struct writer {
  const char* name;
  void (*write)(const std::string& path, const csr_matrix& mat);
};

inline constexpr writer writers[] = {
    {"csr_matrix_dump",
     [](const std::string& path, const csr_matrix& mat) {
       closing_its_unit([&] { csr_matrix_dump(path, mat); });
     }},
    {"csr_matrix_dump unformatted",
     [](const std::string& path, const csr_matrix& mat) {
       csr_matrix_dump(path, mat, "unformatted");
     }},
    {"csr_matrix_dump dump",
     [](const std::string& path, const csr_matrix& mat) {
       closing_its_unit([&] { csr_matrix_dump(path, mat, "dump"); });
     }},
    {"csr_matrix_dump ij",
     [](const std::string& path, const csr_matrix& mat) { csr_matrix_dump(path, mat, "ij"); }},
    {"csr_matrix_dump ija",
     [](const std::string& path, const csr_matrix& mat) { csr_matrix_dump(path, mat, "ija"); }},
    {"csr_matrix_dump_hypergraph",
     [](const std::string& path, const csr_matrix& mat) { csr_matrix_dump_hypergraph(mat, path); }},
    {"csr_matrix_dump_gnuplot",
     [](const std::string& path, const csr_matrix& mat) { csr_matrix_dump_gnuplot(mat, path); }},
    {"csr_matrix_write_market",
     [](const std::string& path, const csr_matrix& mat) { csr_matrix_write_market(path, mat); }}};

struct golden_file {
  std::string name;
  file_kind kind;
  std::int32_t entries;
  std::string bytes;

  friend std::ostream& operator<<(std::ostream& out, const golden_file& of) {
    return out << of.name;
  }
};

// The small ones of the gallery of tests/io, as every reader wants them.
inline std::vector<golden_file> golden_files() {
  std::vector<golden_file> files;
  const temporary_folder folder;
  for (const named_matrix& each : gallery()) {
    const std::int32_t nnz = csr_matrix_num_nz(each.mat);
    if (nnz > 10) continue;
    files.push_back({each.name, file_kind::text, nnz, dumped(each.mat)});
    files.push_back({each.name, file_kind::binary, nnz, dumped(each.mat, "unformatted")});
    csr_matrix_write_market(folder.path("market"), each.mat);
    files.push_back({each.name, file_kind::market, nnz, read_file(folder.path("market"))});
  }
  return files;
}

}  // namespace tests
