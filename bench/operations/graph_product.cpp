// SPDX-License-Identifier: MIT
#include "../operation.hpp"
#include "../ours.hpp"
#include "../plain.hpp"

namespace bench {

operation graph_product() {
  operation of;
  of.name = "graph product";
  of.formula = "paths of length two, no diagonal";
  of.workloads = {on("5-point", five_point_rows(), 1e6, 0),
                  on("27-point", twenty_seven_point_rows(), 262144, 0),
                  on("triangles", triangle_rows(), 1e6, 0),
                  on("7-point, 3 unknowns", seven_point_rows_of_three(), 1e5, 0),
                  on("random", random_rows(), 1e6, 0),
                  on("R-MAT", rmat_rows(), 16384, 0)};
  of.plain = [](const problem& p) {
    return makes([&a = p.a] { return plain::multiply_graph(a, a); }, matrix_answer);
  };
  of.ours = [](const problem& p) {
    return makes(
        [a = ours::record(p.a)] {
          ours::csr_matrix c;
          csr_matrix_mod::csr_matrix_multiply_graph(a, a, c);
          return c;
        },
        [](const ours::csr_matrix& c) { return matrix_answer(ours::arrays(c)); });
  };
  return of;
}

}  // namespace bench
