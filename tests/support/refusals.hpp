// SPDX-License-Identifier: MIT
// A call that meets every shortage of storage in turn.
#pragma once

#include "observe.hpp"
#include "refuse.hpp"

#include <csr_matrix_mod/csr_matrix.hpp>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tests {

// For k = 0, 1, ... the k-th request of `call` is refused, until it makes fewer. Each time
// `prepare` makes fresh arguments and `check` looks at what a stop left of them. The stop messages
// in order of k; a refusal that is not followed by a stop fails the test.
template <class Prepare, class Call, class Check>
std::vector<std::string> refuse_each_request(Prepare prepare, Call call, Check check) {
  std::vector<std::string> stops;
  for (int k = 0;; ++k) {
    auto arguments = prepare();
    observed seen;
    {
      const refuse_allocation refused(k);
      seen = observe([&] { call(arguments); });
    }
    if (!refuse_allocation::reached()) {
      EXPECT_EQ(seen.stop, std::nullopt);
      return stops;
    }
    EXPECT_NE(seen.stop, std::nullopt) << "refusal " << k << " was not followed by a stop";
    stops.push_back(seen.stop.value_or("none"));
    check(arguments);
  }
}

// A record can be released whatever became of it.
inline void expect_releasable(csr_matrix_mod::csr_matrix& mat) {
  EXPECT_EQ(observe([&] { csr_matrix_deallocate(mat); }).stop, std::nullopt);
  EXPECT_FALSE(mat.ia.allocated());
  EXPECT_FALSE(mat.ja.allocated());
}

}  // namespace tests
