// SPDX-License-Identifier: MIT
#pragma once

#include <csr_matrix_mod/csr_matrix.hpp>
