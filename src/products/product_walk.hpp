// SPDX-License-Identifier: MIT
// The walk over all paths of a product, row by row: over entry k of left row i, column j, to entry
// l of right row j. One walk counts the columns that a row reaches, one stores them.
#pragma once

#include "../support/prefetch.hpp"
#include "../support/scratch.hpp"
#include "unforeseen_paths.hpp"

#include <csr_matrix_mod/support.hpp>

#include <cstdint>
#include <string_view>

namespace csr_matrix_mod::products {

enum class diagonal { kept, skipped };

// Both patterns, the rows of the left one, and the length of the column marker.
struct operands {
  std::int32_t n;
  std::int32_t ncol;
  array_view<const std::int32_t> ia, ja;
  array_view<const std::int32_t> ib, jb;
};

// Do left entries lead to a right row often enough that a look at all right entries is little
// beside the paths? Else a product of a few rows, taken one after the other, would read the whole
// right operand each time.
[[nodiscard]] inline bool right_rows_are_met(const operands& of, std::int32_t right_rows) noexcept {
  return of.ia.data()[of.n] - 1 >= right_rows / 4;
}

// The number of columns that row i of the product reaches. The marker holds the last row in which a
// column was counted, 0 at first, so it need not be cleared between rows.
template <diagonal Diagonal>
[[gnu::always_inline]] inline std::int64_t count_row(const operands& of, std::int64_t i,
                                                     std::int32_t* const mark) {
  const std::int32_t* const left_starts = of.ia.data();
  const std::int32_t* const left_columns = of.ja.data();
  const std::int32_t* const right_starts = of.ib.data();
  const std::int32_t* const right_columns = of.jb.data();
  std::int64_t count = 0;
  const std::int32_t left_end = left_starts[i];
  for (std::int32_t k = left_starts[i - 1]; k < left_end; ++k) {
    const std::int32_t j = left_columns[k - 1];
    const std::int32_t right_end = right_starts[j];
    for (std::int32_t l = right_starts[j - 1]; l < right_end; ++l) {
      const std::int32_t column = right_columns[l - 1];
      if (Diagonal == diagonal::skipped && column == i) continue;
      if (mark[column - 1] == i) continue;
      mark[column - 1] = static_cast<std::int32_t>(i);
      ++count;
    }
  }
  return count;
}

// The number of entries of the product. `routine` is blamed when there is no room for a marker.
template <diagonal Diagonal>
std::int64_t count_entries(const operands& of, std::string_view routine) {
  scratch<std::int32_t> marker(of.ncol, contents::zero, routine);
  std::int64_t count = 0;
  for (std::int64_t i = 1; i <= of.n; ++i) count += count_row<Diagonal>(of, i, marker.data());
  return count;
}

// Where the product goes: its row starts and columns, and what it does with values.
template <class Values>
struct product {
  array_view<std::int32_t> ic, jc;
  Values values;
};

// What may be done beside a walk, and is not: something before left entry k, row i and those after
// it stored in another way, and rows after row i that need not be walked. Of rows the number is
// returned.
struct walk_alone {
  void before(std::int32_t) const noexcept {}
  std::int32_t instead(std::int64_t, std::int32_t&, std::int32_t*) const noexcept { return 0; }
  std::int32_t after(std::int64_t, std::int32_t, std::int32_t&,
                     const std::int32_t*) const noexcept {
    return 0;
  }
};

// Where right rows stand: where their row starts say.
struct rows_by_starts {
  const std::int32_t* starts;

