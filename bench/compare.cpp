// SPDX-License-Identifier: MIT
#include "compare.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <numeric>
#include <vector>

namespace bench {

namespace {

template <class T>
bool same_elements(const array<T>& left, const array<T>& right) {
  return left.size() == right.size() &&
         (left.empty() || std::memcmp(left.data(), right.data(), left.size() * sizeof(T)) == 0);
}

double largest(const array<double>& values) {
  return std::accumulate(values.begin(), values.end(), 0.0,
                         [](double most, double value) { return std::max(most, std::abs(value)); });
}

struct entry {
  std::int32_t column;
  double value;
};

void sorted_row(const answer& of, std::size_t i, std::vector<entry>& row) {
  row.clear();
  for (auto k = static_cast<std::size_t>(of.starts[i] - 1);
       k < static_cast<std::size_t>(of.starts[i + 1] - 1); ++k)
    row.push_back({of.columns[k], of.values.empty() ? 0.0 : of.values[k]});
  std::stable_sort(row.begin(), row.end(), [](const entry& left, const entry& right) {
    return left.column < right.column;
  });
}

// Both answers have the same row starts.
verdict compare_rows(const answer& expected, const answer& found) {
  const double tolerance = 1e-12 * largest(expected.values);
  verdict so_far = verdict::reordered;
  std::vector<entry> left;
  std::vector<entry> right;
  for (std::size_t i = 0; i + 1 < expected.starts.size(); ++i) {
    sorted_row(expected, i, left);
    sorted_row(found, i, right);
    for (std::size_t k = 0; k < left.size(); ++k) {
      if (left[k].column != right[k].column) return verdict::refused;
      const double difference = std::abs(left[k].value - right[k].value);
      if (std::bit_cast<std::uint64_t>(left[k].value) ==
          std::bit_cast<std::uint64_t>(right[k].value))
        continue;
      if (!(difference <= tolerance)) return verdict::refused;
      so_far = verdict::rounded;
    }
  }
  return so_far;
}

}  // namespace

const char* name(verdict found) {
  switch (found) {
    case verdict::same_bits:
      return "same bits";
    case verdict::reordered:
      return "reordered";
    case verdict::rounded:
      return "rounded";
    case verdict::refused:
      break;
  }
  return "refused";
}

verdict compare(const answer& expected, const answer& found) {
  if (expected.n != found.n || expected.m != found.m ||
      !same_elements(expected.starts, found.starts) ||
      expected.columns.size() != found.columns.size() ||
      expected.values.size() != found.values.size() || !same_elements(expected.bytes, found.bytes))
    return verdict::refused;
  if (same_elements(expected.columns, found.columns) &&
      same_elements(expected.values, found.values))
    return verdict::same_bits;
  if (!expected.starts.empty()) return compare_rows(expected, found);

  // A vector: nothing can be reordered.
  if (!same_elements(expected.columns, found.columns)) return verdict::refused;
  const double tolerance = 1e-12 * largest(expected.values);
  const bool close =
      std::equal(expected.values.begin(), expected.values.end(), found.values.begin(),
                 [=](double left, double right) { return std::abs(left - right) <= tolerance; });
  return close ? verdict::rounded : verdict::refused;
}

}  // namespace bench
