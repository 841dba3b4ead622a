// SPDX-License-Identifier: MIT
// Everything: the chapters of the library in reading order.
#pragma once

#include <csr_matrix_mod/convert.hpp>
#include <csr_matrix_mod/csr_matrix.hpp>
#include <csr_matrix_mod/exchange.hpp>
#include <csr_matrix_mod/io.hpp>
#include <csr_matrix_mod/ordering.hpp>
#include <csr_matrix_mod/products.hpp>
#include <csr_matrix_mod/support.hpp>
#include <csr_matrix_mod/version.hpp>
