// SPDX-License-Identifier: MIT
#include "../operation.hpp"
#include "../ours.hpp"
#include "../plain.hpp"

namespace bench {

namespace {

void with_vector(problem& p) { p.weights = random_integers(p.a.n); }

std::vector<workload> workloads() {
  return {on("5-point", five_point_rows(), 1e6, 0, with_vector),
          on("triangles", triangle_rows(), 1e6, 0, with_vector),
          on("random", random_rows(), 1e6, 0, with_vector)};
}

template <class Multiply>
maker plainly(Multiply multiply) {
  return [multiply](const problem& p) {
    return changes([&p] { return array<std::int32_t>(p.weights.size(), 0); },
                   [&p, multiply](array<std::int32_t>& y) { multiply(p.a, p.weights, y); },
                   integer_answer<array<std::int32_t>>);
  };
}

template <class Multiply>
maker by_us(Multiply multiply) {
  return [multiply](const problem& p) {
    return changes([&p] { return array<std::int32_t>(p.weights.size(), 0); },
                   [&p, multiply, a = ours::record(p.a)](array<std::int32_t>& y) {
                     multiply(a, p.weights, y);
                   },
                   integer_answer<array<std::int32_t>>);
  };
}

}  // namespace

operation integer_vector() {
  operation of;
  of.name = "pattern(A) x";
  of.formula = "y = pattern(A) x, integers";
  of.workloads = workloads();
  of.plain = plainly(plain::multiply_integers);
  of.ours =
      by_us([](const ours::csr_matrix& a, const array<std::int32_t>& x, array<std::int32_t>& y) {
        csr_matrix_mod::csr_matrix_multiply_ivector(a, x, y);
      });
  return of;
}

operation integer_vector_transposed() {
  operation of;
  of.name = "pattern(A)' x";
  of.formula = "y = pattern(A)' x, integers";
  of.workloads = workloads();
  of.plain = plainly(plain::multiply_integers_transposed);
  of.ours =
      by_us([](const ours::csr_matrix& a, const array<std::int32_t>& x, array<std::int32_t>& y) {
        csr_matrix_mod::csr_matrix_trans_mult_ivector(a, x, y);
      });
  return of;
}

}  // namespace bench
