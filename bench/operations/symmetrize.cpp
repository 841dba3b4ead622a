// SPDX-License-Identifier: MIT
#include "../operation.hpp"
#include "../ours.hpp"
#include "../plain.hpp"

namespace bench {

operation symmetrize() {
  operation of;
  of.name = "symmetrize";
  of.formula = "A + A'";
  of.workloads = {on("5-point", five_point_rows(), 1e6, 2.2),
                  on("7-point", seven_point_rows(), 1e6, 2.2),
                  on("27-point", twenty_seven_point_rows(), 262144, 1.3),
                  on("triangles", triangle_rows(), 1e6, 0),
                  on("triangles, lower half", triangle_rows(), 1e6, 0,
                     [](problem& p) { p.a = lower_triangle(p.a); }),
                  on("random", random_rows(), 1e6, 1.4)};
  of.plain = [](const problem& p) {
    return makes([&p] { return plain::symmetrize(p.a); }, matrix_answer);
  };
  of.ours = [](const problem& p) {
    return changes([&p] { return ours::record(p.a); },
                   [](ours::csr_matrix& a) { csr_matrix_mod::csr_matrix_symmetrize(a); },
                   [](const ours::csr_matrix& a) { return matrix_answer(ours::arrays(a)); });
  };
  return of;
}

}  // namespace bench
