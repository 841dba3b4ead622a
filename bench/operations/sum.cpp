// SPDX-License-Identifier: MIT
#include "../operation.hpp"
#include "../ours.hpp"
#include "../plain.hpp"

namespace bench {

operation sum() {
  operation of;
  of.name = "sum";
  of.formula = "A + B";
  of.workloads = {
      on("5-point", five_point_rows(), 1e6, 1, [](problem& p) { p.b = five_point(p.a.n, 2); }),
      on("7-point", seven_point_rows(), 1e6, 1, [](problem& p) { p.b = seven_point(p.a.n, 2); }),
      on("27-point", twenty_seven_point_rows(), 262144, 1.4,
         [](problem& p) { p.b = twenty_seven_point(p.a.n, 2); }),
      on("random", random_rows(), 1e6, 2, [](problem& p) { p.b = uniform_random(p.a.n, 8, 2); }),
      on("random, half shared", random_rows(), 1e6, 0,
         [](problem& p) { p.b = half_redrawn(p.a, 2); })};
  of.plain = [](const problem& p) {
    return makes([&p] { return plain::sum(p.a, p.b); }, matrix_answer);
  };
  of.ours = [](const problem& p) {
    return makes(
        [a = ours::record(p.a), b = ours::record(p.b)] {
          ours::csr_matrix c;
          csr_matrix_mod::csr_matrix_sum(a, b, c);
          return c;
        },
        [](const ours::csr_matrix& c) { return matrix_answer(ours::arrays(c)); });
  };
  of.of_size = [](double rows) {
    return on("", five_point_rows(), rows, 0, [](problem& p) { p.b = five_point(p.a.n, 2); })
        .generate({});
  };
  of.work = [](const problem& p) { return 2.0 * p.a.nnz(); };
  return of;
}

}  // namespace bench
