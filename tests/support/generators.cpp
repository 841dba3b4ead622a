// SPDX-License-Identifier: MIT
#include "generators.hpp"

#include <algorithm>
#include <cmath>

namespace tests {

rc::Gen<std::int32_t> any_size() {
  return rc::gen::weightedOneOf<std::int32_t>(
      {{4, rc::gen::inRange<std::int32_t>(0, 5)}, {6, rc::gen::inRange<std::int32_t>(5, 13)}});
}

rc::Gen<double> any_value() {
  const auto mantissa =
      rc::gen::inRange<std::int64_t>(-(std::int64_t{1} << 52), std::int64_t{1} << 52);
  const auto scaled = rc::gen::map(
      rc::gen::pair(mantissa, rc::gen::inRange(-26, 27)), [](std::pair<std::int64_t, int> parts) {
        return std::ldexp(static_cast<double>(parts.first), parts.second - 52);
      });
  const auto integers = rc::gen::map(rc::gen::inRange(-3, 4), [](int v) { return double(v); });
  return rc::gen::weightedOneOf<double>(
      {{6, scaled}, {3, integers}, {1, rc::gen::element(0.0, -0.0)}});
}

rc::Gen<entry_rows> any_rows(std::int32_t n, std::int32_t m) {
  const auto count = static_cast<std::size_t>(std::max(n, 0));
  if (m <= 0) return rc::gen::just(entry_rows(count));
  const auto one = rc::gen::construct<entry>(rc::gen::inRange<std::int32_t>(1, m + 1), any_value());
  const auto short_row = rc::gen::mapcat(rc::gen::inRange<std::size_t>(0, 7), [one](std::size_t k) {
    return rc::gen::container<std::vector<entry>>(k, one);
  });
  const auto dense_row = rc::gen::map(
      rc::gen::container<std::vector<double>>(static_cast<std::size_t>(m), any_value()),
      [](const std::vector<double>& values) {
        std::vector<entry> row;
        for (const double v : values) row.push_back({static_cast<std::int32_t>(row.size()) + 1, v});
        return row;
      });
  const auto row = rc::gen::weightedOneOf<std::vector<entry>>(
      {{2, rc::gen::just(std::vector<entry>{})}, {7, short_row}, {1, dense_row}});
  return rc::gen::container<entry_rows>(count, row);
}

rc::Gen<std::vector<double>> any_vector(std::int32_t length) {
  return rc::gen::container<std::vector<double>>(static_cast<std::size_t>(length), any_value());
}

}  // namespace tests
