// SPDX-License-Identifier: MIT
// Arrays, stops and the small routines that every other chapter stands on.
//
//   array_ref, array_view      storage that may be shared, and a window on elements of someone else
//   set_stop_handler           what happens instead of leaving the program with a message
//   iexpand1, expand1          new storage of another length, contents kept
//   quicksort                  keys in order, and the permutation that did it
//   digit, int2str             a number as text of a given width
#pragma once

#include <algorithm>
#include <cassert>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <new>
#include <ranges>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace csr_matrix_mod {

namespace detail {

// Storage of at least `bytes` bytes with undefined contents, or null if there is none to be had.
[[nodiscard]] void* obtain(std::size_t bytes) noexcept;
void give_back(void* block) noexcept;

// Gives a block back with its last reference, wherever a change of length has moved it to.
struct block_owner {
  void* block;
  void operator()(const void* /*as_handed_over*/) const noexcept { give_back(block); }
};

// Changes the length of a storage, the leading elements kept (src/support/memory.hpp).
struct storage_access;

}  // namespace detail

/// A counted, length-aware, 1-based reference to storage that may be shared.
///
/// It is null, owning (the only reference to its storage) or aliasing (another reference to the
/// same storage exists); the count tells, no flag does. Storage goes with its last reference, so
/// replacing a reference is always safe. It moves, but a second reference is asked for by name:
/// `alias`. Constness is deep: a const reference gives out const elements only.
template <class T>
class array_ref {
  static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>,
                "storage is never initialised element by element");

 public:
  using value_type = T;

  array_ref() noexcept = default;
  array_ref(array_ref&& other) noexcept
      : storage_(std::move(other.storage_)), length_(std::exchange(other.length_, 0)) {}
  array_ref& operator=(array_ref&& other) noexcept {
    array_ref taken(std::move(other));
    storage_.swap(taken.storage_);
    std::swap(length_, taken.length_);
    return *this;
  }
  array_ref(const array_ref&) = delete;
  array_ref& operator=(const array_ref&) = delete;
  ~array_ref() = default;

  /// Refers to new storage of `length` elements (0 when negative) with undefined contents.
  /// False if there is none to be had; the reference is then unchanged.
  [[nodiscard]] bool allocate(std::int64_t length) noexcept {
    const auto elements = static_cast<std::uint64_t>(std::max<std::int64_t>(length, 0));
    if (elements > std::numeric_limits<std::size_t>::max() / sizeof(T)) return false;
    void* const block = detail::obtain(static_cast<std::size_t>(elements) * sizeof(T));
    if (block == nullptr) return false;
    try {
      storage_ = std::shared_ptr<T[]>(static_cast<T*>(block), detail::block_owner{block});
    } catch (const std::bad_alloc&) {  // no room for the count: the block is already given back
      return false;
    }
    length_ = static_cast<std::int64_t>(elements);
    return true;
  }

  /// Drops the reference. False if it was null.
  bool release() noexcept {
    const bool held = allocated();
    storage_.reset();
    length_ = 0;
    return held;
  }

  /// Not null. Storage of no elements is storage too, whatever its address, so the count is asked.
  [[nodiscard]] bool allocated() const noexcept { return storage_.use_count() != 0; }

  [[nodiscard]] std::int64_t length() const noexcept { return length_; }

  /// Another reference to the same storage.
  [[nodiscard]] array_ref alias() const noexcept {
    array_ref other;
    other.storage_ = storage_;
    other.length_ = length_;
    return other;
  }

  /// Refers to `length` elements of the caller, who keeps them alive; nothing is copied or freed.
  [[nodiscard]] static array_ref wrap(T* data, std::int64_t length) {
    array_ref other;
    other.storage_ = std::shared_ptr<T[]>(data, [](T*) {});
    other.length_ = length;
    return other;
  }

  /// Element i, counted from 1.
  [[nodiscard]] T& operator()(std::int64_t i) noexcept {
    assert(1 <= i && i <= length_);
    return storage_.get()[i - 1];
  }
  [[nodiscard]] const T& operator()(std::int64_t i) const noexcept {
    assert(1 <= i && i <= length_);
    return storage_.get()[i - 1];
  }

  [[nodiscard]] T* data() noexcept { return storage_.get(); }
  [[nodiscard]] const T* data() const noexcept { return storage_.get(); }
  [[nodiscard]] T* begin() noexcept { return data(); }
  [[nodiscard]] const T* begin() const noexcept { return data(); }
  [[nodiscard]] T* end() noexcept { return data() + length_; }
  [[nodiscard]] const T* end() const noexcept { return data() + length_; }

 private:
  friend struct detail::storage_access;

  std::shared_ptr<T[]> storage_;
  std::int64_t length_ = 0;
};

