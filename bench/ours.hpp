// SPDX-License-Identifier: MIT
// Between the records of the library and the form in which matrices pass here.
#pragma once

#include "matrix.hpp"

#include <csr_matrix_mod/csr_matrix_mod.hpp>

namespace bench::ours {

using csr_matrix_mod::csr_matrix;

csr_matrix record(const matrix& of);
matrix arrays(const csr_matrix& of);

}  // namespace bench::ours
