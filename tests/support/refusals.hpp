// SPDX-License-Identifier: MIT
// A call that meets every shortage of storage in turn.
#pragma once

#include "observe.hpp"
#include "refuse.hpp"

#include <csr_matrix_mod/csr_matrix.hpp>

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

namespace tests {

// A refusal that a call answers by doing the same in another way, which nobody is told.
inline const std::string no_stop = "none";

// For k = 0, 1, ... the k-th request of `call` is refused, and request number `always` besides,
// until the call makes fewer. Each time `prepare` makes fresh arguments and `check` looks at what a
// stop left of them. The stop messages in order of k.
template <class Prepare, class Call, class Check>
std::vector<std::string> stops_by_request(Prepare prepare, Call call, Check check,
                                          int always = refuse_allocation::none) {
  std::vector<std::string> stops;
  for (int k = 0;; ++k) {
    auto arguments = prepare();
    observed seen;
    {
      const refuse_allocation refused(k, always);
      seen = observe([&] { call(arguments); });
    }
    if (!refuse_allocation::reached()) {
      EXPECT_EQ(seen.stop, std::nullopt);
      return stops;
    }
    stops.push_back(seen.stop.value_or(no_stop));
    if (seen.stop) check(arguments);
  }
}

// As above; a refusal that is not followed by a stop fails the test.
template <class Prepare, class Call, class Check>
std::vector<std::string> refuse_each_request(Prepare prepare, Call call, Check check) {
  std::vector<std::string> stops = stops_by_request(prepare, call, check);
  for (std::size_t k = 0; k < stops.size(); ++k)
    EXPECT_NE(stops[k], no_stop) << "refusal " << k << " was not followed by a stop";
  return stops;
}

// A record can be released whatever became of it.
inline void expect_releasable(csr_matrix_mod::csr_matrix& mat) {
  EXPECT_EQ(observe([&] { csr_matrix_deallocate(mat); }).stop, std::nullopt);
  EXPECT_FALSE(mat.ia.allocated());
  EXPECT_FALSE(mat.ja.allocated());
}

}  // namespace tests
