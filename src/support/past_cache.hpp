// SPDX-License-Identifier: MIT
// Copies that go past the cache, for results that it would not hold: to store into a line in the
// usual way, the processor reads it from memory first.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>

#if defined(__x86_64__)
#include <emmintrin.h>
#endif

namespace csr_matrix_mod {

// A matrix of so many entries, with what it is made of, is larger than the cache.
inline constexpr std::int64_t entries_past_cache = std::int64_t{1} << 21;

#if defined(__x86_64__)

inline void store_past_cache(std::int32_t value, std::int32_t* to) { _mm_stream_si32(to, value); }

// clang makes a usual store of the intrinsic for 8 bytes, if they are those of a double, and a line
// that is stored into in both ways costs more than the usual way alone: sums took twice as long.
inline void store_past_cache(double value, double* to) {
  asm("movnti %1, %0" : "=m"(*to) : "r"(std::bit_cast<std::int64_t>(value)));
}

// To places that follow each other: short copies fill whole lines together.
template <class T>
void copy_past_cache(const T* from, std::int32_t length, T* to) {
  constexpr std::int64_t at_a_time = sizeof(__m128i) / sizeof(T);
  const T* const end = from + length;
  for (; from < end && reinterpret_cast<std::uintptr_t>(to) % sizeof(__m128i) != 0; ++from, ++to)
    store_past_cache(*from, to);
  for (; end - from >= at_a_time; from += at_a_time, to += at_a_time)
    _mm_stream_si128(reinterpret_cast<__m128i*>(to),
                     _mm_loadu_si128(reinterpret_cast<const __m128i*>(from)));
  for (; from < end; ++from, ++to) store_past_cache(*from, to);
}

// Behind the last of some copies: they come before every later store, for other threads too.
inline void end_copies_past_cache() { _mm_sfence(); }

#else

template <class T>
void copy_past_cache(const T* from, std::int32_t length, T* to) {
  std::copy_n(from, length, to);
}

inline void end_copies_past_cache() {}

#endif

}  // namespace csr_matrix_mod
