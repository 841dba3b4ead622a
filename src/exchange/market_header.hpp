// SPDX-License-Identifier: MIT
// What a Matrix Market file says about itself in its first line.
#pragma once

#include "market_lines.hpp"

namespace csr_matrix_mod {

enum class market_layout { coordinate, array };
enum class market_field { real, integer, pattern };
enum class market_symmetry { general, symmetric, skew_symmetric };

struct market_header {
  market_layout layout;
  market_field field;
  market_symmetry symmetry;
};

// Reads the first line and stops where it is of a kind that no reader here knows.
[[nodiscard]] market_header read_market_header(market_lines& lines);

}  // namespace csr_matrix_mod
