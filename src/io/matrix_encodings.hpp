// SPDX-License-Identifier: MIT
// The encodings of the matrix file.
#pragma once

#include "matrix_file.hpp"

namespace csr_matrix_mod {

[[nodiscard]] std::unique_ptr<matrix_file> open_text_matrix_file(byte_source& source,
                                                                 reading manner);
[[nodiscard]] std::unique_ptr<matrix_file> open_record_matrix_file(byte_source& source,
                                                                   reading manner);

}  // namespace csr_matrix_mod
