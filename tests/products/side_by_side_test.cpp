// SPDX-License-Identifier: MIT
// Rows side by side in vector registers of every width, against loops over single elements.
#include "../../src/products/side_by_side.hpp"

#include "../support/registers.hpp"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <numeric>
#include <vector>

using namespace csr_matrix_mod::products;
using tests::in_registers_of_every_width;

namespace {

std::vector<double> numbers(std::int32_t length, double step) {
  std::vector<double> made(static_cast<std::size_t>(length));
  for (std::size_t k = 0; k < made.size(); ++k)
    made[k] = 1.0 / (1.0 + step * static_cast<double>(k));
  return made;
}

TEST(SideBySide, RowsAreTurnedIntoColumnsAndNothingElseIsWritten) {
  constexpr double untouched = -7.0;
  in_registers_of_every_width([&] {
    for (const std::int32_t number : {1, 2, 3, 4, 5, 7, 8, 13, 16, 17, 18, 46})
      for (std::int32_t width = 0; width <= 33; ++width) {
        const std::int32_t stride = number + 3;
        const std::vector<double> rows = numbers(number * width, 1.0);
        std::vector<double> turned(static_cast<std::size_t>(stride * width), untouched);
        in_widest_registers().turn(rows.data(), number, width, turned.data(), stride);
        for (std::int32_t c = 0; c < width; ++c)
          for (std::int32_t r = 0; r < stride; ++r)
            ASSERT_EQ(turned[static_cast<std::size_t>(c * stride + r)],
                      r < number ? rows[static_cast<std::size_t>(r * width + c)] : untouched)
                << number << " rows of " << width << ", row " << r << " column " << c;
      }
  });
}

TEST(SideBySide, ColumnsAreMovedByOneNumber) {
  in_registers_of_every_width([&] {
    for (std::int32_t number = 0; number <= 40; ++number) {
      std::vector<std::int32_t> from(static_cast<std::size_t>(number));
      std::iota(from.begin(), from.end(), -20);
      std::vector<std::int32_t> to(static_cast<std::size_t>(number) + 1, 99);
      in_widest_registers().move(from.data(), number, 1000, to.data());
      for (std::int32_t t = 0; t < number; ++t) ASSERT_EQ(to[static_cast<std::size_t>(t)], 980 + t);
      ASSERT_EQ(to.back(), 99);
    }
  });
}

// Terms whose sum depends on their order: each place has another number of them.
TEST(SideBySide, SumsTakeTheirTermsInTheirOrder) {
  constexpr std::int32_t places = 9;
  const std::vector<double> left = numbers(20 * rows_at_once, 0.37);
  const std::vector<double> right = numbers(400, -3.1);
  std::vector<std::int32_t> terms;
  std::vector<std::int32_t> ends;
  for (std::int32_t q = 0; q < places; ++q) {
    for (std::int32_t t = 0; t <= 2 * q; ++t) {
      terms.push_back((7 * q + 3 * t) % 20 * rows_at_once);
      terms.push_back((31 * q + 17 * t) % 380);
    }
    ends.push_back(static_cast<std::int32_t>(terms.size()));
  }
  in_registers_of_every_width([&] {
    std::vector<double> sums(std::size_t{places} * rows_at_once);
    in_widest_registers().sum(terms.data(), ends.data(), places, left.data(), right.data(),
                              sums.data());
    std::size_t term = 0;
    for (std::size_t q = 0; q < places; ++q)
      for (std::size_t x = 0; x < rows_at_once; ++x) {
        const auto product = [&](std::size_t t) {
          return left[static_cast<std::size_t>(terms[t]) + x] *
                 right[static_cast<std::size_t>(terms[t + 1]) + x];
        };
        term = q == 0 ? 0 : static_cast<std::size_t>(ends[q - 1]);
        double sum = product(term);
        for (term += 2; term < static_cast<std::size_t>(ends[q]); term += 2)
          sum = product(term) + sum;
        ASSERT_EQ(std::bit_cast<std::uint64_t>(sums[q * rows_at_once + x]),
                  std::bit_cast<std::uint64_t>(sum))
            << "place " << q << ", row " << x;
      }
  });
}

}  // namespace
