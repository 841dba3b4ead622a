// SPDX-License-Identifier: MIT
// Paths of which a processor cannot foresee whether they lead to a new column. A wrong guess costs
// as much as several paths, so they are better stored without a branch; where guesses are right, a
// branch is half the price. A A of R-MAT graphs of 2^14 to 2^18 rows: 1.5 to 1.7 times as fast, of
// 2^19 and 2^20 rows 1.25 and 1.1 times, of a power network of 5300 rows 1.9 times, of its pattern
// 1.8, of a 27-point stencil whose points are shuffled within 64 of them 1.2 to 1.5 times.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace csr_matrix_mod::products {

enum class row_walk { by_branch, without_branch, watched };

// Every row is walked by a branch.
struct paths_foreseen {
  static constexpr bool always = true;
};

// Watches some rows now and then, and guesses as a processor does: by where in its row a path is,
// which a processor knows from the ends of loops, by what came behind the last outcomes before, and
// by the outcomes of rows that have just been walked. Without the first, triangles were taken for
// unforeseen: A A took 1.2 times as long, graph products 1.3 times.
class paths_watched {
 public:
  static constexpr bool always = false;

  // Is there enough to win? Few paths a processor knows by heart when it is asked again.
  [[nodiscard]] static bool are_worth_it(std::int32_t entries) noexcept {
    return entries >= 1 << 14;
  }

  // How to walk the next row, of so many left entries.
  [[nodiscard]] row_walk next_row(std::int32_t entries) noexcept {
    entries_ -= entries;
    return entries_ >= 0 ? walk_ : row_walk::watched;
  }

  // The paths of a watched row over its next right row follow.
  void begin_right_row() noexcept {
    left_entry_ = std::min(left_entry_ + 1, positions - 1);
    right_entry_ = 0;
  }

  // A path of a watched row leads to a new column, or not.
  void see(bool is_new) noexcept {
    if (row_paths_ == most_paths) return;
    ++row_paths_;
    std::int8_t& guess = guesses_[history_][left_entry_][right_entry_];
    if (is_new != (guess > 0)) ++row_wrong_;
    guess = static_cast<std::int8_t>(is_new ? std::min(guess + 1, 2) : std::max(guess - 1, -1));
    right_entry_ = std::min(right_entry_ + 1, positions - 1);
    history_ = (2 * history_ + (is_new ? 1 : 0)) % histories;
    row_ = row_ * 0x9e3779b97f4a7c15U + (is_new ? 1 : 2);
  }

  void end_watched_row() noexcept {
    paths_ += row_paths_;
    if (std::find(rows_.begin(), rows_.end(), row_) == rows_.end()) wrong_ += row_wrong_;
    rows_[next_row_++ % rows_.size()] = row_;
    row_ = 0;
    left_entry_ = 0;
    row_paths_ = 0;
    row_wrong_ = 0;
    if (entries_ > -watched && paths_ < most_paths) return;
    // From here on a branch is the dearer way: measured, one wrong guess in ten.
    walk_ = 10 * wrong_ > paths_ ? row_walk::without_branch : row_walk::by_branch;
    wrong_ /= 2;
    paths_ /= 2;
    entries_ = unwatched;
  }

 private:
  static constexpr std::int32_t watched = 128;  // left entries
  static constexpr std::int32_t unwatched = 8192;
  static constexpr std::int32_t most_paths = 1 << 16;
  static constexpr std::size_t histories = 256;  // of eight outcomes
  static constexpr std::size_t positions = 8;    // the last stands for all behind it

  row_walk walk_ = row_walk::by_branch;
  std::int64_t entries_ = 0;  // that are left until rows are watched again
  std::int32_t paths_ = 0;
  std::int32_t wrong_ = 0;
  std::int32_t row_paths_ = 0;
  std::int32_t row_wrong_ = 0;
  std::uint64_t row_ = 0;  // its outcomes
  std::size_t history_ = 0;
  std::size_t left_entry_ = 0;
  std::size_t right_entry_ = 0;
  std::size_t next_row_ = 0;
  std::array<std::uint64_t, 8> rows_{};
  // Above 0: it will be new.
  std::array<std::array<std::array<std::int8_t, positions>, positions>, histories> guesses_{};
};

}  // namespace csr_matrix_mod::products
