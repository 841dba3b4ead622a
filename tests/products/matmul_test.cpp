// SPDX-License-Identifier: MIT
// The passes on plain arrays, as a caller without records uses them.
#include "products.hpp"

using namespace csr_matrix_mod;
using namespace tests;

namespace {

//     [ .  2 ] [ 3  . ]   [ 10  8 ]     row 1 of the left operand is stored with columns 2, 1, 1,
//     [ .  . ] [ 5  4 ]                 its values 2, 1 and -1; row 2 is empty
class MatmulPasses : public testing::Test {
 protected:
  std::vector<std::int32_t> ia{1, 4, 4}, ja{2, 1, 1};
  std::vector<double> a{2.0, 1.0, -1.0};
  std::vector<std::int32_t> ib{1, 2, 4}, jb{1, 2, 1};
  std::vector<double> b{3.0, 4.0, 5.0};

  // One element more than is needed, so that a write beyond the product shows.
  std::vector<std::int32_t> ic{-7, -7, -7, -7}, jc{-7, -7, -7};
  std::vector<double> ac{-7.0, -7.0, -7.0};
};

using ints = std::vector<std::int32_t>;
using doubles = std::vector<double>;

TEST_F(MatmulPasses, CountEachPairOnce) {
  std::int32_t nz = -1;
  expect_silent([&] { matmul_size(2, 2, ia, ja, ib, jb, nz); });
  EXPECT_EQ(nz, 2);
}

TEST_F(MatmulPasses, CountPairsOffTheDiagonal) {
  std::int32_t nz = -1;
  expect_silent([&] { matmul_size_graph(2, 2, ia, ja, ib, jb, nz); });
  EXPECT_EQ(nz, 1);
}

TEST_F(MatmulPasses, FillValuesInTheOrderOfDiscovery) {
  expect_silent([&] { matmul_normal(2, 2, ia, ja, a, ib, jb, b, ic, jc, ac); });
  EXPECT_EQ(ic, (ints{1, 3, 3, -7}));
  EXPECT_EQ(jc, (ints{2, 1, -7}));
  EXPECT_EQ(ac, (doubles{8.0, 10.0, -7.0}));
}

TEST_F(MatmulPasses, FillThePatternAlone) {
  expect_silent([&] { matmul_noval(2, 2, ia, ja, ib, jb, ic, jc); });
  EXPECT_EQ(ic, (ints{1, 3, 3, -7}));
  EXPECT_EQ(jc, (ints{2, 1, -7}));
}

TEST_F(MatmulPasses, FillNumbersOfPathsOffTheDiagonal) {
  jb = {2, 2, 1};
  expect_silent([&] { matmul_graph(2, 2, ia, ja, ib, jb, ic, jc, ac); });
  EXPECT_EQ(ic, (ints{1, 2, 2, -7}));
  EXPECT_EQ(jc, (ints{2, -7, -7}));
  EXPECT_EQ(ac, (doubles{3.0, -7.0, -7.0}));
}

TEST_F(MatmulPasses, FillWeightsOfMiddleVerticesOffTheDiagonal) {
  jb = {2, 2, 1};
  const ints wgt{10, -1};
  expect_silent([&] { matmul_wgraph(2, 2, ia, ja, ib, jb, ic, jc, ac, wgt); });
  EXPECT_EQ(ic, (ints{1, 2, 2, -7}));
  EXPECT_EQ(jc, (ints{2, -7, -7}));
  EXPECT_EQ(ac, (doubles{19.0, -7.0, -7.0}));
}

TEST_F(MatmulPasses, FillValuesOffTheDiagonal) {
  expect_silent([&] { matmul_formgraph(2, 2, a, ia, ja, b, ib, jb, ac, ic, jc); });
  EXPECT_EQ(ic, (ints{1, 2, 2, -7}));
  EXPECT_EQ(jc, (ints{2, -7, -7}));
  EXPECT_EQ(ac, (doubles{8.0, -7.0, -7.0}));
}

TEST_F(MatmulPasses, WriteOnlyTheFirstRowStartWhereThereAreNoRows) {
  const ints first_only{1, -7, -7, -7};
  for (const std::int32_t n : {0, -1}) {
    const ints wgt{1, 1};
    const auto expect_first_only = [&](const std::function<void()>& fill) {
      ic = {-7, -7, -7, -7};
      expect_silent(fill);
      EXPECT_EQ(ic, first_only);
    };
    std::int32_t nz = -1, nz_graph = -1;
    expect_silent([&] { matmul_size(n, 2, ia, ja, ib, jb, nz); });
    expect_silent([&] { matmul_size_graph(n, 2, ia, ja, ib, jb, nz_graph); });
    EXPECT_EQ(nz, 0);
    EXPECT_EQ(nz_graph, 0);
    expect_first_only([&] { matmul_normal(n, 2, ia, ja, a, ib, jb, b, ic, jc, ac); });
    expect_first_only([&] { matmul_noval(n, 2, ia, ja, ib, jb, ic, jc); });
    expect_first_only([&] { matmul_graph(n, 2, ia, ja, ib, jb, ic, jc, ac); });
    expect_first_only([&] { matmul_wgraph(n, 2, ia, ja, ib, jb, ic, jc, ac, wgt); });
    expect_first_only([&] { matmul_formgraph(n, 2, a, ia, ja, b, ib, jb, ac, ic, jc); });
  }
  EXPECT_EQ(jc, (ints{-7, -7, -7}));
  EXPECT_EQ(ac, (doubles{-7.0, -7.0, -7.0}));
}

TEST_F(MatmulPasses, StopWhereThereIsNoRoomForTheMarker) {
  const ints wgt{1, 1};
  std::int32_t nz = -1;
  const auto expect_stop = [](const char* message, const std::function<void()>& pass) {
    const refuse_allocation refuse(0);
    const observed seen = observe(pass);
    EXPECT_EQ(seen.stop, message);
    EXPECT_EQ(seen.output, "");
  };
  expect_stop("allocation error in matmul_size", [&] { matmul_size(2, 2, ia, ja, ib, jb, nz); });
  expect_stop("allocation error in matmul_size_graph",
              [&] { matmul_size_graph(2, 2, ia, ja, ib, jb, nz); });
  expect_stop("allocation error in matmul_normal",
              [&] { matmul_normal(2, 2, ia, ja, a, ib, jb, b, ic, jc, ac); });
  expect_stop("allocation error in matmul_noval",
              [&] { matmul_noval(2, 2, ia, ja, ib, jb, ic, jc); });
  expect_stop("allocation error in matmul_graph",
              [&] { matmul_graph(2, 2, ia, ja, ib, jb, ic, jc, ac); });
  expect_stop("allocation error in matmul_wgraph",
              [&] { matmul_wgraph(2, 2, ia, ja, ib, jb, ic, jc, ac, wgt); });
  expect_stop("allocation error in matmul_formgraph",
              [&] { matmul_formgraph(2, 2, a, ia, ja, b, ib, jb, ac, ic, jc); });
  EXPECT_EQ(nz, -1);
  EXPECT_EQ(ic, (ints{-7, -7, -7, -7}));
}

}  // namespace
