// SPDX-License-Identifier: MIT
// Any bytes as a binary matrix file.
#include "matrix_file.hpp"
#include "target.hpp"

void fuzz::run(bytes contents) {
  static matrix_file_target target("unformatted", "binary");
  target.run(contents);
}
