// SPDX-License-Identifier: MIT
#include "../operation.hpp"
#include "../ours.hpp"
#include "../plain.hpp"

#include <bit>

namespace bench {

namespace {

void with_vector(problem& p) { p.x = random_vector(p.a.n); }

std::vector<workload> workloads(double goal_large, double goal_in_cache) {
  return {on("5-point", five_point_rows(), 1e6, goal_large, with_vector),
          on("7-point", seven_point_rows(), 1e6, goal_large, with_vector),
          on("27-point", twenty_seven_point_rows(), 262144, goal_large, with_vector),
          on("random", random_rows(), 1e6, goal_large, with_vector),
          on("triangles", triangle_rows(), 1e6, 0, with_vector),
          on("tridiagonal", tridiagonal_rows(), 2e6, 0, with_vector),
          on("in cache, 5-point", five_point_rows(), 1e4, goal_in_cache, with_vector),
          on("in cache, 27-point", twenty_seven_point_rows(), 2197, goal_in_cache, with_vector),
          on("in cache, uneven", uneven_rows(), 1e4, 0, with_vector)};
}

template <class Multiply>
maker plainly(Multiply multiply) {
  return [multiply](const problem& p) {
    return changes([&p] { return array<double>(p.x.size(), 0.0); },
                   [&p, multiply](array<double>& y) { multiply(p.a, p.x, y); },
                   vector_answer<array<double>>);
  };
}

template <class Multiply>
maker by_us(Multiply multiply) {
  return [multiply](const problem& p) {
    return changes([&p] { return array<double>(p.x.size(), 0.0); },
                   [&p, multiply, a = ours::record(p.a)](array<double>& y) { multiply(a, p.x, y); },
                   vector_answer<array<double>>);
  };
}

// The bytes of the matrix, read once in the order of the product and added up so that they are.
std::uint64_t read_all(const matrix& a) {
  std::uint64_t sum = 0;
  for (const std::int32_t start : a.starts) sum += static_cast<std::uint32_t>(start);
  for (const std::int32_t column : a.columns) sum += static_cast<std::uint32_t>(column);
  for (const double value : a.values) sum += std::bit_cast<std::uint64_t>(value);
  return sum;
}

}  // namespace

operation product_with_vector() {
  operation of;
  of.name = "A x";
  of.formula = "y = A x";
  of.workloads = workloads(1, 1.1);
  of.plain = plainly(plain::multiply_vector);
  of.ours = by_us([](const ours::csr_matrix& a, const array<double>& x, array<double>& y) {
    csr_matrix_mod::csr_matrix_multiply_rvector(a, x, y);
  });
  of.references = {{"bytes read once", [](const problem& p) {
                      return makes([&p] { return read_all(p.a); },
                                   [](std::uint64_t) { return answer{}; });
                    }}};
  of.of_size = [](double rows) {
    return on("", five_point_rows(), rows, 0, with_vector).generate({});
  };
  of.work = [](const problem& p) { return static_cast<double>(p.a.nnz()); };
  return of;
}

operation product_with_vector_transposed() {
  operation of;
  of.name = "A' x";
  of.formula = "y = A' x";
  of.workloads = workloads(1.1, 1.1);
  of.plain = plainly(plain::multiply_vector_transposed);
  of.ours = by_us([](const ours::csr_matrix& a, const array<double>& x, array<double>& y) {
    csr_matrix_mod::csr_matrix_trans_mult_rvector(a, x, y);
  });
  return of;
}

}  // namespace bench
