// SPDX-License-Identifier: MIT
// Matrix files, listings and plots.
//
//   csr_matrix_read                          a matrix file into storage that the caller gave
//   csr_matrix_dump                          a matrix file, or a listing
//   csr_matrix_dump_gnuplot, _ordered        the pattern as a picture
//   csr_matrix_dump_hypergraph               the columns as a hypergraph
//   vacant_unit, close_unit                  the numbered units that files are open on
#pragma once

#include <csr_matrix_mod/csr_matrix.hpp>

#include <cstdint>
#include <optional>
#include <string_view>

namespace csr_matrix_mod {

/// The lowest free unit, from 10 to 500.
/// Requires: nothing.
/// Ensures: the unit is not taken, only named; the next routine that opens a file takes it.
/// Cost: at most 491 looks.
/// Stops: "no vacant unit exists!".
std::int32_t vacant_unit();

/// Releases a unit that a reader or writer left open.
/// Requires: nothing.
/// Ensures: the file is closed and the unit free; no effect on a unit that is not open.
/// Cost: constant.
/// Stops: never.
void close_unit(std::int32_t unit);

}  // namespace csr_matrix_mod
