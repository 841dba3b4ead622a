// SPDX-License-Identifier: MIT
// Rows of a product that are moved copies of a row before. Where left row i and all right rows that
// it leads to are those of row i - 1 moved by one column, the paths of row i lead to the same
// places; so they do where row i compares equal to a pattern written down before, as at the rims of
// a grid. No marker is asked then, and 16 rows at a time are summed in vector registers: narrow
// ones where they lie, if registers are wide, others side by side. Each sum takes its paths in
// their order, so no bit differs.
//
// A A for the 5-point, 7-point and 27-point stencil: 2.3, 1.9 and 2.3 times as fast as walking
// every row in fresh memory, 2.8, 2.15 and 2.4 times in recycled memory. For 41 and 101 diagonals
// 5.9 and 4.8 times, for 125 points 1.4 times.
#pragma once

#include "../support/prefetch.hpp"
#include "../support/scratch.hpp"
#include "path_values.hpp"
#include "product_walk.hpp"
#include "row_pattern.hpp"
#include "row_repeats.hpp"
#include "side_by_side.hpp"
#include "spread_rows.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace csr_matrix_mod::products {

template <diagonal Diagonal, class Values, class Path>
class repeated_rows : public walk_alone {
 public:
  repeated_rows(const operands& of, const product<Values>& to, const Path& path,
                const row_repeats& repeats, std::int32_t right_rows) noexcept
      : n_(of.n),
        left_starts_(of.ia.data()),
        left_columns_(of.ja.data()),
        right_starts_(of.ib.data()),
        right_columns_(of.jb.data()),
        right_rows_(right_rows),
        right_end_(of.ib(right_rows + std::int64_t{1})),
        room_for_columns_(to.jc.length()),
        starts_(to.ic.data()),
        columns_(to.jc.data()),
        values_(to.values),
        path_(path),
        repeats_(repeats),
        patterns_(of, spread_ != nullptr) {}

  // Row i was walked and stands at positions `first` to `pos`, and `mark` knows them. Stores the
  // rows after it as long as they are copies, moves `pos` to the last entry and returns their
  // number.
  std::int32_t after(std::int64_t i, std::int32_t first, std::int32_t& pos,
                     const std::int32_t* mark) noexcept {
    std::int64_t row = i;
    const row_pattern* pattern = write_down(i, first, pos, mark);
    for (;;) {
      if (pattern != nullptr) store_repeats(*pattern, row, pos);
      if (row == n_) break;
      pattern = patterns_.of_row(row + 1, pattern);
      if (pattern == nullptr || !find_room(*pattern)) break;
      if (!spread(*pattern, ++row, 1, pos)) store_row(*pattern, row, pos);
      ++met_;
    }
    return static_cast<std::int32_t>(row - i);
  }

 private:
  static constexpr std::int32_t worthwhile = 8;
  static constexpr std::int32_t few = 6;            // fewer rows are faster one by one
  static constexpr std::int64_t least_room = 2048;  // that of stencils of 5 or 7 points
  static constexpr std::int64_t a_line = cache_line / sizeof(double);

  // The pattern of row i, which was walked, if it is worth its room: where rows repeat it, or where
  // rows like it were met before.
  const row_pattern* write_down(std::int64_t i, std::int32_t first, std::int32_t pos,
                                const std::int32_t* mark) noexcept {
    const bool alone = repeats_.after(i) < worthwhile;
    if (alone && 4 * alone_ > met_) return nullptr;
    const row_pattern* const pattern = patterns_.template write_down<Diagonal>(
        i, columns_ + (first - 1), pos + 1 - first, mark, first);
    if (pattern == nullptr || !find_room(*pattern)) return nullptr;
    alone_ += alone ? 1 : 0;
    return pattern;
  }

  // Room for what is summed side by side.
  [[nodiscard]] bool find_room(const row_pattern& of) noexcept {
    if constexpr (!Values::stored) return true;
    const std::int64_t wanted =
        of.right_elements + rows_at_once * (of.entries + 2 * std::int64_t{of.width}) + a_line;
    return wanted <= room_.length() ||
           room_.allocate(std::max(wanted, least_room), contents::undefined);
  }

  // Where the first line of the cache begins in the room: lanes that are loaded from two lines take
  // longer. In fresh memory A A of 101 diagonals is 1.15 times as fast, of 27 points 1.05 times.
  [[nodiscard]] double* first_line() const noexcept {
    void* first = room_.data();
    std::size_t bytes = static_cast<std::size_t>(room_.length()) * sizeof(double);
    return static_cast<double*>(std::align(cache_line, sizeof(double), first, bytes));
  }

