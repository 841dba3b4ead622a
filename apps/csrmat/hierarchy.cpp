// SPDX-License-Identifier: MIT
#include "hierarchy.hpp"

#include "random_numbers.hpp"
#include "structure.hpp"

#include <csr_matrix_mod/csr_matrix_mod.hpp>

#include <algorithm>
#include <cmath>
#include <new>
#include <numeric>
#include <vector>

namespace csrmat {

using namespace csr_matrix_mod;

namespace {

// Rows of the fine level to one of the coarse, below which another level is not worth its work.
constexpr double least_ratio = 1.05;

using vector = std::vector<double>;

vector times(const csr_matrix& mat, const vector& x) {
  vector y(static_cast<std::size_t>(mat.n));
  csr_matrix_multiply_rvector(mat, x, y);
  return y;
}

vector random_vector(std::int32_t length) {
  random_numbers random(20);
  vector x(static_cast<std::size_t>(length));
  for (double& element : x) element = random.symmetric();
  return x;
}

vector magnitudes(vector x) {
  for (double& element : x) element = std::abs(element);
  return x;
}

// |mat|, over the same pattern.
csr_matrix magnitudes(const csr_matrix& mat) {
  csr_matrix absolute;
  csr_matrix_transfer(absolute, mat);
  if (!absolute.a.allocate(mat.a.length())) throw std::bad_alloc();
  const std::int32_t nnz = csr_matrix_num_nz(mat);
  for (std::int32_t k = 1; k <= nnz; ++k) absolute.a(k) = std::abs(mat.a(k));
  return absolute;
}

// The sum of the entries of `fine` whose row and column are both in the aggregate, for each.
vector inner_weights(const csr_matrix& fine, const aggregates& groups) {
  vector weights(static_cast<std::size_t>(groups.count));
  const std::int32_t* const of_row = groups.of_row.data();
  for (std::int64_t i = 1; i <= fine.n; ++i)
    for (std::int32_t k = fine.ia(i); k < fine.ia(i + 1); ++k)
      if (of_row[fine.ja(k) - 1] == of_row[i - 1])
        weights[static_cast<std::size_t>(of_row[i - 1] - 1)] += fine.a(k);
  return weights;
}

}  // namespace

csr_matrix finest_level(const csr_matrix& mat, operator_form form) {
  if (form == operator_form::matrix) return with_values(mat);
  csr_matrix graph;
  csr_matrix_assign(graph, with_values(mat));
  csr_matrix_remove_diag(graph);
  return graph;
}

std::optional<transfer> gather(const csr_matrix& fine) {
  transfer via;
  via.groups = aggregate(undirected_graph(fine));
  if (fine.n < least_ratio * via.groups.count) return {};
  via.p = piecewise_constant(via.groups);
  csr_matrix_transpose(via.p, via.r);
  return via;
}

csr_matrix coarse_level(const csr_matrix& fine, const transfer& via, operator_form form) {
  csr_matrix coarse;
  if (form == operator_form::graph)
    csr_matrix_graph_restriction(fine, via.p, via.r, coarse);
  else
    csr_matrix_restriction(fine, via.p, via.r, coarse);
  return coarse;
}

double largest_difference(const csr_matrix& fine, const transfer& via, const csr_matrix& coarse,
                          operator_form form) {
  const vector x = random_vector(coarse.m);
  vector direct = times(coarse, x);
  if (form == operator_form::graph) {
    const vector inside = inner_weights(fine, via.groups);
    for (std::size_t i = 0; i < x.size(); ++i) direct[i] += inside[i] * x[i];
  }
  const vector detour = times(via.r, times(fine, times(via.p, x)));
  const vector scale = times(via.r, times(magnitudes(fine), times(via.p, magnitudes(x))));

  double largest = 0.0;
  for (std::size_t i = 0; i < x.size(); ++i) {
    const double difference = std::abs(direct[i] - detour[i]);
    if (difference == 0.0) continue;
    const double relative = difference / scale[i];
    if (std::isnan(relative)) return relative;
    largest = std::max(largest, relative);
  }
  return largest;
}

double complexity(std::span<const std::int64_t> counts) {
  if (counts.empty() || counts.front() == 0) return 1.0;
  const std::int64_t all = std::accumulate(counts.begin(), counts.end(), std::int64_t{0});
  return static_cast<double>(all) / static_cast<double>(counts.front());
}

}  // namespace csrmat
