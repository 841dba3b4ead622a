// SPDX-License-Identifier: MIT
// The encodings of the matrix file, and how their readers refuse an item.
#pragma once

#include "file_error.hpp"
#include "matrix_file.hpp"

namespace csr_matrix_mod {

[[nodiscard]] std::unique_ptr<matrix_file> open_text_matrix_file(byte_source& source,
                                                                 reading manner);
[[nodiscard]] std::unique_ptr<matrix_file> open_record_matrix_file(byte_source& source,
                                                                   reading manner);

[[noreturn]] inline void refuse_item(const byte_source& source, std::string_view place,
                                     std::string_view expected, std::string_view found) {
  source.refuse(
      std::string(place).append(": expected ").append(expected).append(", found ").append(found));
}

}  // namespace csr_matrix_mod
