// SPDX-License-Identifier: MIT
#include "dense.hpp"

#include <algorithm>

namespace tests::dense {

namespace {

// Rows are written down in vectors, which count from 0.
template <class Rows>
const auto& row(const Rows& rows, std::int32_t i) {
  return rows.at(static_cast<std::size_t>(i - 1));
}

template <class Rows>
std::int32_t count(const Rows& rows) {
  return static_cast<std::int32_t>(rows.size());
}

// The representative of `sum` modulo 2^32 that a 32-bit integer can hold.
std::int32_t wrapped(std::int64_t sum) {
  const std::int64_t period = std::int64_t{1} << 32;
  std::int64_t rest = sum % period;
  if (rest >= period / 2) rest -= period;
  if (rest < -period / 2) rest += period;
  return static_cast<std::int32_t>(rest);
}

std::vector<std::int32_t> wrapped(const std::vector<std::int64_t>& sums) {
  std::vector<std::int32_t> result;
  for (const std::int64_t sum : sums) result.push_back(wrapped(sum));
  return result;
}

}  // namespace

matrix::matrix(std::int32_t n, std::int32_t m)
    : n_(n),
      m_(std::max(m, 0)),
      values_(static_cast<std::size_t>(n_) * static_cast<std::size_t>(m_)),
      discovered_(static_cast<std::size_t>(n_)) {}

std::size_t matrix::place(std::int32_t i, std::int32_t j) const {
  return static_cast<std::size_t>(i - 1) * static_cast<std::size_t>(m_) +
         static_cast<std::size_t>(j - 1);
}

std::optional<double> matrix::at(std::int32_t i, std::int32_t j) const {
  return values_.at(place(i, j));
}

void matrix::set(std::int32_t i, std::int32_t j, double v) {
  if (!at(i, j)) discovered_.at(static_cast<std::size_t>(i - 1)).push_back(j);
  values_.at(place(i, j)) = v;
}

void matrix::add(std::int32_t i, std::int32_t j, double v) {
  const std::optional<double> before = at(i, j);
  set(i, j, before ? *before + v : v);
}

entry_rows matrix::rows() const {
  entry_rows result;
  for (std::int32_t i = 1; i <= n_; ++i) {
    result.emplace_back();
    for (const std::int32_t j : row(discovered_, i)) result.back().push_back({j, *at(i, j)});
  }
  return result;
}

entry_rows product(const entry_rows& left, const entry_rows& right, std::int32_t m, diagonal kept) {
  matrix result(count(left), m);
  for (std::int32_t i = 1; i <= count(left); ++i)
    for (const entry& over : row(left, i))
      for (const entry& along : row(right, over.column))
        if (kept == diagonal::kept || along.column != i)
          result.add(i, along.column, over.value * along.value);
  return result.rows();
}

entry_rows graph_product(const column_rows& left, const column_rows& right, std::int32_t m,
                         const std::vector<std::int32_t>& weights) {
  matrix result(count(left), m);
  for (std::int32_t i = 1; i <= count(left); ++i)
    for (const std::int32_t middle : row(left, i))
      for (const std::int32_t end : row(right, middle))
        if (end != i) result.add(i, end, static_cast<double>(row(weights, middle)));
  return result.rows();
}

entry_rows transpose(const entry_rows& rows, std::int32_t m) {
  entry_rows result(static_cast<std::size_t>(m));
  for (std::int32_t i = 1; i <= count(rows); ++i)
    for (const entry& e : row(rows, i))
      result.at(static_cast<std::size_t>(e.column - 1)).push_back({i, e.value});
  return result;
}

entry_rows sum(const entry_rows& left, const entry_rows& right, std::int32_t m) {
  matrix result(count(left), m);
  for (const entry_rows* operand : {&left, &right})
    for (std::int32_t i = 1; i <= count(*operand); ++i)
      for (const entry& e : row(*operand, i)) result.add(i, e.column, e.value);
  return result.rows();
}

entry_rows union_nodiag(const entry_rows& left, const entry_rows& right, std::int32_t m) {
  matrix result(count(left), m);
  for (const entry_rows* operand : {&left, &right})
    for (std::int32_t i = 1; i <= count(*operand); ++i)
      for (const entry& e : row(*operand, i))
        if (e.column != i) result.set(i, e.column, 1.0);
  return result.rows();
}

std::vector<double> times(const entry_rows& rows, const std::vector<double>& x) {
  std::vector<double> y;
  for (const auto& entries : rows) {
    y.push_back(0.0);
    for (const entry& e : entries) y.back() += e.value * row(x, e.column);
  }
  return y;
}

std::vector<double> transpose_times(const entry_rows& rows, std::int32_t m,
                                    const std::vector<double>& x) {
  return times(transpose(rows, m), x);
}

std::vector<std::int32_t> times(const column_rows& rows, const std::vector<std::int32_t>& x) {
  std::vector<std::int64_t> y;
  for (const auto& columns : rows) {
    y.push_back(0);
    for (const std::int32_t j : columns) y.back() += row(x, j);
  }
  return wrapped(y);
}

std::vector<std::int32_t> transpose_times(const column_rows& rows, std::int32_t m,
                                          const std::vector<std::int32_t>& x) {
  std::vector<std::int64_t> y(static_cast<std::size_t>(m));
  for (std::int32_t i = 1; i <= count(rows); ++i)
    for (const std::int32_t j : row(rows, i)) y.at(static_cast<std::size_t>(j - 1)) += row(x, i);
  return wrapped(y);
}

}  // namespace tests::dense
