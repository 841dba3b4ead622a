// SPDX-License-Identifier: MIT
#include "../operation.hpp"
#include "../ours.hpp"
#include "../plain.hpp"

namespace bench {

namespace {

void piecewise(problem& p, matrix prolongation) {
  p.b = std::move(prolongation);
  p.r = plain::transpose(p.b);
}

void smooth(problem& p, const matrix& prolongation) {
  p.b = smoothed(p.a, prolongation);
  p.r = plain::transpose(p.b);
}

}  // namespace

operation restriction() {
  operation of;
  of.name = "restriction";
  of.formula = "R (A P)";
  of.workloads = {on("constant, 5-point", five_point_rows(), 1e6, 1.6,
                     [](problem& p) { piecewise(p, aggregates_of_square(square_side(p.a.n))); }),
                  on("constant, 7-point", seven_point_rows(), 1e6, 1.6,
                     [](problem& p) { piecewise(p, aggregates_of_cube(cube_side(p.a.n))); }),
                  on("constant, random", random_rows(), 1e6, 1.6,
                     [](problem& p) { piecewise(p, aggregates_in_order(p.a.n, 4)); }),
                  on("smoothed, 7-point", seven_point_rows(), 1e6, 1.3,
                     [](problem& p) { smooth(p, aggregates_of_cube(cube_side(p.a.n))); }),
                  on("smoothed, 27-point", twenty_seven_point_rows(), 262144, 1.1,
                     [](problem& p) { smooth(p, aggregates_of_cube(cube_side(p.a.n))); }),
                  on("smoothed, triangles", triangle_rows(), 1e6, 0,
                     [](problem& p) { smooth(p, aggregates_of_square(square_side(p.a.n))); })};
  of.plain = [](const problem& p) {
    return makes([&p] { return plain::restriction(p.a, p.b, p.r); }, matrix_answer);
  };
  of.ours = [](const problem& p) {
    return makes(
        [a = ours::record(p.a), b = ours::record(p.b), r = ours::record(p.r)] {
          ours::csr_matrix c;
          csr_matrix_mod::csr_matrix_restriction(a, b, r, c);
          return c;
        },
        [](const ours::csr_matrix& c) { return matrix_answer(ours::arrays(c)); });
  };
  return of;
}

}  // namespace bench
