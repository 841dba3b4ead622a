// SPDX-License-Identifier: MIT
// The paths of one row of a product, written down relative to the row: rows that are moved copies
// of it are stored without asking the marker where each path leads.
#pragma once

#include "../support/scratch.hpp"
#include "product_walk.hpp"
#include "side_by_side.hpp"
#include "spread_rows.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

namespace csr_matrix_mod::products {

// All columns are relative to the row.
struct row_pattern {
  std::int32_t entries;  // of the left row
  std::int32_t paths;
  std::int32_t width;           // entries of the row of the product
  std::int32_t right_elements;  // of all bands

  std::int32_t* left_columns;    // entry by entry
  std::int32_t* right_lengths;   // entry by entry
  std::int32_t* right_columns;   // path by path
  std::int32_t* places;          // path by path; `width` for a path that is skipped
  std::int32_t* columns;         // place by place, of 16 rows
  std::int32_t* ends;            // place by place, behind its last term
  std::int32_t* terms;           // as `side_by_side` has them
  spread_step* steps;            // as `spread_kernel` has them
  std::int32_t number_of_steps;  // 0 where rows cannot be spread

  // Left entries with columns that follow each other lead to a band of right rows. Calls back with
  // the first entry of each and the one behind its last, how many right rows there are where 16
  // rows of the product are formed, and the number of elements of the bands before. Returns that of
  // all.
  template <class Call>
  std::int32_t for_each_band(const Call& call) const noexcept {
    std::int32_t elements = 0;
    for (std::int32_t k = 0; k < entries;) {
      std::int32_t end = k + 1;
      while (end < entries && left_columns[end] == left_columns[end - 1] + 1) ++end;
      const std::int32_t rows = rows_at_once + (end - k - 1);
      call(k, end, rows, elements);
      elements += rows * right_lengths[k];
      k = end;
    }
    return elements;
  }
};

// The patterns that a product has met last: as many as there are kinds of rows in A A on a grid,
// where each of three directions has five. With a tenth of them, A A of 7 points took 1.3 times as
// long on a cube of 20 to 30 points a side.
class row_patterns {
 public:
  // `spread` where there is a `spread_kernel` to be fed.
  row_patterns(const operands& of, bool spread) noexcept
      : spread_(spread),
        left_starts_(of.ia.data()),
        left_columns_(of.ja.data()),
        right_starts_(of.ib.data()),
        right_columns_(of.jb.data()) {
    forget();
  }

  // The pattern of row i, whose columns are the `width` ones at `columns`; `mark` minus `first` is
  // the place to which a column has gone. Null if the row has too many paths, or there is no room
  // to write them down.
  template <diagonal Diagonal>
  const row_pattern* write_down(std::int64_t i, const std::int32_t* columns, std::int32_t width,
                                const std::int32_t* mark, std::int32_t first) noexcept {
    row_pattern* const to = new_pattern(i, width);
    if (to == nullptr) return nullptr;
    const auto row = static_cast<std::int32_t>(i);
    std::int32_t* moved = to->columns;
    for (std::int64_t x = 0; x < rows_at_once; ++x)  // in 64 bits: not all of these rows need exist
      for (std::int32_t q = 0; q < width; ++q)
        *moved++ = static_cast<std::int32_t>(columns[q] - i + x);
    std::int32_t path = 0;
    for (std::int32_t k = 0; k < to->entries; ++k) {
      const std::int32_t j = left_columns_[left_starts_[i - 1] + k - 1];
      to->left_columns[k] = j - row;
      to->right_lengths[k] = right_starts_[j] - right_starts_[j - 1];
      for (std::int32_t l = right_starts_[j - 1]; l < right_starts_[j]; ++l, ++path) {
        const std::int32_t column = right_columns_[l - 1];
        const bool skipped = Diagonal == diagonal::skipped && column == row;
        to->right_columns[path] = column - row;
        to->places[path] = skipped ? width : mark[column - 1] - first;
      }
    }
    sort_terms(*to);
    to->number_of_steps = spread_ && width <= widest_spread ? write_steps(*to) : 0;
    return to;
  }

