// SPDX-License-Identifier: MIT
// What the tests of this chapter share.
#pragma once

#include "../support/generators.hpp"
#include "../support/matrices.hpp"
#include "../support/observe.hpp"
#include "../support/refuse.hpp"

#include <csr_matrix_mod/products.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tests {

// What a product without entries writes on its way to one slot.
inline const std::string no_entries_warning =
    " try to allocating            0  nonzeros in csr_matrix_allocate!\nset to 1\n";

inline std::int64_t entries_in(const entry_rows& rows) {
  std::int64_t count = 0;
  for (const auto& row : rows) count += static_cast<std::int64_t>(row.size());
  return count;
}

// The capacity is exact, and there is one slot where there is no entry.
inline std::int64_t exact_capacity(const csr_matrix& mat) {
  return std::max(csr_matrix_mod::csr_matrix_num_nz(mat), 1);
}

inline void expect_exact_capacity(const csr_matrix& mat) {
  EXPECT_EQ(mat.ia.length(), std::int64_t{mat.n} + 1);
  EXPECT_EQ(mat.ja.length(), exact_capacity(mat));
  if (mat.type == csr_matrix_mod::matrix_real) {
    EXPECT_EQ(mat.a.length(), exact_capacity(mat));
  } else {
    EXPECT_FALSE(mat.a.allocated());
  }
}

// A marker and room for the most entries that a product may have are asked for first. Where one is
// refused the product takes two passes instead, and nobody is told.
inline const std::optional<std::string> two_passes = std::nullopt;

// Refuses the first request of `call`, then the second, and so on: the k-th refusal ends in the
// k-th of `stops`, there are no further requests, and the result can be released each time.
// Request number `always` is refused every time besides; the first `passed` requests are not tried.
inline void expect_refusals(const std::vector<std::optional<std::string>>& stops,
                            const std::function<void(csr_matrix& result)>& call,
                            int always = refuse_allocation::none, int passed = 0) {
  for (std::size_t k = 0; k <= stops.size(); ++k) {
    csr_matrix result;
    const refuse_allocation refuse(static_cast<int>(k) + passed, always);
    const observed seen = observe([&] { call(result); });
    ASSERT_EQ(refuse.reached(), k < stops.size()) << "request " << k;
    EXPECT_EQ(seen.stop, k < stops.size() ? stops[k] : std::nullopt) << "request " << k;
    EXPECT_EQ(seen.output, "");
    EXPECT_EQ(observe([&] { csr_matrix_deallocate(result); }).stop, std::nullopt);
    EXPECT_FALSE(result.ia.allocated() || result.ja.allocated() || result.a.allocated());
  }
}

// Weights for the vertices that edges of `left` lead to, and for no vertex behind the last of them.
inline std::vector<std::int32_t> weights_for(const csr_matrix& left) {
  const std::int32_t* const columns = left.ja.data();
  const std::int32_t nnz = csr_matrix_num_nz(left);
  const std::int32_t last = nnz > 0 ? *std::max_element(columns, columns + nnz) : 0;
  std::vector<std::int32_t> weights;
  for (std::int64_t j = 1; j <= last; ++j)
    weights.push_back(static_cast<std::int32_t>(j * j % 97) - 48);
  return weights;
}

// Rows for a property, with the record made of them: n by m, spare capacity or none.
struct any_operand {
  any_operand(std::int32_t n, std::int32_t m)
      : rows(*any_rows(n, m)), mat(real_matrix(m, rows, *rc::gen::inRange<std::int32_t>(0, 3))) {}

  entry_rows rows;
  csr_matrix mat;
};

}  // namespace tests