  // The rows after `row` that repeat it.
  void store_repeats(const row_pattern& of, std::int64_t& row, std::int32_t& pos) const noexcept {
    while (const std::int32_t repeats = repeats_.after(row)) {
      const std::int64_t last = row + repeats;
      ask_for_columns_behind(of, last);
      while (row < last) {
        const auto rows =
            static_cast<std::int32_t>(std::min<std::int64_t>(rows_at_once, last - row));
        if (spread(of, row + 1, rows, pos) || store_rows(of, row + 1, rows, pos))
          row += rows;
        else
          store_row(of, ++row, pos);
      }
    }
  }

  // Asks for what is read next behind row i, the last of some repeats: its columns, those of the
  // next left row, and of the right rows behind those that it leads to. A A of 5 and 7 points 1.05
  // and 1.08 times as fast.
  [[gnu::always_inline]] inline void ask_for_columns_behind(const row_pattern& of,
                                                            std::int64_t i) const noexcept {
    prefetch_for_reading(left_columns_ + (left_starts_[i - 1] - 1), std::int64_t{2} * of.entries);
    of.for_each_band([&](std::int32_t, std::int32_t end, std::int32_t, std::int32_t) {
      const std::int32_t next = right_starts_[i + of.left_columns[end - 1]];
      prefetch_for_reading(right_columns_ + (next - 1),
                           std::int64_t{2} * of.right_lengths[end - 1]);
    });
  }

  // Some rows from row i on, at most 16, behind position `pos`; false where they are not spread.
  bool spread(const row_pattern& of, std::int64_t i, std::int32_t rows,
              std::int32_t& pos) const noexcept {
    if constexpr (!Values::stored || !Path::multiplies_values) {
      return false;
    } else {
      if (of.number_of_steps == 0) return false;
      const std::int32_t right_rows_end = end_of_right_rows(of, i, rows);
      if (right_rows_end > right_end_ - (places_at_once - 1)) return false;
      store_columns(of, i, rows, pos);
      const std::int32_t stored = rows * of.width;
      if (rows == rows_at_once) {
        const std::int64_t next = std::int64_t{pos} + stored;
        prefetch_for_writing(columns_ + next,
                             std::min<std::int64_t>(stored, room_for_columns_ - next));
        prefetch_for_writing(values_.ac + next,
                             std::min<std::int64_t>(stored, room_for_columns_ - next));
        ask_for_right_rows(of, right_rows_end);
      }
      spread_(of.steps, of.number_of_steps, of.width, path_.a + (left_starts_[i - 1] - 1),
              of.entries, path_.b, right_starts_ + (i - 1), rows, values_.ac + pos);
      pos += stored;
      return true;
    }
  }

  // Row i alone, behind position `pos`.
  void store_row(const row_pattern& of, std::int64_t i, std::int32_t& pos) const noexcept {
    store_columns(of, i, 1, pos);
    if constexpr (Values::stored) {
      double* const sums = room_.data();
      std::fill_n(sums, of.width + 1, -0.0);  // to which a sum is added without a change
      const std::int32_t* place = of.places;
      for (std::int32_t k = 0; k < of.entries; ++k) {
        const std::int32_t j = left_columns_[left_starts_[i - 1] + k - 1];
        const double left = path_.left(left_starts_[i - 1] + k, j);
        const std::int32_t first = right_starts_[j - 1];
        for (std::int32_t l = first; l < first + of.right_lengths[k]; ++l, ++place)
          sums[*place] = left * path_.right(l) + sums[*place];
      }
      for (std::int32_t q = 0; q < of.width; ++q) values_.set(pos + q + 1, sums[q]);
    }
    pos += of.width;
  }

  // Some rows from row i on, at most 16, behind position `pos`; false where they are too few. 16
  // are summed, whatever there is in those behind: A A of 27 points is 1.2 to 1.45 times as fast
  // on cubes of 14 to 17 points a side.
  bool store_rows(const row_pattern& of, std::int64_t i, std::int32_t rows,
                  std::int32_t& pos) const noexcept {
    const bool whole = rows == rows_at_once;
    if (!whole && (rows < few || !has_rows_behind(of, i))) return false;
    store_columns(of, i, rows, pos);
    const std::int64_t stored = std::int64_t{rows} * of.width;
    const std::int64_t next = pos + stored;
    prefetch_for_writing(columns_ + next, std::min(stored, room_for_columns_ - next));
    if constexpr (Values::stored) {
      constexpr std::int64_t all = rows_at_once;
      double* const left = first_line();
      double* const sums = left + all * of.entries;
      double* const right = sums + all * of.width;
      prefetch_for_writing(values_.ac + pos, stored);
      turn_left(of, i, rows, left);
      turn_right(of, i, right);
      by_.sum(of.terms, of.ends, of.width, left, right, sums);
      if (whole) {
        by_.turn(sums, of.width, rows_at_once, values_.ac + pos, of.width);
      } else {
        double* const turned = right + of.right_elements;
        by_.turn(sums, of.width, rows_at_once, turned, of.width);
        std::copy_n(turned, stored, values_.ac + pos);
      }
    }
    pos += static_cast<std::int32_t>(stored);
    return true;
  }

