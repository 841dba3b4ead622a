// SPDX-License-Identifier: MIT
#include "twin_rows.hpp"

#include "../support/vector_registers.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

namespace csr_matrix_mod::products {

namespace {

// A walk for so many rows at a time, in registers of so many bytes; lanes without a row repeat the
// last one. Inlined into one function for every width; vectors are loaded and stored by memcpy,
// which needs no alignment, and never passed.
template <std::size_t Lanes, std::size_t Bytes>
class walk {
 public:
  [[gnu::always_inline]] inline walk(const left_twins& left, const right_twins& right,
                                     const double* right_values, std::int32_t pos,
                                     std::int32_t* mark, double* sums, std::int32_t* columns)
      : left_(left),
        right_(right),
        right_values_(right_values),
        first_(pos + 1),
        mark_(mark),
        sums_(sums),
        columns_(columns) {}

  [[gnu::always_inline]] inline std::int32_t store(double* values) {
    for (std::int32_t k = 0; k < left_.entries;) {
      const std::int32_t alike = right_.alike(left_.columns + k, left_.entries - k);
      if (alike == 4)
        over_entries<4>(k);
      else if (alike == 3)
        over_entries<3>(k);
      else if (alike == 2)
        over_entries<2>(k);
      else
        over_entries<1>(k);
      k += alike;
    }
    for (std::int64_t r = 0; r < left_.rows; ++r) {
      if (r > 0) std::copy_n(columns_, width_, columns_ + r * width_);
      for (std::int64_t q = 0; q < width_; ++q)
        values[r * width_ + q] = sums_[q * static_cast<std::int64_t>(Lanes) + r];
    }
    return width_;
  }

 private:
  static constexpr std::size_t wide = std::min(Lanes, Bytes / sizeof(double));
  static constexpr std::size_t parts = Lanes / wide;
  using part = typename detail::vector_of<wide * sizeof(double)>::type;

  // Over so many left entries from k on, whose right rows are alike.
  template <std::size_t Alike>
  [[gnu::always_inline]] inline void over_entries(std::int32_t k) {
    part factors[Alike][parts];
    for (std::size_t t = 0; t < Alike; ++t) {
      std::array<double, Lanes> factor;
      for (std::size_t r = 0; r < Lanes; ++r) {
        const std::int64_t row = std::min(static_cast<std::int32_t>(r), left_.rows - 1);
        factor[r] = left_.values[row * left_.entries + k + static_cast<std::int64_t>(t)];
      }
      for (std::size_t p = 0; p < parts; ++p)
        std::memcpy(&factors[t][p], factor.data() + p * wide, sizeof factors[t][p]);
    }
    const std::int32_t j = left_.columns[k];
    const std::int32_t start = right_.starts[j - 1];
    const std::int64_t length = right_.starts[j] - start;
    const std::int32_t* const columns = right_.columns + (start - 1);
    const double* const values = right_values_ + (start - 1);
    std::int32_t width = width_;
    for (std::int64_t l = 0; l < length; ++l) {
      const std::int32_t column = columns[l];
      std::int32_t at = mark_[column - 1] - first_;
      part sum[parts];
      for (std::size_t p = 0; p < parts; ++p) sum[p] = factors[0][p] * values[l];
      if (at < 0) {
        at = width++;
        mark_[column - 1] = first_ + at;
        columns_[at] = column;
      } else {
        for (std::size_t p = 0; p < parts; ++p) {
          part before;
          std::memcpy(&before, sums_ + static_cast<std::size_t>(at) * Lanes + p * wide,
                      sizeof before);
          sum[p] = sum[p] + before;
        }
      }
      for (std::size_t t = 1; t < Alike; ++t) {
        const double value = values[static_cast<std::int64_t>(t) * length + l];
        for (std::size_t p = 0; p < parts; ++p) sum[p] = factors[t][p] * value + sum[p];
      }
      for (std::size_t p = 0; p < parts; ++p)
        std::memcpy(sums_ + static_cast<std::size_t>(at) * Lanes + p * wide, &sum[p],
                    sizeof sum[p]);
    }
    width_ = width;
  }

  const left_twins left_;
  const right_twins right_;
  const double* const right_values_;
  const std::int32_t first_;
  std::int32_t* const mark_;
  double* const sums_;
  std::int32_t* const columns_;
  std::int32_t width_ = 0;
};

template <std::size_t Bytes>
[[gnu::always_inline]] inline std::int32_t walk_any(const left_twins& left,
                                                    const right_twins& right,
                                                    const double* right_values, std::int32_t pos,
                                                    std::int32_t* mark, double* sums,
                                                    std::int32_t* columns, double* values) {
  if (left.rows == 2)
    return walk<2, Bytes>(left, right, right_values, pos, mark, sums, columns).store(values);
  if (left.rows <= 4)
    return walk<4, Bytes>(left, right, right_values, pos, mark, sums, columns).store(values);
  return walk<8, Bytes>(left, right, right_values, pos, mark, sums, columns).store(values);
}

std::int32_t walk_16(const left_twins& left, const right_twins& right, const double* right_values,
                     std::int32_t pos, std::int32_t* mark, double* sums, std::int32_t* columns,
                     double* values) {
  return walk_any<16>(left, right, right_values, pos, mark, sums, columns, values);
}

#if CSR_MATRIX_MOD_WIDE_REGISTERS

[[gnu::target("avx2")]] std::int32_t walk_32(const left_twins& left, const right_twins& right,
                                             const double* right_values, std::int32_t pos,
                                             std::int32_t* mark, double* sums,
                                             std::int32_t* columns, double* values) {
  return walk_any<32>(left, right, right_values, pos, mark, sums, columns, values);
}

#endif

}  // namespace

twin_walk& twin_walk_in_widest_registers() noexcept {
#if CSR_MATRIX_MOD_WIDE_REGISTERS
  if (detail::widest_registers() >= detail::registers::of_32_bytes) return walk_32;
#endif
  return walk_16;
}

}  // namespace csr_matrix_mod::products
