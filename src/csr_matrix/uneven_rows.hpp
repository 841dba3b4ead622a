// SPDX-License-Identifier: MIT
// Rows whose ends a processor cannot foresee, as those of meshes without a structure: a wrong guess
// costs as much as a dozen entries. They are walked in whole steps; what a step takes behind the
// end of its row counts as nothing, and is no wrong guess.
//
// 50 000 rows, A x and A' x: of triangles (5 to 9 entries a row) 1.8 and 1.6 times as fast, of
// tetrahedra (9 to 19) 1.4 and 1.25 times, of 0 to 3 entries 2.7 and 2.4 times.
#pragma once

#include "entries_ahead.hpp"

#include <algorithm>
#include <array>
#include <cstdint>

namespace csr_matrix_mod {

// Are the rows such, and would steps of so many entries, one at least, end less surprisingly? Some
// rows tell, each with the one behind it. The ends of a few rows a processor knows by heart when it
// is asked again.
[[nodiscard]] inline bool ends_surprise(const csr_matrix& mat, std::int32_t step) {
  constexpr std::int64_t samples = 64;
  constexpr std::int32_t few = 1 << 14;
  if (mat.n < few) return false;
  const std::int32_t* const starts = mat.ia.data();
  const auto steps_behind_the_first = [=](std::int32_t length) {
    return (std::max(length, 1) - 1) / step;
  };
  std::int64_t spared = 0;
  for (std::int64_t sample = 0; sample < samples; ++sample) {
    const std::int64_t i = (mat.n - 1) * sample / samples + 1;
    const std::int32_t length = starts[i] - starts[i - 1];
    const std::int32_t next = starts[i + 1] - starts[i];
    spared += length != next ? 1 : 0;
    spared -= steps_behind_the_first(length) != steps_behind_the_first(next) ? 1 : 0;
  }
  return 4 * spared >= samples;
}

// Rows of so many entries on average are short, and walked in steps as long.
inline constexpr std::int32_t most_in_short_rows = 4;

[[nodiscard]] inline bool are_short_and_surprise(const csr_matrix& mat) {
  return ends_surprise(mat, most_in_short_rows) && entries_a_row(mat) <= most_in_short_rows;
}

// As `entries_ahead`, but two entries are visited at a time, with -1 for each that is of the row
// and 0 for one behind it. Rows near the end of the matrix, where nothing is behind them, are
// visited one by one; one that ends before it begins has no entry.
template <std::int32_t step, class Values>
class entries_in_steps : public entries_ahead<Values> {
 public:
  entries_in_steps(const csr_matrix& mat, Values values)
      : entries_ahead<Values>(mat, values), last_end_(mat.ia.data()[mat.n] - step) {}

  template <class Visit, class VisitTwo>
  [[gnu::always_inline]] inline void visit(std::int64_t /*i*/, std::int32_t first, std::int32_t end,
                                           const Visit& visit, const VisitTwo& visit_two) const {
    if (std::max(first, end) > last_end_) {
      for (std::int32_t k = first; k < end; ++k) visit(k);
      return;
    }
    std::int32_t k = first;
    do {
      this->ask(k);
      const std::int64_t* const kept = eight_kept.data() + (8 - std::clamp(end - k, 0, 8));
      for (std::int32_t e = 0; e < step; e += 2) visit_two(k + e, kept + e);
      k += step;
    } while (k < end);
  }

 private:
  static constexpr std::array<std::int64_t, 16> eight_kept{-1, -1, -1, -1, -1, -1, -1, -1};

  std::int32_t last_end_;
};

}  // namespace csr_matrix_mod
