// SPDX-License-Identifier: MIT
#include "spread_rows.hpp"

#include "../support/vector_registers.hpp"
#include "side_by_side.hpp"

#if CSR_MATRIX_MOD_WIDE_REGISTERS
#include <immintrin.h>
#endif

namespace csr_matrix_mod::products {

namespace {

#if CSR_MATRIX_MOD_WIDE_REGISTERS

// Rows from row x on that share a look at each step; `Parts` times 8 places.
template <std::size_t Parts, std::size_t Rows>
[[gnu::target("avx512f"), gnu::always_inline]] inline void spread_from(
    std::int32_t x, const spread_step* steps, std::int32_t number, std::int32_t width,
    const double* left, std::int32_t entries, const double* right, const std::int32_t* starts,
    double* rows) {
  constexpr std::size_t before_last = (Parts - 1) * places_at_once;  // places
  constexpr __mmask8 all = 0xff;
  const std::size_t last = static_cast<std::size_t>(width) - before_last;
  const auto last_places = static_cast<__mmask8>((1U << last) - 1U);
  __m512d sums[Rows][Parts];
  for (auto& row : sums)
    for (auto& part : row) part = _mm512_set1_pd(-0.0);  // to which a value is added as it is
  for (const spread_step* step = steps; step < steps + number; ++step) {
    const double* l = left + (std::int64_t{x} * entries + step->entry);
    const double* r =
        right + (starts[step->column] - 1 + step->first + std::int64_t{x} * step->length);
    __m512d worth[Rows];
    for (auto& of_row : worth) {
      of_row = _mm512_mul_pd(_mm512_set1_pd(*l), _mm512_loadu_pd(r));
      l += entries;
      r += step->length;
    }
    for (std::size_t d = 0; d < Parts; ++d) {
      const auto reached = static_cast<__mmask8>(step->reached[d]);
      if (reached == 0) continue;  // 7 points: half of the parts, 1.1 times as fast
      const auto bytes = static_cast<std::int64_t>(step->elements[d]);
      const __m512i elements = _mm512_maskz_cvtepu8_epi64(all, _mm_set_epi64x(0, bytes));
      for (std::size_t row = 0; row < Rows; ++row) {
        const __m512d spread = _mm512_maskz_permutexvar_pd(reached, elements, worth[row]);
        sums[row][d] = _mm512_mask_add_pd(sums[row][d], reached, spread, sums[row][d]);
      }
    }
  }
  double* to = rows + std::int64_t{x} * width;
  for (const auto& row : sums) {
    for (std::size_t d = 0; d + 1 < Parts; ++d) _mm512_storeu_pd(to + d * places_at_once, row[d]);
    _mm512_mask_storeu_pd(to + before_last, last_places, row[Parts - 1]);
    to += width;
  }
}

template <std::size_t Parts>
[[gnu::target("avx512f")]] void spread_over(const spread_step* steps, std::int32_t number,
                                            std::int32_t width, const double* left,
                                            std::int32_t entries, const double* right,
                                            const std::int32_t* starts, std::int32_t number_of_rows,
                                            double* rows) {
  constexpr std::int32_t together = 4;
  std::int32_t x = 0;
  for (; x <= number_of_rows - together; x += together)
    spread_from<Parts, together>(x, steps, number, width, left, entries, right, starts, rows);
  for (; x < number_of_rows; ++x)
    spread_from<Parts, 1>(x, steps, number, width, left, entries, right, starts, rows);
}

[[gnu::target("avx512f")]] void spread_64(const spread_step* steps, std::int32_t number,
                                          std::int32_t width, const double* left,
                                          std::int32_t entries, const double* right,
                                          const std::int32_t* starts, std::int32_t number_of_rows,
                                          double* rows) {
  const auto over = width <= places_at_once       ? spread_over<1>
                    : width <= 2 * places_at_once ? spread_over<2>
                    : width <= 3 * places_at_once ? spread_over<3>
                                                  : spread_over<4>;
  over(steps, number, width, left, entries, right, starts, number_of_rows, rows);
}

#endif

}  // namespace

spread_kernel* spread_in_widest_registers() noexcept {
#if CSR_MATRIX_MOD_WIDE_REGISTERS
  if (detail::widest_registers() == detail::registers::of_64_bytes) return spread_64;
#endif
  return nullptr;
}

}  // namespace csr_matrix_mod::products
