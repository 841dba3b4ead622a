// SPDX-License-Identifier: MIT
#include "../operation.hpp"
#include "../ours.hpp"
#include "../plain.hpp"

namespace bench {

operation structural_symmetry() {
  operation of;
  of.name = "structural symmetry";
  of.formula = "is pattern(A) = pattern(A')?";
  of.workloads = {on("5-point", five_point_rows(), 1e6, 0),
                  on("27-point", twenty_seven_point_rows(), 262144, 0),
                  on("symmetrized random", random_rows(), 1e6, 0,
                     [](problem& p) { p.a = plain::symmetrize(p.a); })};
  const auto said = [](bool yes) { return integer_answer(std::vector<std::int32_t>{yes}); };
  of.plain = [said](const problem& p) {
    return makes([&p] { return plain::is_structurally_symmetric(p.a); }, said);
  };
  of.ours = [said](const problem& p) {
    return makes([a = ours::record(p.a)] { return csr_matrix_mod::matrix_is_struct_symmetric(a); },
                 said);
  };
  return of;
}

}  // namespace bench
