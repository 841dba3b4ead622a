// SPDX-License-Identifier: MIT
// Copies past the cache are copies.
#include "../../src/support/past_cache.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <numeric>

namespace {

using namespace csr_matrix_mod;

// Each of some lengths, to and from each place in a line, and nothing around it.
template <class T>
void expect_copies() {
  constexpr std::size_t places = 64 / sizeof(T);
  constexpr std::size_t room = 5 * places;
  std::array<T, room> source;
  std::iota(source.begin(), source.end(), T{1});
  for (std::size_t from = 0; from < places; ++from)
    for (std::size_t to = 0; to < places; ++to)
      for (std::size_t length = 0; length < 3 * places; ++length) {
        std::array<T, room> copied{};
        std::array<T, room> expected{};
        std::copy_n(source.data() + from, length, expected.data() + to);
        copy_past_cache(source.data() + from, static_cast<std::int32_t>(length),
                        copied.data() + to);
        ASSERT_EQ(copied, expected) << from << ", " << to << ", " << length;
      }
  end_copies_past_cache();
}

TEST(PastCache, CopiesColumns) { expect_copies<std::int32_t>(); }

TEST(PastCache, CopiesValues) { expect_copies<double>(); }

}  // namespace
