// SPDX-License-Identifier: MIT
#include "../operation.hpp"
#include "../ours.hpp"
#include "../plain.hpp"

#include <algorithm>
#include <utility>

namespace bench {

namespace {

// Columns that many others resemble: those of an aggregation, and those of a random pattern of
// which each is stored twice.
void twins(problem& p) {
  p.a.values.clear();
  matrix doubled;
  doubled.n = p.a.n;
  doubled.m = 2 * p.a.m;
  doubled.starts.push_back(1);
  for (std::size_t i = 0; i + 1 < p.a.starts.size(); ++i) {
    for (auto k = static_cast<std::size_t>(p.a.starts[i] - 1);
         k < static_cast<std::size_t>(p.a.starts[i + 1] - 1); ++k) {
      doubled.columns.push_back(p.a.columns[k]);
      doubled.columns.push_back(p.a.columns[k] + p.a.m);
    }
    doubled.starts.push_back(static_cast<std::int32_t>(doubled.columns.size()) + 1);
  }
  p.a = std::move(doubled);
  p.weights = random_integers(p.a.m);
}

struct condensed {
  matrix graph;
  array<std::int32_t> weights;
};

struct condensed_record {
  ours::csr_matrix graph;
  array<std::int32_t> weights;
};

// The spare slot behind the entries is not looked at.
answer seen(matrix graph, const array<std::int32_t>& weights) {
  graph.columns.resize(static_cast<std::size_t>(graph.nnz()));
  answer found;
  found.starts = std::move(graph.starts);
  found.columns = std::move(graph.columns);
  found.bytes.resize(static_cast<std::size_t>(graph.m) * sizeof(std::int32_t));
  std::copy_n(reinterpret_cast<const char*>(weights.data()), found.bytes.size(),
              found.bytes.data());
  return found;
}

}  // namespace

operation condense() {
  operation of;
  of.name = "condense";
  of.formula = "columns with the same rows merged";
  of.workloads = {on("twins, 5-point", five_point_rows(), 5e5, 0, twins),
                  on("twins, random", random_rows(), 5e5, 0, twins)};
  of.plain = [](const problem& p) {
    return changes(
        [&p] {
          return condensed{p.a, p.weights};
        },
        [](condensed& c) { plain::condense(c.graph, c.weights); },
        [](const condensed& c) { return seen(c.graph, c.weights); });
  };
  of.ours = [](const problem& p) {
    return changes(
        [&p] {
          return condensed_record{ours::record(p.a), p.weights};
        },
        [](condensed_record& c) { csr_matrix_mod::csr_matrix_condense(c.graph, c.weights); },
        [](const condensed_record& c) { return seen(ours::arrays(c.graph), c.weights); });
  };
  return of;
}

}  // namespace bench
