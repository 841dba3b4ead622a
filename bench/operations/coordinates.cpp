// SPDX-License-Identifier: MIT
#include "../operation.hpp"
#include "../ours.hpp"
#include "../plain.hpp"

namespace bench {

namespace {

void list(problem& p) {
  p.rows = rows_of_entries(p.a);
  p.listed = p.a;
}

void list_shuffled(problem& p) {
  const array<std::int32_t> rows = rows_of_entries(p.a);
  const array<std::int32_t> order = random_order(p.a.nnz());
  p.listed = p.a;
  p.rows.resize(rows.size());
  for (std::size_t k = 0; k < order.size(); ++k) {
    const auto from = static_cast<std::size_t>(order[k]);
    p.rows[k] = rows[from];
    p.listed.columns[k] = p.a.columns[from];
    p.listed.values[k] = p.a.values[from];
  }
}

}  // namespace

operation coordinates() {
  operation of;
  of.name = "coordinates";
  of.formula = "COO to CSR";
  of.workloads = {on("row order, 5-point", five_point_rows(), 1e6, 2.8, list),
                  on("row order, random", random_rows(), 1e6, 2.8, list),
                  on("shuffled, 5-point", five_point_rows(), 1e6, 1.6, list_shuffled),
                  on("shuffled, random", random_rows(), 1e6, 1.6, list_shuffled)};
  of.plain = [](const problem& p) {
    return makes(
        [&p] {
          return plain::from_coordinates(p.a.n, p.a.m, p.rows, p.listed.columns, p.listed.values);
        },
        matrix_answer);
  };
  of.ours = [](const problem& p) {
    return makes(
        [&p] {
          ours::csr_matrix a;
          csr_matrix_mod::coo_to_csr_format(p.a.n, p.a.nnz(), p.rows, p.listed.columns,
                                            p.listed.values, a, csr_matrix_mod::matrix_real, p.a.m);
          return a;
        },
        [](const ours::csr_matrix& a) { return matrix_answer(ours::arrays(a)); });
  };
  of.references = {copied()};
  return of;
}

}  // namespace bench
