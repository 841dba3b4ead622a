// SPDX-License-Identifier: MIT
#include "aggregation.hpp"

#include "structure.hpp"

#include <csr_matrix_mod/csr_matrix_mod.hpp>

#include <algorithm>
#include <cassert>
#include <numeric>
#include <span>

namespace csrmat {

using namespace csr_matrix_mod;

namespace {

constexpr std::int32_t nobody = 0;

class neighbourhoods {
 public:
  explicit neighbourhoods(const csr_matrix& graph)
      : row_starts_(graph.ia.data()), columns_(graph.ja.data()) {}

  [[nodiscard]] std::span<const std::int32_t> operator()(std::int32_t i) const {
    return {columns_ + (row_starts_[i - 1] - 1), columns_ + (row_starts_[i] - 1)};
  }

 private:
  const std::int32_t* row_starts_;
  const std::int32_t* columns_;
};

// First phase: a row that is free together with all its neighbours founds an aggregate with them.
aggregates found(const neighbourhoods& neighbours, std::int32_t n) {
  aggregates groups{0, std::vector<std::int32_t>(static_cast<std::size_t>(n), nobody)};
  std::int32_t* const of_row = groups.of_row.data();
  const auto is_free = [of_row](std::int32_t i) { return of_row[i - 1] == nobody; };
  for (std::int32_t i = 1; i <= n; ++i) {
    const auto around = neighbours(i);
    if (!is_free(i) || !std::all_of(around.begin(), around.end(), is_free)) continue;
    of_row[i - 1] = ++groups.count;
    for (const std::int32_t j : around) of_row[j - 1] = groups.count;
  }
  return groups;
}

// Second phase: a row left over joins the aggregate of its first neighbour that was in one before
// this phase, so that aggregates grow by one layer at most.
void join(const neighbourhoods& neighbours, aggregates& groups) {
  const std::vector<std::int32_t> founded = groups.of_row;
  const auto n = static_cast<std::int32_t>(founded.size());
  for (std::int32_t i = 1; i <= n; ++i) {
    if (founded[static_cast<std::size_t>(i - 1)] != nobody) continue;
    const auto group_of = [&founded](std::int32_t j) {
      return founded[static_cast<std::size_t>(j - 1)];
    };
    const auto around = neighbours(i);
    const auto host = std::find_if(around.begin(), around.end(),
                                   [&](std::int32_t j) { return group_of(j) != nobody; });
    // No row is without such a neighbour: one that is free together with all its neighbours has
    // founded an aggregate.
    assert(host != around.end());
    groups.of_row[static_cast<std::size_t>(i - 1)] = group_of(*host);
  }
}

}  // namespace

csr_matrix undirected_graph(const csr_matrix& mat) {
  csr_matrix graph = pattern_of(mat);
  csr_matrix_symmetrize_nodiag(graph);
  return graph;
}

aggregates aggregate(const csr_matrix& graph) {
  const neighbourhoods neighbours(graph);
  aggregates groups = found(neighbours, graph.n);
  join(neighbours, groups);
  return groups;
}

csr_matrix piecewise_constant(const aggregates& groups) {
  csr_matrix p;
  const auto n = static_cast<std::int32_t>(groups.of_row.size());
  csr_matrix_initial(n, p, groups.count, matrix_real);
  std::iota(p.ia.begin(), p.ia.end(), 1);
  csr_matrix_allocate(p, n);
  std::copy(groups.of_row.begin(), groups.of_row.end(), p.ja.data());
  csr_matrix_setval(p, 1.0);
  return p;
}

}  // namespace csrmat