  // The pattern of which row i is a moved copy, null if there is none. Tried first is the one that
  // was found last behind `before`, the pattern of row i - 1 or null: the rims of a grid are met in
  // turn.
  [[nodiscard]] const row_pattern* of_row(std::int64_t i, const row_pattern* before) noexcept {
    const auto number = before == nullptr ? most_patterns : before - known_.data();
    std::uint8_t& next = next_[static_cast<std::size_t>(number)];
    if (next != none && fits(i, known_[next])) return &known_[next];
    const std::uint8_t found = numbers_[place_of(i)];
    if (found == none || !fits(i, known_[found])) return nullptr;
    next = found;
    return &known_[found];
  }

 private:
  static constexpr std::int32_t most_paths = 1 << 14;
  static constexpr std::int32_t most_patterns = 128;
  static constexpr std::uint8_t none = most_patterns;
  static constexpr std::int64_t least_room = 8192;  // that of stencils of 5 or 7 points
  static constexpr std::int64_t most_room = 1 << 17;
  static constexpr std::int64_t integers_a_step = sizeof(spread_step) / sizeof(std::int32_t);

  // A pattern of the size of row i. There is room for 8 of the largest yet at least; when it is
  // used up, all patterns are forgotten and there is twice as much, up to that of 100 of 7 points.
  [[nodiscard]] row_pattern* new_pattern(std::int64_t i, std::int32_t width) noexcept {
    const std::int32_t start = left_starts_[i - 1];
    const std::int32_t entries = left_starts_[i] - start;
    std::int64_t paths = 0;
    for (std::int32_t k = start; k < start + entries; ++k) {
      const std::int32_t j = left_columns_[k - 1];
      paths += right_starts_[j] - right_starts_[j - 1];
    }
    if (entries > most_paths || paths > most_paths) return nullptr;
    const std::int64_t steps =
        spread_ && width <= widest_spread ? entries + paths / places_at_once : 0;
    const std::int64_t wanted = 2 * std::int64_t{entries} + 4 * paths +
                                (rows_at_once + 1) * std::int64_t{width} + steps * integers_a_step +
                                1;
    if (number_ == most_patterns || wanted > room_.length() - used_) {
      forget();
      const std::int64_t larger =
          std::max({8 * wanted, least_room, std::min(2 * room_.length(), most_room)});
      if (room_.length() < larger && !room_.allocate(larger, contents::undefined)) return nullptr;
    }
    const auto next = [&](std::int64_t length) {
      used_ += length;
      return room_.data() + (used_ - length);
    };
    numbers_[place_of(i)] = static_cast<std::uint8_t>(number_);
    row_pattern& to = known_[static_cast<std::size_t>(number_++)];
    to.entries = entries;
    to.paths = static_cast<std::int32_t>(paths);
    to.width = width;
    to.left_columns = next(entries);
    to.right_lengths = next(entries);
    to.right_columns = next(paths);
    to.places = next(paths);
    to.columns = next(rows_at_once * std::int64_t{width});
    to.ends = next(width);
    to.terms = next(2 * paths);
    used_ += used_ % 2;  // where elements of 8 bytes may begin
    to.steps = reinterpret_cast<spread_step*>(next(steps * integers_a_step));
    return &to;
  }

  // The steps of each entry, 8 elements a step. How many; 0 where two elements of one step lead to
  // one place, as columns that are repeated do, or there is none.
  static std::int32_t write_steps(row_pattern& to) noexcept {
    std::int32_t number = 0;
    std::int32_t path = 0;
    for (std::int32_t k = 0; k < to.entries; ++k) {
      for (std::int32_t l = 0; l < to.right_lengths[k]; ++l, ++path) {
        if (l % places_at_once == 0)
          to.steps[number++] = {k, to.left_columns[k], to.right_lengths[k], l, {}, {}};
        const std::int32_t place = to.places[path];
        if (place == to.width) continue;
        spread_step& step = to.steps[number - 1];
        const auto part = static_cast<std::size_t>(place / places_at_once);
        const auto lane = static_cast<std::uint32_t>(place % places_at_once);
        const std::uint64_t bit = std::uint64_t{1} << lane;
        if ((step.reached[part] & bit) != 0) return 0;
        step.reached[part] |= bit;
        step.elements[part] |= static_cast<std::uint64_t>(l % places_at_once) << (8 * lane);
      }
    }
    return number;
  }

