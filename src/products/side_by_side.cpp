// SPDX-License-Identifier: MIT
#include "side_by_side.hpp"

#include "../support/vector_registers.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace csr_matrix_mod::products {

namespace {

// Each body below is inlined into one function for every width of registers. Vectors are loaded
// and stored by memcpy, which needs no alignment, and never passed: how they are passed depends on
// the width.

// Tiles of 2 by 2.
[[gnu::always_inline]] inline void turn_tile_of_2(const double* rows, std::int64_t width,
                                                  double* out, std::int64_t stride) {
  using lanes = detail::vector_of<16>::type;
  lanes a;
  lanes b;
  std::memcpy(&a, rows, sizeof a);
  std::memcpy(&b, rows + width, sizeof b);
  const lanes first = __builtin_shufflevector(a, b, 0, 2);
  const lanes second = __builtin_shufflevector(a, b, 1, 3);
  std::memcpy(out, &first, sizeof first);
  std::memcpy(out + stride, &second, sizeof second);
}

// Tiles of 4 by 4.
[[gnu::always_inline]] inline void turn_tile_of_4(const double* rows, std::int64_t width,
                                                  double* out, std::int64_t stride) {
  using lanes = detail::vector_of<32>::type;
  lanes a;
  lanes b;
  lanes c;
  lanes d;
  std::memcpy(&a, rows, sizeof a);
  std::memcpy(&b, rows + width, sizeof b);
  std::memcpy(&c, rows + 2 * width, sizeof c);
  std::memcpy(&d, rows + 3 * width, sizeof d);
  const lanes even_ab = __builtin_shufflevector(a, b, 0, 4, 2, 6);
  const lanes odd_ab = __builtin_shufflevector(a, b, 1, 5, 3, 7);
  const lanes even_cd = __builtin_shufflevector(c, d, 0, 4, 2, 6);
  const lanes odd_cd = __builtin_shufflevector(c, d, 1, 5, 3, 7);
  a = __builtin_shufflevector(even_ab, even_cd, 0, 1, 4, 5);
  b = __builtin_shufflevector(odd_ab, odd_cd, 0, 1, 4, 5);
  c = __builtin_shufflevector(even_ab, even_cd, 2, 3, 6, 7);
  d = __builtin_shufflevector(odd_ab, odd_cd, 2, 3, 6, 7);
  std::memcpy(out, &a, sizeof a);
  std::memcpy(out + stride, &b, sizeof b);
  std::memcpy(out + 2 * stride, &c, sizeof c);
  std::memcpy(out + 3 * stride, &d, sizeof d);
}

// In tiles, of which the last of a row or column reaches back over the one before.
template <std::int32_t Tile>
[[gnu::always_inline]] inline void turn(const double* rows, std::int32_t number, std::int32_t width,
                                        double* out, std::int32_t stride) {
  if (number < Tile || width < Tile) {
    for (std::int64_t r = 0; r < number; ++r)
      for (std::int64_t c = 0; c < width; ++c) out[c * stride + r] = rows[r * width + c];
    return;
  }
  for (std::int32_t s = 0; s < width; s += Tile) {
    const std::int64_t c = std::min(s, width - Tile);
    for (std::int32_t t = 0; t < number; t += Tile) {
      const std::int64_t r = std::min(t, number - Tile);
      if constexpr (Tile == 2)
        turn_tile_of_2(rows + r * width + c, width, out + c * stride + r, stride);
      else
        turn_tile_of_4(rows + r * width + c, width, out + c * stride + r, stride);
    }
  }
}

[[gnu::always_inline]] inline void move(const std::int32_t* __restrict from, std::int32_t number,
                                        std::int32_t by, std::int32_t* __restrict to) {
  for (std::int32_t t = 0; t < number; ++t) to[t] = from[t] + by;
}

template <std::size_t Bytes>
[[gnu::always_inline]] inline void sum(const std::int32_t* terms, const std::int32_t* ends,
                                       std::int32_t width, const double* left, const double* right,
                                       double* sums) {
  using lanes = typename detail::vector_of<Bytes>::type;
  static_assert(sizeof(lanes) == Bytes);
  constexpr std::size_t wide = Bytes / sizeof(double);
  constexpr std::size_t parts = rows_at_once / wide;
  const std::int32_t* term = terms;
  for (std::int32_t q = 0; q < width; ++q) {
    const std::int32_t* const end = terms + ends[q];
    lanes total[parts];
    for (std::size_t p = 0; p < parts; ++p) {
      lanes l;
      lanes r;
      std::memcpy(&l, left + term[0] + p * wide, sizeof l);
      std::memcpy(&r, right + term[1] + p * wide, sizeof r);
      total[p] = l * r;
    }
    for (term += 2; term < end; term += 2) {
      for (std::size_t p = 0; p < parts; ++p) {
        lanes l;
        lanes r;
        std::memcpy(&l, left + term[0] + p * wide, sizeof l);
        std::memcpy(&r, right + term[1] + p * wide, sizeof r);
        total[p] = l * r + total[p];
      }
    }
    for (std::size_t p = 0; p < parts; ++p)
      std::memcpy(sums + static_cast<std::size_t>(q) * rows_at_once + p * wide, &total[p], Bytes);
  }
}

void turn_16(const double* rows, std::int32_t number, std::int32_t width, double* out,
             std::int32_t stride) {
  turn<2>(rows, number, width, out, stride);
}

void move_16(const std::int32_t* from, std::int32_t number, std::int32_t by, std::int32_t* to) {
  move(from, number, by, to);
}

void sum_16(const std::int32_t* terms, const std::int32_t* ends, std::int32_t width,
            const double* left, const double* right, double* sums) {
  sum<16>(terms, ends, width, left, right, sums);
}

#if CSR_MATRIX_MOD_WIDE_REGISTERS

[[gnu::target("avx2")]] void turn_32(const double* rows, std::int32_t number, std::int32_t width,
                                     double* out, std::int32_t stride) {
  turn<4>(rows, number, width, out, stride);
}

[[gnu::target("avx2")]] void move_32(const std::int32_t* from, std::int32_t number, std::int32_t by,
                                     std::int32_t* to) {
  move(from, number, by, to);
}

[[gnu::target("avx2")]] void sum_32(const std::int32_t* terms, const std::int32_t* ends,
                                    std::int32_t width, const double* left, const double* right,
                                    double* sums) {
  sum<32>(terms, ends, width, left, right, sums);
}

[[gnu::target("avx512f")]] void sum_64(const std::int32_t* terms, const std::int32_t* ends,
                                       std::int32_t width, const double* left, const double* right,
                                       double* sums) {
  sum<64>(terms, ends, width, left, right, sums);
}

#endif

}  // namespace

const side_by_side& in_widest_registers() noexcept {
  static constexpr side_by_side of_16_bytes{turn_16, move_16, sum_16};
#if CSR_MATRIX_MOD_WIDE_REGISTERS
  static constexpr side_by_side of_32_bytes{turn_32, move_32, sum_32};
  static constexpr side_by_side of_64_bytes{turn_32, move_32, sum_64};
  switch (detail::widest_registers()) {
    case detail::registers::of_64_bytes:
      return of_64_bytes;
    case detail::registers::of_32_bytes:
      return of_32_bytes;
    case detail::registers::of_16_bytes:
      break;
  }
#endif
  return of_16_bytes;
}

}  // namespace csr_matrix_mod::products
