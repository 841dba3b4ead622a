// SPDX-License-Identifier: MIT
// Matrices with a symmetric pattern, and with one that nearly is.
#pragma once

#include "generators.hpp"
#include "matrices.hpp"

#include <rapidcheck.h>

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <utility>
#include <vector>

namespace tests {

// Rows that ascend, with an entry (i, j) wherever there is one (j, i), of another value.
inline entry_rows mirrored_rows(std::int32_t n) {
  const auto lower = *any_rows(n, n);
  entry_rows rows(static_cast<std::size_t>(n));
  for (std::int32_t i = 1; i <= n; ++i)
    for (std::int32_t j = 1; j <= n; ++j) {
      const auto& row = lower[static_cast<std::size_t>(std::max(i, j) - 1)];
      const auto found = std::find_if(row.begin(), row.end(),
                                      [&](const entry& e) { return e.column == std::min(i, j); });
      if (found != row.end())
        rows[static_cast<std::size_t>(i - 1)].push_back({j, found->value + 0.1 * i});
    }
  return rows;
}

// Rows that ascend, of twice as many entries as `pairs`, in columns all over, with an entry (i, j)
// wherever there is one (j, i).
inline entry_rows mirrored_all_over(std::int32_t n, std::int32_t pairs) {
  std::vector<std::int32_t> place(static_cast<std::size_t>(n));
  std::iota(place.begin(), place.end(), 1);
  std::int64_t walk = 1;
  for (std::size_t i = place.size() - 1; i > 0; --i) {
    walk = walk * 48271 % 2147483647;
    std::swap(place[i], place[static_cast<std::size_t>(walk) % (i + 1)]);
  }
  entry_rows rows(place.size());
  for (std::size_t i = 0; i < place.size(); ++i)
    for (std::int32_t k = 1; k <= pairs; ++k) {
      const std::int32_t one = place[i];
      const std::int32_t other = place[(i + static_cast<std::size_t>(k)) % place.size()];
      rows[static_cast<std::size_t>(one - 1)].push_back({other, one + 0.1 * k});
      rows[static_cast<std::size_t>(other - 1)].push_back({one, one - 0.1 * k});
    }
  for (auto& row : rows)
    std::sort(row.begin(), row.end(),
              [](const entry& left, const entry& right) { return left.column < right.column; });
  return rows;
}

// Rows that ascend, with every column as near to the diagonal as `reach`.
inline entry_rows mirrored_band(std::int32_t n, std::int32_t reach) {
  entry_rows rows(static_cast<std::size_t>(n));
  for (std::int32_t i = 1; i <= n; ++i)
    for (std::int32_t j = std::max(i - reach, 1); j <= std::min(i + reach, n); ++j)
      rows[static_cast<std::size_t>(i - 1)].push_back({j, i + 0.25 * (j - i)});
  return rows;
}

// One entry more or less, one side of the diagonal missing, or the entries of a row in another
// order.
inline void spoil(entry_rows& rows) {
  const auto n = static_cast<std::int32_t>(rows.size());
  auto& row = rows[static_cast<std::size_t>(*rc::gen::inRange<std::int32_t>(0, n))];
  switch (*rc::gen::inRange(0, 5)) {
    case 0:
      row.insert(row.begin(), {*rc::gen::inRange<std::int32_t>(1, n + 1), 0.5});
      break;
    case 1:
      std::reverse(row.begin(), row.end());
      break;
    case 2:
      if (!row.empty()) row.pop_back();
      break;
    case 3:
      for (std::int32_t i = 1; i <= n; ++i)
        std::erase_if(rows[static_cast<std::size_t>(i - 1)],
                      [i](const entry& e) { return e.column > i; });
      break;
    default:
      for (std::int32_t i = 1; i <= n; ++i)
        std::erase_if(rows[static_cast<std::size_t>(i - 1)],
                      [i](const entry& e) { return e.column < i; });
  }
}

}  // namespace tests
