// SPDX-License-Identifier: MIT
// Temporary storage of one call, released on every way out, a throwing stop handler included.
#pragma once

#include "memory.hpp"
#include "stop.hpp"

#include <algorithm>
#include <cassert>
#include <cstdint>
#include <memory>
#include <string_view>

namespace csr_matrix_mod {

// Zeros that the system hands out, which cost nothing until they are touched, or storage that is
// filled with them: where all of it is used that is faster, for it may stand on large pages.
enum class contents { undefined, zero, filled_with_zero };

// 1-based, of `length` elements (0 when negative).
template <class T>
class scratch {
 public:
  scratch() noexcept = default;

  // Stops with "allocation error in ROUTINE" when there is no storage to be had.
  scratch(std::int64_t length, contents initial, std::string_view routine) {
    if (!allocate(length, initial)) stop_without_storage(routine);
  }

  // False when there is no storage to be had; then there is none at all, whatever there was.
  [[nodiscard]] bool allocate(std::int64_t length, contents initial) noexcept {
    length_ = std::max<std::int64_t>(length, 0);
    const std::size_t bytes = detail::bytes_of<T>(length_);
    storage_.reset(static_cast<T*>(initial == contents::zero ? detail::obtain_zeroed(bytes)
                                                             : detail::obtain(bytes)));
    if (initial == contents::filled_with_zero) std::fill(begin(), end(), T{});
    return storage_ != nullptr;
  }

  // Room for so many elements at least. Where there is less, twice of it or so many, whichever is
  // more, and what it held is lost. False as above.
  [[nodiscard]] bool make_room(std::int64_t elements) noexcept {
    return elements <= length() || allocate(std::max(elements, 2 * length()), contents::undefined);
  }

  [[nodiscard]] T& operator()(std::int64_t i) noexcept {
    assert(1 <= i && i <= length_);
    return storage_.get()[i - 1];
  }

  [[nodiscard]] T* data() noexcept { return storage_.get(); }
  [[nodiscard]] const T* data() const noexcept { return storage_.get(); }
  [[nodiscard]] T* begin() noexcept { return data(); }
  [[nodiscard]] T* end() noexcept { return data() + length(); }
  [[nodiscard]] const T* begin() const noexcept { return data(); }
  [[nodiscard]] const T* end() const noexcept { return data() + length(); }
  [[nodiscard]] std::int64_t length() const noexcept { return storage_ != nullptr ? length_ : 0; }

 private:
  struct giver {
    void operator()(T* block) const noexcept { detail::give_back(block); }
  };

  std::unique_ptr<T, giver> storage_;
  std::int64_t length_ = 0;  // that was asked for last, given or not
};

}  // namespace csr_matrix_mod
