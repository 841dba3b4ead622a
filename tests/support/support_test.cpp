// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>
#include <csr_matrix_mod/csr_matrix_mod.hpp>
#include "generators.hpp"
using namespace csr_matrix_mod;
RC_GTEST_PROP(Smoke, RoundTrip, ()) {
  auto n = *tests::any_size();
  auto m = *tests::any_size();
  auto r = *tests::any_rows(n, m);
  auto x = tests::real_matrix(m, r);
  RC_ASSERT(tests::entries_of(x) == r);
}
