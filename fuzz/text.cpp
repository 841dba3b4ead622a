// SPDX-License-Identifier: MIT
// Any bytes as a matrix file in text.
#include "matrix_file.hpp"
#include "target.hpp"

void fuzz::run(bytes contents) {
  static matrix_file_target target({}, "text");
  target.run(contents);
}
