// SPDX-License-Identifier: MIT
#include "operation.hpp"

#include "ours.hpp"

#include <utility>

namespace bench {

workload on(std::string name, matrix_maker make, double rows, double goal,
            std::function<void(problem&)> more) {
  return {std::move(name),
          [make = std::move(make), rows, more = std::move(more)](const sizes& size) {
            problem of;
            of.a = make(size.of(rows));
            if (more) more(of);
            return of;
          },
          goal};
}

matrix_maker five_point_rows() {
  return [](double rows) { return five_point(rows); };
}
matrix_maker seven_point_rows() {
  return [](double rows) { return seven_point(rows); };
}
matrix_maker twenty_seven_point_rows() {
  return [](double rows) { return twenty_seven_point(rows); };
}
matrix_maker triangle_rows() {
  return [](double rows) { return triangles(rows); };
}
matrix_maker random_rows() {
  return [](double rows) { return uniform_random(rows); };
}
matrix_maker uneven_rows() {
  return [](double rows) { return uneven_random(rows); };
}
matrix_maker renumbered_rows() {
  return [](double rows) { return renumbered(seven_point(rows), 64); };
}
matrix_maker random_order_rows() {
  return [](double rows) {
    const matrix a = twenty_seven_point(rows);
    return renumbered(a, a.n);
  };
}
matrix_maker tridiagonal_rows() {
  return [](double rows) { return band(rows, 1); };
}
matrix_maker band_rows() {
  return [](double rows) { return band(rows, 50); };
}
matrix_maker seven_point_rows_of_three() {
  return [](double rows) { return several_unknowns(seven_point(rows / 3), 3); };
}
matrix_maker rmat_rows() {
  return [](double rows) { return rmat(rows); };
}

double scalar_products(const matrix& a, const matrix& b) {
  double products = 0;
  for (const std::int32_t j : a.columns)
    products += b.starts[static_cast<std::size_t>(j)] - b.starts[static_cast<std::size_t>(j) - 1];
  return products;
}

reference copied() {
  return {"A copied", [](const problem& p) {
            return makes(
                [a = ours::record(p.a)] {
                  ours::csr_matrix copy;
                  csr_matrix_mod::csr_matrix_assign(copy, a);
                  return copy;
                },
                [](const ours::csr_matrix&) { return answer{}; });
          }};
}

std::vector<operation> operations() {
  return {multiply(),
          restriction(),
          sum(),
          symmetrize(),
          transpose(),
          sort(),
          coordinates(),
          product_with_vector(),
          product_with_vector_transposed(),
          write_text(),
          read_text(),
          write_binary(),
          read_binary(),
          graph_product(),
          integer_vector(),
          integer_vector_transposed(),
          condense(),
          structural_symmetry(),
          clean()};
}

}  // namespace bench
