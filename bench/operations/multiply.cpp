// SPDX-License-Identifier: MIT
#include "../operation.hpp"
#include "../ours.hpp"
#include "../plain.hpp"

namespace bench {

operation multiply() {
  operation of;
  of.name = "multiply";
  of.formula = "A A";
  of.workloads = {on("5-point", five_point_rows(), 1e6, 3.5),
                  on("7-point", seven_point_rows(), 1e6, 3.5),
                  on("27-point", twenty_seven_point_rows(), 262144, 3.5),
                  on("triangles", triangle_rows(), 1e6, 0),
                  on("7-point, 3 unknowns", seven_point_rows_of_three(), 1e5, 0),
                  on("7-point, renumbered", renumbered_rows(), 1e6, 0),
                  on("27-point, random order", random_order_rows(), 262144, 0),
                  on("random", random_rows(), 1e6, 4),
                  on("R-MAT", rmat_rows(), 16384, 1.6)};
  of.plain = [](const problem& p) {
    return makes([&a = p.a] { return plain::multiply(a, a); }, matrix_answer);
  };
  of.ours = [](const problem& p) {
    return makes(
        [a = ours::record(p.a)] {
          ours::csr_matrix c;
          csr_matrix_mod::csr_matrix_multiply(a, a, c);
          return c;
        },
        [](const ours::csr_matrix& c) { return matrix_answer(ours::arrays(c)); });
  };
  of.of_size = [](double rows) { return on("", five_point_rows(), rows, 0).generate({}); };
  of.work = [](const problem& p) { return scalar_products(p.a, p.a); };
  return of;
}

}  // namespace bench
