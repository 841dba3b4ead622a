// SPDX-License-Identifier: MIT
// Paths of which a processor cannot foresee whether they lead to a new column. A wrong guess costs
// as much as several paths, so they are better stored without a branch; where guesses are right, a
// branch is half the price. A A of R-MAT graphs of 2^14 to 2^17 rows: 1.5 to 1.7 times as fast, of
// a power network of 5300 rows 1.9 times, of a 27-point stencil whose points are shuffled within
// 64 of them 1.25 to 1.5 times. It costs up to 5 % where nothing is gained.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace csr_matrix_mod::products {

// All paths are stored by a branch.
struct paths_foreseen {
  static constexpr bool always = true;
};

// Guesses now and then what a processor would: outcomes are looked up by those before them.
class paths_watched {
 public:
  static constexpr bool always = false;

  // Is there enough to win? Few paths a processor knows by heart when it is asked again, and a
  // marker that is larger than the second cache is waited for longer where there is no branch.
  [[nodiscard]] static bool are_worth_it(std::int32_t entries, std::int32_t ncol) noexcept {
    return entries >= 1 << 14 && ncol <= 1 << 17;
  }

  // Left entry k leads to `number` columns, which are new where `mark` is below `first`. Were
  // guesses wrong too often of late? Asked for one entry after the other.
  [[gnu::always_inline]] inline bool unforeseen(std::int32_t k, const std::int32_t* columns,
                                                std::int32_t number, const std::int32_t* mark,
                                                std::int32_t first) noexcept {
    if (static_cast<std::uint32_t>(k) % every < watched) watch(k, columns, number, mark, first);
    return unforeseen_;
  }

 private:
  static constexpr std::uint32_t every = 4096;
  static constexpr std::uint32_t watched = 32;
  static constexpr std::int32_t most_columns = 256;  // in the middle of a right row
  static constexpr std::size_t histories = 1024;

  [[gnu::noinline]] void watch(std::int32_t k, const std::int32_t* columns, std::int32_t number,
                               const std::int32_t* mark, std::int32_t first) noexcept {
    if (number > most_columns) {
      columns += (number - most_columns) / 2;
      number = most_columns;
    }
    for (std::int32_t l = 0; l < number; ++l) {
      const bool is_new = mark[columns[l] - 1] < first;
      std::int32_t& guess = guesses_[history_];
      if (is_new != (guess > 0)) ++wrong_;
      guess = is_new ? std::min(guess + 1, 2) : std::max(guess - 1, -1);
      history_ = (2 * history_ + (is_new ? 1 : 0)) % histories;
    }
    paths_ += number;
    if (static_cast<std::uint32_t>(k) % every != watched - 1) return;
    unforeseen_ = 9 * wrong_ > paths_;
    wrong_ /= 2;
    paths_ /= 2;
  }

  std::array<std::int32_t, histories> guesses_{};  // above 0: it will be new
  std::size_t history_ = 0;
  std::int32_t paths_ = 0;
  std::int32_t wrong_ = 0;
  bool unforeseen_ = false;
};

}  // namespace csr_matrix_mod::products
