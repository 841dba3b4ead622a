// SPDX-License-Identifier: MIT
// One step from a level of a hierarchy to the next, and the numbers that describe the whole.
#pragma once

#include "aggregation.hpp"

#include <cstdint>
#include <optional>
#include <span>

namespace csrmat {

// What a level is: all of a matrix, or a weighted graph, which has no diagonal.
enum class operator_form { matrix, graph };

struct transfer {
  aggregates groups;
  csr_matrix p;  // piecewise constant
  csr_matrix r;  // transpose of p
};

// The finest level: `mat` with values (1 where it has none), without its diagonal when a graph.
csr_matrix finest_level(const csr_matrix& mat, operator_form form);

// How the rows of `fine` are gathered; nothing when there are hardly fewer aggregates than rows.
std::optional<transfer> gather(const csr_matrix& fine);

// r * (fine * p), for a graph without its diagonal.
csr_matrix coarse_level(const csr_matrix& fine, const transfer& via, operator_form form);

// Self-check with a random x, the same in every run: the largest difference in any row between
// coarse * x and r * (fine * (p * x)), relative to the sum of the magnitudes that make up that row.
// For a graph, d * x is added to the former, d being the weight inside each aggregate, which the
// coarse graph leaves out; it is summed up here from the entries of `fine`.
double largest_difference(const csr_matrix& fine, const transfer& via, const csr_matrix& coarse,
                          operator_form form);

// The rows (grid complexity) or entries (operator complexity) of all levels over those of the
// first; 1 when the first has none.
double complexity(std::span<const std::int64_t> counts);

}  // namespace csrmat
