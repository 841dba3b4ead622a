// SPDX-License-Identifier: MIT
// The fill of a product in the way that suits its operands; the arrays do not tell which it was.
// `most` is what `most_product_entries` says: where nothing is foreseen, paths are walked one by
// one. Else the first that is found decides; how many times as fast it is stands behind:
//
//   rows of both operands that repeat the row before, moved   repeated_rows           1.4 to 6
//   right rows of one entry                                   rows_of_one             1.4 to 1.9
//   left rows with the columns of the row before              twin_rows, twin_paths   1.7 to 7
//   paths of which nobody foresees where they lead            unforeseen_paths        1.1 to 1.9
//
// Beside the second and the last, and the plain walk, where left columns jump: rows_ahead, up to
// 7. What belongs to a way, with the matrices that were measured, stands in its file.
#pragma once

#include "path_values.hpp"
#include "product_walk.hpp"
#include "repeated_rows.hpp"
#include "row_repeats.hpp"
#include "rows_ahead.hpp"
#include "rows_of_one.hpp"
#include "twin_paths.hpp"
#include "twin_rows.hpp"
#include "unforeseen_paths.hpp"

#include <csr_matrix_mod/csr_matrix.hpp>

#include <cstdint>
#include <type_traits>
#include <utility>

namespace csr_matrix_mod::products {

template <diagonal Diagonal, class Values, class Path>
void fill_product(const csr_matrix& m1, const csr_matrix& m2, std::int32_t ncol, csr_matrix& m3,
                  const Values& values, const Path& path, std::int32_t* mark, std::int64_t most) {
  const operands of{m1.n, ncol, m1.ia, m1.ja, m2.ia, m2.ja};
  const product<Values> to{m3.ia, m3.ja, values};
  if (most < 1)
    return store_entries<Diagonal>(of, to, path, mark, rows_by_starts{of.ib.data()}, walk_alone{});
  const row_repeats repeats(of, m2.n);
  if (repeats.worthwhile())
    return store_entries<Diagonal>(
        of, to, path, mark, rows_by_starts{of.ib.data()},
        repeated_rows<Diagonal, Values, Path>(of, to, path, repeats, m2.n));
  const bool of_one = rows_of_one::are(of.ib, m2.n);
  constexpr bool counted = !Path::multiplies_values;
  if constexpr (counted || Diagonal == diagonal::kept) {
    using rows_together =
        std::conditional_t<counted, twin_paths<Diagonal, Values, Path>, twin_rows>;
    twins alike(of, m2.n);
    if (!of_one && right_rows_are_met(of, m2.n) && alike.look())
      return store_entries<Diagonal>(of, to, path, mark, rows_by_starts{of.ib.data()},
                                     rows_together(of, to, path, std::move(alike)));
  }
  const auto walk = [&](const auto right_rows, const auto... foresight) {
    if (left_columns_jump(of, m2.n))
      store_entries<Diagonal>(of, to, path, mark, right_rows,
                              rows_ahead<Path, decltype(right_rows)>(of, path, right_rows),
                              foresight...);
    else
      store_entries<Diagonal>(of, to, path, mark, right_rows, walk_alone{}, foresight...);
  };
  if (of_one)
    walk(rows_of_one{});
  else if (paths_watched::are_worth_it(of.ia.data()[of.n] - 1))
    walk(rows_by_starts{of.ib.data()}, paths_watched{});
  else
    walk(rows_by_starts{of.ib.data()});
}

}  // namespace csr_matrix_mod::products