  [[nodiscard]] std::int32_t first(std::int32_t j) const { return starts[j - 1]; }
  [[nodiscard]] std::int32_t end(std::int32_t j) const { return starts[j]; }
  [[gnu::always_inline]] inline void ask_for(std::int32_t j) const {
    prefetch_for_reading(starts + (j - 1));
  }
};

// Stores the entries of the product in the order in which paths first lead to them. The marker
// `mark`, which is 0 at first, holds the position at which a column was stored; a position before
// the row's first is one of an earlier row, so it need not be cleared either. `left` times `right`
// of `path` is what a path is worth; `right_rows` is as `rows_by_starts`, `beside` as `walk_alone`,
// `foresight` as `paths_foreseen`. A function of its own, so that what its loops need stays in
// registers, that begins with a line of the cache: from the middle of one, 27 points took up to
// 1.25 times as long.
template <diagonal Diagonal, class Values, class Path, class Rows, class Beside = walk_alone,
          class Foresight = paths_foreseen>
[[gnu::noinline, gnu::aligned(64)]] void store_entries(const operands& of,
                                                       const product<Values>& to, const Path path,
                                                       std::int32_t* const mark,
                                                       const Rows right_rows, Beside beside = {},
                                                       Foresight foresight = {}) {
  const std::int32_t* const left_starts = of.ia.data();
  const std::int32_t* const left_columns = of.ja.data();
  const std::int32_t* const right_columns = of.jb.data();
  std::int32_t* const starts = to.ic.data();
  std::int32_t* const columns = to.jc.data();
  const Values values = to.values;
  [[maybe_unused]] const std::int64_t room = to.jc.length();

  if (to.ic.length() > 0) starts[0] = 1;  // fewer than 0 rows have no row start
  std::int32_t pos = 0;
  std::int32_t first = 1;
  const auto walk = [&](std::int64_t i, const auto store, const auto... before_right_row) {
    const std::int32_t left_end = left_starts[i];
    for (std::int32_t k = left_starts[i - 1]; k < left_end; ++k) {
      beside.before(k);
      (before_right_row(), ...);
      const std::int32_t j = left_columns[k - 1];
      const auto left = path.left(k, j);
      const std::int32_t right_end = right_rows.end(j);
      for (std::int32_t l = right_rows.first(j); l < right_end; ++l) {
        const std::int32_t column = right_columns[l - 1];
        if (Diagonal == diagonal::skipped && column == i) continue;
        store(column, left * path.right(l));
      }
    }
  };
  const auto by_branch = [&](std::int32_t column, double worth) {
    const std::int32_t at = mark[column - 1];
    if (at < first) {
      mark[column - 1] = ++pos;
      columns[pos - 1] = column;
      values.set(pos, worth);
    } else {
      values.add(at, worth);
    }
  };
  for (std::int64_t i = 1; i <= of.n; ++i) {
    if (const std::int32_t stored = beside.instead(i, pos, mark); stored > 0) {
      i += stored - 1;
      continue;
    }
    first = pos + 1;
    if constexpr (Foresight::always) {
      walk(i, by_branch);
    } else {
      switch (foresight.next_row(left_starts[i] - left_starts[i - 1])) {
        case row_walk::without_branch:
          // The slot behind the last entry is written too, so there must be one.
          if (of.ncol < room - pos) {
            walk(i, [&](std::int32_t column, double worth) {
              const std::int32_t before = mark[column - 1];
              // Compared without a sign, so that compilers add the carry.
              const bool is_new =
                  static_cast<std::uint32_t>(before) < static_cast<std::uint32_t>(first);
              // Where there are no values, compilers take a branch for such a choice.
              const std::int32_t mask = is_new ? -1 : 0;
              const std::int32_t at = Values::stored ? (is_new ? pos + 1 : before)
                                                     : before ^ ((before ^ (pos + 1)) & mask);
              columns[pos] = column;
              values.set(pos + 1, -0.0);  // to which a value is added without a change
              mark[column - 1] = at;
              values.add(at, worth);
              pos += is_new ? 1 : 0;
            });
            break;
          }
          [[fallthrough]];
        case row_walk::by_branch:
          walk(i, by_branch);
          break;
        case row_walk::watched:
          walk(
              i,
              [&](std::int32_t column, double worth) {
                foresight.see(mark[column - 1] < first);
                by_branch(column, worth);
              },
              [&] { foresight.begin_right_row(); });
          foresight.end_watched_row();
          break;
      }
    }
    starts[i] = pos + 1;
    i += beside.after(i, first, pos, mark);
  }
}

template <diagonal Diagonal, class Values, class Path>
void store_entries(const operands& of, const product<Values>& to, const Path& path,
                   std::string_view routine) {
  scratch<std::int32_t> marker(of.ncol, contents::zero, routine);
  store_entries<Diagonal>(of, to, path, marker.data(), rows_by_starts{of.ib.data()});
}

}  // namespace csr_matrix_mod::products
