// SPDX-License-Identifier: MIT
#include "../operation.hpp"
#include "../ours.hpp"
#include "../plain.hpp"

namespace bench {

operation transpose() {
  operation of;
  of.name = "transpose";
  of.formula = "A'";
  of.workloads = {on("5-point", five_point_rows(), 1e6, 2),
                  on("7-point", seven_point_rows(), 1e6, 2),
                  on("27-point", twenty_seven_point_rows(), 262144, 2),
                  on("random", random_rows(), 1e6, 1.3),
                  on("triangles", triangle_rows(), 1e6, 0),
                  on("in cache, uneven", uneven_rows(), 1e4, 0)};
  of.plain = [](const problem& p) {
    return makes([&p] { return plain::transpose(p.a); }, matrix_answer);
  };
  of.ours = [](const problem& p) {
    return makes(
        [a = ours::record(p.a)] {
          ours::csr_matrix t;
          csr_matrix_mod::csr_matrix_transpose(a, t);
          return t;
        },
        [](const ours::csr_matrix& t) { return matrix_answer(ours::arrays(t)); });
  };
  of.references = {copied()};
  of.of_size = [](double rows) { return on("", random_rows(), rows, 0).generate({}); };
  of.work = [](const problem& p) { return static_cast<double>(p.a.nnz()); };
  return of;
}

}  // namespace bench
