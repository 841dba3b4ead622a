// SPDX-License-Identifier: MIT
// Matrices as files of every kind that the library knows.
#pragma once

#include <csr_matrix_mod/csr_matrix.hpp>

#include <map>
#include <optional>
#include <string>

namespace csrmat {

using csr_matrix_mod::csr_matrix;

enum class file_kind { text, binary, market, dump, ij, ija, hypergraph };

// The words for --from and --to.
const std::map<std::string, file_kind>& readable_kinds();
const std::map<std::string, file_kind>& writable_kinds();

// A matrix as the file holds it, checked. Without `from` the suffix tells the kind of the file, and
// where that is unknown its first bytes do.
csr_matrix read_matrix(const std::string& path, std::optional<file_kind> from = {});

// The kind to write: `to`, else what the suffix says. Throws when neither tells, so ask before the
// work is done.
file_kind output_kind(const std::string& path, std::optional<file_kind> to = {});

// Writes all of the file or leaves what was there before.
void write_matrix(const std::string& path, file_kind kind, const csr_matrix& mat);

// A text about the file `written`, which the user knows as `asked`.
std::string with_name_asked(std::string text, const std::string& written, const std::string& asked);

// Throws unless there is a regular file of this name that can be read.
void require_file(const std::string& path);

}  // namespace csrmat
