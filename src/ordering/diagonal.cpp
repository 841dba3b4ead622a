// SPDX-License-Identifier: MIT
// The diagonal removed, or moved to the front of each row.
#include "../support/stop.hpp"

#include <csr_matrix_mod/ordering.hpp>

#include <algorithm>
#include <utility>

namespace csr_matrix_mod {

void csr_matrix_remove_diag(csr_matrix& mat) {
  if (mat.n < 1) return;
  std::int32_t* const starts = mat.ia.data();
  std::int32_t* const columns = mat.ja.data();
  double* const values = mat.type == matrix_real ? mat.a.data() : nullptr;
  std::int32_t p = 1;  // the first row begins at 1, whatever ia(1) says
  std::int32_t q = 1;
  for (std::int64_t i = 1; i <= mat.n; ++i) {
    for (const std::int32_t next_row = starts[i]; p < next_row; ++p) {
      if (columns[p - 1] == i) continue;
      columns[q - 1] = columns[p - 1];
      if (values != nullptr) values[q - 1] = values[p - 1];
      ++q;
    }
    starts[i] = q;
  }
}

void csr_matrix_movediag(csr_matrix& mat) {
  const std::int32_t* const starts = mat.ia.data();
  std::int32_t* const columns = mat.ja.data();
  double* const values = mat.a.data();
  for (std::int64_t row = 1; row <= mat.n; ++row) {
    const auto i = static_cast<std::int32_t>(row);
    const std::int32_t first = starts[i - 1];
    const std::int32_t next_row = starts[i];
    std::int32_t p = first;
    while (p < next_row && columns[p - 1] != i) ++p;
    if (p >= next_row) {
      print_free("no diagonal element exist in row ", i, "!");
      stop(blank_message);
    }
    std::swap(values[p - 1], values[first - 1]);
    std::swap(columns[p - 1], columns[first - 1]);
  }
}

}  // namespace csr_matrix_mod