/// A 1-based window on elements that someone else owns: a pointer and a length.
///
/// It is made from a pointer and a length, from an `array_ref` or from any contiguous range, and
/// must not outlive the elements. A view to be written is not made from a temporary.
template <class T>
class array_view {
 public:
  using value_type = std::remove_const_t<T>;

  constexpr array_view() noexcept = default;
  constexpr array_view(T* data, std::int64_t length) noexcept : data_(data), length_(length) {}

  template <class Range>
  requires(!std::same_as<std::remove_cvref_t<Range>, array_view> &&
           std::ranges::contiguous_range<Range> && std::ranges::sized_range<Range> &&
           (std::is_const_v<T> || std::ranges::borrowed_range<Range>)&&std::is_convertible_v<
               std::remove_reference_t<std::ranges::range_reference_t<Range>> (*)[],
               T (*)[]>) constexpr array_view(Range&& range) noexcept  // NOLINT: a view is made
                                                                       // where a range is passed
      : data_(std::ranges::data(range)),
        length_(static_cast<std::int64_t>(std::ranges::size(range))) {}

  /// Element i, counted from 1.
  [[nodiscard]] constexpr T& operator()(std::int64_t i) const noexcept {
    assert(1 <= i && i <= length_);
    return data_[i - 1];
  }

  [[nodiscard]] constexpr std::int64_t length() const noexcept { return length_; }
  [[nodiscard]] constexpr T* data() const noexcept { return data_; }
  [[nodiscard]] constexpr T* begin() const noexcept { return data_; }
  [[nodiscard]] constexpr T* end() const noexcept { return data_ + length_; }

 private:
  T* data_ = nullptr;
  std::int64_t length_ = 0;
};

/// Called with the stop message instead of leaving the program. It may throw, or save work and
/// leave; if it returns, the program stops as it does without a handler: standard output and the
/// open units are flushed, the message is one line on standard error, the exit status is 1, and no
/// destructor or `atexit` function runs.
using stop_handler = void (*)(std::string_view message);

/// Sets the handler of every stop of the library, in all threads.
/// Requires: nothing; null restores the default.
/// Ensures: returns the handler before, null if there was none.
/// Cost: constant.
/// Stops: never.
stop_handler set_stop_handler(stop_handler handler) noexcept;

/// Gives `array` new storage of exactly `new_length` elements, 0 if negative, and keeps the leading
/// ones.
/// Requires: `array` holds storage.
/// Ensures: returns 0; the first min(old, new) elements are kept, further ones are undefined; other
/// references to the old storage keep it. Returns 1, and leaves `array` as it was, if there is no
/// storage to be had.
/// Cost: the elements kept.
/// Stops: never.
std::int32_t iexpand1(array_ref<std::int32_t>& array, std::int32_t new_length);

/// As `iexpand1`, for values.
/// Requires: `array` holds storage.
/// Ensures: as `iexpand1`.
/// Cost: the elements kept.
/// Stops: never.
std::int32_t expand1(array_ref<double>& array, std::int32_t new_length);

/// Sorts `keys` in ascending order; perm(k) is the old position of the key now at position k.
/// Requires: `perm` is as long as `keys`; it need not be initialised.
/// Ensures: every element of `perm` is written; equal keys keep their order.
/// Cost: O(k log k) for k keys; nothing is allocated.
/// Stops: never.
void quicksort(array_view<std::int32_t> keys, array_view<std::int32_t> perm);

/// The number of decimal digits of `value`.
/// Requires: nothing.
/// Ensures: 1 for 1 to 9, 2 for 10 to 99, and so on; 1 for 0 and below.
/// Cost: constant.
/// Stops: never.
std::int32_t digit(std::int32_t value);

/// The decimal text of `value` in exactly `nd` characters.
/// Requires: nothing.
/// Ensures: right-justified with leading blanks; all asterisks if the number does not fit; empty if
/// `nd` is 0 or less.
/// Cost: linear in `nd`.
/// Stops: never.
std::string int2str(std::int32_t value, std::int32_t nd);

}  // namespace csr_matrix_mod

/// A view stays valid when the view object itself goes.
template <class T>
inline constexpr bool std::ranges::enable_borrowed_range<csr_matrix_mod::array_view<T>> = true;
