// SPDX-License-Identifier: MIT
// Memory asked for some entries before its turn, for walks that jump through arrays larger than the
// cache. Inlined always: the compiler drops calls of functions that have no effect, and it takes a
// request for memory for none.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace csr_matrix_mod {

inline constexpr std::size_t cache_line = 64;

// A matrix of so many entries, and its result, fit the cache: nothing is asked for ahead of walks
// over all of them, which would take up to a quarter longer.
inline constexpr std::int32_t entries_in_cache = 3 << 18;

[[gnu::always_inline]] inline void prefetch_for_writing(const void* address) {
  __builtin_prefetch(address, 1);
}

[[gnu::always_inline]] inline void prefetch_for_reading(const void* address) {
  __builtin_prefetch(address, 0);
}

// The same for `number` elements that follow each other.
template <class T>
[[gnu::always_inline]] inline void prefetch_for_writing(const T* first, std::int64_t number) {
  constexpr std::int64_t at_a_time = cache_line / sizeof(T);
  for (std::int64_t at = 0; at < number; at += at_a_time) prefetch_for_writing(first + at);
}

template <class T>
[[gnu::always_inline]] inline void prefetch_for_reading(const T* first, std::int64_t number) {
  constexpr std::int64_t at_a_time = cache_line / sizeof(T);
  for (std::int64_t at = 0; at < number; at += at_a_time) prefetch_for_reading(first + at);
}

// The same for the elements of a row, one or more, that may begin and end anywhere in a line.
template <class T>
[[gnu::always_inline]] inline void prefetch_row(const T* first, std::int64_t number) {
  prefetch_for_reading(first, number);
  prefetch_for_reading(first + (number - 1));
}

// Of some entries from all over, do most lead to rows to which none of the 64 before them is nearer
// than `near`? Fewer than `few` entries, 2^15 or more, are not looked at: what they lead to is in
// the cache.
[[nodiscard]] inline bool scatters(const std::int32_t* rows, std::int32_t nnz, std::int32_t few,
                                   std::int32_t near = 16) {
  if (nnz < few) return false;
  constexpr std::int32_t samples = 256;
  std::int32_t alone = 0;
  for (std::int32_t sample = 1; sample <= samples; ++sample) {
    const std::int32_t* const row = rows + (nnz / samples * sample - 1);
    alone += std::none_of(row - 64, row, [=](std::int32_t other) {
      return std::int64_t{other} - *row < near && std::int64_t{*row} - other < near;
    });
  }
  return alone > samples / 2;
}

}  // namespace csr_matrix_mod
