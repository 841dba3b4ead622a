// SPDX-License-Identifier: MIT
// A row whose columns lie near each other is sorted without comparing them: each takes the slot of
// its column, and the slots are visited in order. Against ranks and radix, shuffled rows of 33
// entries and more take 0.4 to 0.6 of the time where columns follow each other, 0.7 to 0.85 where
// an entry has eight; bcsstk16, a shell, takes half.
#pragma once

#include "../support/eight_bytes.hpp"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace csr_matrix_mod {

class near_columns {
 public:
  // Puts a row in ascending order to `to` and `new_values`, which may be its own place or one
  // before it; `values` is null for a pattern, `room` has place for those of the row. False, with
  // nothing written, where the columns spread too far or one is repeated.
  [[gnu::noinline]] static bool sort(const std::int32_t* columns, const double* values,
                                     std::int32_t length, double* room, std::int32_t* to,
                                     double* new_values) noexcept {
    const auto spread = static_cast<std::uint32_t>(columns_an_entry *
                                                   std::min(length, most_slots / columns_an_entry));
    // Two looks tell most rows that are spread widely.
    if (!within(spread, columns[0], columns[length - 1]) ||
        !within(spread, columns[0], columns[length / 2]))
      return false;
    const auto [low, high] = ends(columns, length);
    const std::uint32_t last = slot(low, high);
    if (last >= spread) return false;

    char taken[most_slots];
    std::uint16_t taken_by[most_slots];
    std::memset(taken, 0, (last / slots_at_a_time + 1) * slots_at_a_time);
    int repeated = 0;
    for (std::int32_t k = 0; k < length; ++k) {
      const std::uint32_t s = slot(low, columns[k]);
      repeated |= taken[s];
      taken[s] = 1;
      taken_by[s] = static_cast<std::uint16_t>(k);
    }
    if (repeated != 0) return false;

    if (values != nullptr) std::copy_n(values, length, room);
    for (std::size_t first = 0; first <= last; first += slots_at_a_time) {
      for (std::uint64_t bits = bits_of(taken + first); bits != 0; bits &= bits - 1) {
        const std::size_t s = first + static_cast<std::size_t>(std::countr_zero(bits));
        *to++ = low + static_cast<std::int32_t>(s);
        if (values != nullptr) *new_values++ = room[taken_by[s]];
      }
    }
    return true;
  }

 private:
  static constexpr std::int32_t columns_an_entry = 8;
  static constexpr std::int32_t most_slots = 4096;  // which the fastest cache holds
  static constexpr std::size_t slots_at_a_time = 64;

  // Columns may be any numbers, and as far apart.
  static std::uint32_t slot(std::int32_t low, std::int32_t column) noexcept {
    return static_cast<std::uint32_t>(column) - static_cast<std::uint32_t>(low);
  }

  static bool within(std::uint32_t spread, std::int32_t one, std::int32_t other) noexcept {
    return slot(one, other) + spread <= 2 * spread;
  }

  struct range {
    std::int32_t low;
    std::int32_t high;
  };

  static range ends(const std::int32_t* columns, std::int32_t length) noexcept {
    range found{columns[0], columns[0]};
    for (std::int32_t k = 1; k < length; ++k) {
      found.low = std::min(found.low, columns[k]);
      found.high = std::max(found.high, columns[k]);
    }
    return found;
  }

  static std::uint64_t bits_of(const char* taken) noexcept {
    std::uint64_t bits = 0;
    for (unsigned k = 0; k < slots_at_a_time; k += 8)
      bits |= bit_of_each(load_word(taken + k)) << k;
    return bits;
  }
};

}  // namespace csr_matrix_mod