  // The terms of each place, which are its paths in their order.
  static void sort_terms(row_pattern& to) noexcept {
    std::fill_n(to.ends, to.width, 0);
    for (std::int32_t path = 0; path < to.paths; ++path)
      if (to.places[path] < to.width) to.ends[to.places[path]] += 2;
    std::int32_t before = 0;
    for (std::int32_t q = 0; q < to.width; ++q) before += std::exchange(to.ends[q], before);

    std::int32_t path = 0;
    to.right_elements = to.for_each_band(
        [&](std::int32_t first, std::int32_t end, std::int32_t rows, std::int32_t elements) {
          for (std::int32_t k = first; k < end; ++k) {
            for (std::int32_t l = 0; l < to.right_lengths[k]; ++l, ++path) {
              if (to.places[path] == to.width) continue;
              std::int32_t& end_of_terms = to.ends[to.places[path]];
              to.terms[end_of_terms++] = k * rows_at_once;
              to.terms[end_of_terms++] = elements + l * rows + (k - first);
            }
          }
        });
  }

  // All patterns.
  void forget() noexcept {
    number_ = 0;
    used_ = 0;
    numbers_.fill(none);
    next_.fill(none);
  }

  // Where the number of the pattern of row i is looked up: its columns, relative to the row, and
  // the lengths of the right rows tell, mixed.
  [[nodiscard]] std::size_t place_of(std::int64_t i) const noexcept {
    constexpr std::uint32_t spread_bits = 0x9e3779b1U;
    std::uint32_t sum = 0;
    std::uint32_t weight = 1;
    const std::int32_t end = left_starts_[i];
    for (std::int32_t k = left_starts_[i - 1]; k < end; ++k, weight += 2) {
      const std::int32_t j = left_columns_[k - 1];
      const auto column = static_cast<std::uint32_t>(j) - static_cast<std::uint32_t>(i);
      const auto length = static_cast<std::uint32_t>(right_starts_[j] - right_starts_[j - 1]);
      sum += weight * (column + (length << 20));
    }
    return sum * spread_bits >> 23;
  }

  [[nodiscard]] bool fits(std::int64_t i, const row_pattern& known) const noexcept {
    const auto row = static_cast<std::int32_t>(i);
    const std::int32_t start = left_starts_[i - 1];
    if (left_starts_[i] - start != known.entries) return false;
    for (std::int32_t k = 0; k < known.entries; ++k) {
      const std::int32_t j = left_columns_[start + k - 1];
      if (j - row != known.left_columns[k]) return false;
      if (right_starts_[j] - right_starts_[j - 1] != known.right_lengths[k]) return false;
    }
    std::int32_t differing = 0;
    const std::int32_t* expected = known.right_columns;
    known.for_each_band([&](std::int32_t k, std::int32_t end, std::int32_t, std::int32_t) {
      const std::int32_t first = right_starts_[row + known.left_columns[k] - 1];
      const std::int32_t number = right_starts_[row + known.left_columns[end - 1]] - first;
      const std::int32_t* const columns = right_columns_ + (first - 1);
      for (std::int32_t l = 0; l < number; ++l) differing |= (columns[l] - row) ^ expected[l];
      expected += number;
    });
    return differing == 0;
  }

  bool spread_;
  const std::int32_t* left_starts_;
  const std::int32_t* left_columns_;
  const std::int32_t* right_starts_;
  const std::int32_t* right_columns_;
  std::array<std::uint8_t, 512> numbers_{};             // of patterns, by their place
  std::array<std::uint8_t, most_patterns + 1> next_{};  // by the number of the one before
  std::array<row_pattern, most_patterns> known_;
  std::int32_t number_ = 0;
  scratch<std::int32_t> room_;
  std::int64_t used_ = 0;
};

}  // namespace csr_matrix_mod::products
