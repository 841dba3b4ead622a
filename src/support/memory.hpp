// SPDX-License-Identifier: MIT
// Where all storage of the library comes from. `detail::obtain` and `detail::give_back` are
// declared beside `array_ref`, which needs them in its header.
#pragma once

#include <csr_matrix_mod/support.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <utility>

namespace csr_matrix_mod::detail {

// The bytes of so many elements (none when negative); the largest size where none can tell them,
// which nobody has.
template <class T>
[[nodiscard]] constexpr std::size_t bytes_of(std::int64_t elements) noexcept {
  constexpr std::size_t most = std::numeric_limits<std::size_t>::max();
  const auto count = static_cast<std::uint64_t>(std::max<std::int64_t>(elements, 0));
  return count > most / sizeof(T) ? most : static_cast<std::size_t>(count) * sizeof(T);
}

// As `obtain`, with every byte zero: the system hands out zero pages without touching them.
[[nodiscard]] void* obtain_zeroed(std::size_t bytes) noexcept;

// `block` with another number of bytes, possibly elsewhere, the leading ones kept; null, and
// `block` as it was, if there is no storage to be had. Large blocks move page by page, not byte by
// byte.
[[nodiscard]] void* resize_block(void* block, std::size_t bytes) noexcept;

// Would the system map pages for a block of so many bytes, instead of serving it from the heap?
[[nodiscard]] bool maps_pages_for(std::size_t bytes) noexcept;

struct storage_access {
  // Storage of exactly `length` elements, the leading ones kept. In place when no other reference
  // looks on; other references keep what they have. False, and all as it was, if there is none.
  template <class T>
  [[nodiscard]] static bool resize(array_ref<T>& array, std::int64_t length) noexcept {
    auto* const owner = std::get_deleter<block_owner>(array.storage_);
    if (owner == nullptr || array.storage_.use_count() != 1) return copy(array, length);
    void* const moved = resize_block(owner->block, bytes_of<T>(length));
    if (moved == nullptr) return false;
    owner->block = moved;
    array.storage_ = std::shared_ptr<T[]>(array.storage_, static_cast<T*>(moved));
    array.length_ = std::max<std::int64_t>(length, 0);
    return true;
  }

 private:
  template <class T>
  static bool copy(array_ref<T>& array, std::int64_t length) noexcept {
    array_ref<T> other;
    if (!other.allocate(length)) return false;
    std::copy_n(array.data(), std::min(array.length(), other.length()), other.data());
    array = std::move(other);
    return true;
  }
};

// Asked before each request when set; true refuses it. Tests fail the k-th allocation through this.
using refusal = bool (*)(std::size_t bytes) noexcept;
void set_refusal(refusal refuse) noexcept;

}  // namespace csr_matrix_mod::detail
