// SPDX-License-Identifier: MIT
#include "../operation.hpp"
#include "../ours.hpp"
#include "../plain.hpp"

namespace bench {

operation clean() {
  operation of;
  of.name = "clean";
  of.formula = "repeated columns merged";
  const auto repeat = [](problem& p) { p.a = repeated_entries(p.a); };
  of.workloads = {on("5-point, repeats", five_point_rows(), 1e6, 0, repeat),
                  on("random, repeats", random_rows(), 1e6, 0, repeat),
                  on("random, no repeats", random_rows(), 1e6, 0)};
  of.plain = [](const problem& p) {
    return changes([&p] { return p.a; }, plain::clean, matrix_answer);
  };
  of.ours = [](const problem& p) {
    return changes([&p] { return ours::record(p.a); },
                   [](ours::csr_matrix& a) { csr_matrix_mod::csr_matrix_clean(a); },
                   [](const ours::csr_matrix& a) { return matrix_answer(ours::arrays(a)); });
  };
  return of;
}

}  // namespace bench
