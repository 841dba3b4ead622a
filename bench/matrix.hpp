// SPDX-License-Identifier: MIT
// The form in which matrices pass between workloads, contestants and the comparison: plain arrays,
// columns and row starts counted from 1, no contestant's own type.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <utility>
#include <vector>

namespace bench {

// Elements stay undefined until they are written: filling memory is what is measured.
template <class T>
struct undefined_elements : std::allocator<T> {
  undefined_elements() noexcept = default;
  template <class U>
  undefined_elements(const undefined_elements<U>& /*stateless*/) noexcept {}  // NOLINT: converts
  template <class U>
  struct rebind {
    using other = undefined_elements<U>;
  };
  template <class U>
  void construct(U* element) noexcept {
    ::new (static_cast<void*>(element)) U;
  }
  template <class U, class... Arguments>
  void construct(U* element, Arguments&&... arguments) {
    ::new (static_cast<void*>(element)) U(std::forward<Arguments>(arguments)...);
  }
};

template <class T>
using array = std::vector<T, undefined_elements<T>>;

struct matrix {
  std::int32_t n = 0;
  std::int32_t m = 0;
  array<std::int32_t> starts;   // n+1
  array<std::int32_t> columns;  // of each entry
  array<double> values;         // of each entry; empty for a graph

  [[nodiscard]] std::int32_t nnz() const { return starts.empty() ? 0 : starts.back() - 1; }
};

// What a contestant came to: a matrix, a vector (in `values` or `columns` alone) or a file's bytes.
struct answer : matrix {
  array<char> bytes;
};

inline answer matrix_answer(matrix result) {
  answer found;
  static_cast<matrix&>(found) = std::move(result);
  return found;
}

template <class Range>
answer vector_answer(const Range& y) {
  answer found;
  found.values.assign(y.begin(), y.end());
  return found;
}

template <class Range>
answer integer_answer(const Range& y) {
  answer found;
  found.columns.assign(y.begin(), y.end());
  return found;
}

}  // namespace bench
