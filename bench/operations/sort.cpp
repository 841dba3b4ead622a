// SPDX-License-Identifier: MIT
#include "../operation.hpp"
#include "../ours.hpp"
#include "../plain.hpp"

namespace bench {

namespace {

void shuffle(problem& p) { p.a = shuffled_rows(std::move(p.a)); }

}  // namespace

operation sort() {
  operation of;
  of.name = "sort";
  of.formula = "rows of A";
  of.workloads = {on("shuffled 5-point", five_point_rows(), 1e6, 2.2, shuffle),
                  on("shuffled 27-point", twenty_seven_point_rows(), 262144, 2.2, shuffle),
                  on("shuffled random", random_rows(), 1e6, 2.2, shuffle),
                  on("shuffled R-MAT", rmat_rows(), 16384, 2.2, shuffle),
                  on("shuffled band", band_rows(), 1e4, 0, shuffle),
                  on("shuffled uneven, in cache", uneven_rows(), 1e4, 0, shuffle),
                  on("sorted 5-point", five_point_rows(), 1e6, 1),
                  on("sorted 27-point", twenty_seven_point_rows(), 262144, 1)};
  of.plain = [](const problem& p) {
    return changes([&p] { return p.a; }, plain::sort, matrix_answer);
  };
  of.ours = [](const problem& p) {
    return changes([&p] { return ours::record(p.a); },
                   [](ours::csr_matrix& a) { csr_matrix_mod::csr_matrix_sort(a); },
                   [](const ours::csr_matrix& a) { return matrix_answer(ours::arrays(a)); });
  };
  return of;
}

}  // namespace bench