  // Are 16 rows from row i on, and what they lead to, within the operands, whatever they hold?
  [[nodiscard]] bool has_rows_behind(const row_pattern& of, std::int64_t i) const noexcept {
    if (!Values::stored) return true;
    if (left_starts_[i - 1] + std::int64_t{rows_at_once} * of.entries > left_starts_[n_])
      return false;
    bool within = true;
    of.for_each_band([&](std::int32_t k, std::int32_t, std::int32_t rows, std::int32_t) {
      const std::int64_t first = i + of.left_columns[k];
      within = within && first + rows - 1 <= right_rows_ &&
               right_starts_[first - 1] + std::int64_t{rows} * of.right_lengths[k] <= right_end_;
    });
    return within;
  }

  // Where the last of the right rows ends to which some rows from row i on lead.
  [[nodiscard]] std::int32_t end_of_right_rows(const row_pattern& of, std::int64_t i,
                                               std::int32_t rows) const noexcept {
    std::int32_t end = 0;
    for (std::int32_t k = 0; k < of.entries; ++k)
      end = std::max(end, right_starts_[i + of.left_columns[k] + (rows - 1)]);
    return end;
  }

  // Asks for the values of as many right rows a bit behind those that end there, which no row of
  // the product has led to before: 7 points 1.1 times as fast, in fresh memory too.
  [[gnu::always_inline]] inline void ask_for_right_rows(const row_pattern& of,
                                                        std::int32_t end) const noexcept {
    constexpr std::int64_t ahead = 64;
    const std::int64_t next = std::int64_t{end} + ahead;
    prefetch_for_reading(
        path_.b + (next - 1),
        std::min<std::int64_t>(std::int64_t{rows_at_once} * of.entries, right_end_ - next));
  }

  // What a path is worth without values is there for some rows from row i on alone.
  void turn_left(const row_pattern& of, std::int64_t i, std::int32_t rows,
                 double* left) const noexcept {
    if constexpr (Path::multiplies_values) {
      by_.turn(path_.a + (left_starts_[i - 1] - 1), rows_at_once, of.entries, left, rows_at_once);
    } else {
      for (std::int32_t k = 0; k < of.entries; ++k)
        for (std::int32_t x = 0; x < rows_at_once; ++x)
          *left++ = path_.left(
              0, static_cast<std::int32_t>(i) + of.left_columns[k] + std::min(x, rows - 1));
    }
  }

  void turn_right(const row_pattern& of, std::int64_t i, double* right) const noexcept {
    of.for_each_band([&](std::int32_t k, std::int32_t, std::int32_t rows, std::int32_t elements) {
      const std::int64_t length = of.right_lengths[k];
      if constexpr (Path::multiplies_values) {
        const std::int64_t first = right_starts_[i + of.left_columns[k] - 1];
        by_.turn(path_.b + (first - 1), rows, of.right_lengths[k], right + elements, rows);
        const std::int64_t next = first + rows * length;
        prefetch_for_reading(path_.b + (next - 1),
                             std::min(rows_at_once * length, right_end_ - next));
      } else {
        std::fill_n(right + elements, rows * length, 1.0);
      }
    });
  }

  // The row starts and columns of some rows from row i on.
  void store_columns(const row_pattern& of, std::int64_t i, std::int32_t rows,
                     std::int32_t pos) const noexcept {
    by_.move(of.columns, rows * of.width, static_cast<std::int32_t>(i), columns_ + pos);
    const std::int32_t width = of.width;
    std::int32_t* const starts = starts_ + i;
    for (std::int32_t x = 0; x < rows; ++x) starts[x] = pos + (x + 1) * width + 1;
  }

  std::int64_t n_;
  const std::int32_t* left_starts_;
  const std::int32_t* left_columns_;
  const std::int32_t* right_starts_;
  const std::int32_t* right_columns_;
  std::int64_t right_rows_;
  std::int64_t right_end_;
  std::int64_t room_for_columns_;
  std::int32_t* starts_;
  std::int32_t* columns_;
  Values values_;
  Path path_;
  const row_repeats& repeats_;
  const side_by_side& by_ = in_widest_registers();
  spread_kernel* spread_ =
      Values::stored && Path::multiplies_values ? spread_in_widest_registers() : nullptr;
  row_patterns patterns_;
  std::int64_t alone_ = 0;
  std::int64_t met_ = 0;
  mutable scratch<double> room_;
};

}  // namespace csr_matrix_mod::products
