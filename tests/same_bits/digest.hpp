// SPDX-License-Identifier: MIT
// One number for many, the same whatever order a machine keeps the bytes of a word in.
#pragma once

#include <csr_matrix_mod/csr_matrix_mod.hpp>

#include <bit>
#include <cstdint>
#include <string_view>

namespace same_bits {

// Each step can be undone, so two sequences that differ in one number never meet again by that
// step.
class digest {
 public:
  void add(std::uint64_t value) noexcept {
    state_ = (state_ ^ value) * 0x9e3779b97f4a7c15U;
    state_ ^= state_ >> 32;
  }
  void add(std::int32_t value) noexcept { add(std::uint64_t{static_cast<std::uint32_t>(value)}); }
  void add(bool value) noexcept { add(std::uint64_t{value ? 1U : 0U}); }
  void add(double value) noexcept { add(std::bit_cast<std::uint64_t>(value)); }

  void add(std::string_view text) noexcept {
    add(std::uint64_t{text.size()});
    for (const char c : text) add(std::uint64_t{static_cast<unsigned char>(c)});
  }

  template <class T>
  void add_first(std::int64_t count, csr_matrix_mod::array_view<const T> elements) noexcept {
    add(static_cast<std::uint64_t>(count));
    for (std::int64_t k = 1; k <= count; ++k) add(elements(k));
  }
  template <class T>
  void add_all(csr_matrix_mod::array_view<const T> elements) noexcept {
    add_first(elements.length(), elements);
  }

  // All that a routine promises of a record: sizes, kind, capacity, row starts, entries.
  void add(const csr_matrix_mod::csr_matrix& mat) noexcept {
    add(mat.n);
    add(mat.m);
    add(mat.type == csr_matrix_mod::matrix_structure_only);
    add(static_cast<std::uint64_t>(mat.ja.length()));
    add(static_cast<std::uint64_t>(mat.a.length()));
    if (mat.n < 0) return;
    const std::int32_t nnz = csr_matrix_num_nz(mat);
    add_first<std::int32_t>(std::int64_t{mat.n} + 1, mat.ia);
    add_first<std::int32_t>(nnz, mat.ja);
    if (mat.type == csr_matrix_mod::matrix_real) add_first<double>(nnz, mat.a);
  }

  [[nodiscard]] std::uint64_t value() const noexcept { return state_; }

 private:
  std::uint64_t state_ = 0x243f6a8885a308d3U;
};

}  // namespace same_bits
