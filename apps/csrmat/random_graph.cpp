// SPDX-License-Identifier: MIT
#include "gallery_matrices.hpp"
#include "limits.hpp"
#include "random_numbers.hpp"

#include <csr_matrix_mod/csr_matrix_mod.hpp>

#include <vector>

namespace csrmat {

using namespace csr_matrix_mod;

csr_matrix random_graph(std::int32_t vertices, std::uint64_t seed) {
  const std::string size = "random of size " + std::to_string(vertices);
  const std::int64_t entries = fitting_product(8, vertices, size + ": its entries");

  require_memory(12 * entries + 12 * std::int64_t{vertices}, size);  // two lists and the graph

  random_numbers random(seed);
  std::vector<std::int32_t> row;
  std::vector<std::int32_t> col;
  row.reserve(static_cast<std::size_t>(entries));
  col.reserve(static_cast<std::size_t>(entries));
  const auto any_vertex = [&] {
    return static_cast<std::int32_t>(random.below(static_cast<std::uint64_t>(vertices))) + 1;
  };
  const auto connect = [&](std::int32_t i, std::int32_t j) {
    row.push_back(i);
    col.push_back(j);
  };
  for (std::int64_t edge = 0; edge < entries / 2; ++edge) {
    const std::int32_t i = any_vertex();
    const std::int32_t j = any_vertex();
    if (i == j) continue;
    connect(i, j);
    connect(j, i);
  }

  csr_matrix graph;
  coo_to_csr_format(vertices, static_cast<std::int32_t>(row.size()), row, col, {}, graph,
                    matrix_structure_only, vertices);
  csr_matrix_sort(graph);
  return graph;
}

}  // namespace csrmat
