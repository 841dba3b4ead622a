// SPDX-License-Identifier: MIT
// The files of tests/data, one a test, and how each is read.
#pragma once

#include <csr_matrix_mod/csr_matrix.hpp>

#include <filesystem>
#include <string>
#include <vector>

namespace tests {

// The matrix files of a folder of tests/data, in order of their names.
std::vector<std::filesystem::path> data_files(const std::string& folder);

// Reads .mtx as Matrix Market, .csr as text and .csrb as records, into new storage.
void read_data_file(const std::filesystem::path& file, csr_matrix_mod::csr_matrix& mat);

// The text of NAME.expected beside NAME.mtx.
std::string expectation_of(const std::filesystem::path& file);

// What a test is called that reads `file`.
std::string test_name_of(const std::filesystem::path& file);

}  // namespace tests
