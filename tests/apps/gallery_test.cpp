// SPDX-License-Identifier: MIT
#include "gallery_matrices.hpp"

#include "failure.hpp"
#include "limits.hpp"
#include "random_numbers.hpp"
#include "triangle_mesh.hpp"

#include "../support/matrices.hpp"

#include <gtest/gtest.h>
#include <csr_matrix_mod/csr_matrix.hpp>

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace {

using csr_matrix_mod::csr_matrix;
using csrmat::finite_elements;
using csrmat::poisson2d;
using csrmat::poisson3d;
using csrmat::random_graph;
using tests::columns_of;
using tests::entries_of;
using tests::entry_rows;

using dense = std::map<std::pair<std::int32_t, std::int32_t>, double>;

dense places_of(const csr_matrix& mat) {
  dense places;
  std::int32_t i = 0;
  for (const auto& row : entries_of(mat)) {
    ++i;
    for (const tests::entry& e : row) EXPECT_TRUE(places.insert({{i, e.column}, e.value}).second);
  }
  return places;
}

void expect_symmetric(const csr_matrix& mat) {
  const dense places = places_of(mat);
  for (const auto& [place, value] : places) {
    const auto partner = places.find({place.second, place.first});
    ASSERT_NE(partner, places.end());
    EXPECT_EQ(partner->second, value);
  }
}

void expect_sorted(const csr_matrix& mat) {
  for (const auto& row : columns_of(mat)) EXPECT_TRUE(std::is_sorted(row.begin(), row.end()));
}

std::string refusal(const std::function<csr_matrix()>& make) {
  try {
    make();
  } catch (const csrmat::failure& why) {
    return why.what();
  }
  return "made";
}

TEST(Poisson2d, IsTheFivePointStencil) {
  //  1 - 2     [  4 -1 -1  . ]
  //  |   |     [ -1  4  . -1 ]
  //  3 - 4     [ -1  .  4 -1 ]
  //            [  . -1 -1  4 ]
  EXPECT_EQ(entries_of(poisson2d(2)), (entry_rows{{{1, 4.0}, {2, -1.0}, {3, -1.0}},
                                                  {{1, -1.0}, {2, 4.0}, {4, -1.0}},
                                                  {{1, -1.0}, {3, 4.0}, {4, -1.0}},
                                                  {{2, -1.0}, {3, -1.0}, {4, 4.0}}}));
}

TEST(Poisson2d, HasRowsThatSumUpToZeroAwayFromTheBoundary) {
  const auto rows = entries_of(poisson2d(5));
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const bool inner = i / 5 % 4 != 0 && i % 5 % 4 != 0;
    double sum = 0.0;
    for (const tests::entry& e : rows[i]) sum += e.value;
    EXPECT_EQ(sum == 0.0, inner) << i;
  }
}

TEST(Poisson3d, IsTheSevenPointStencil) {
  const csr_matrix mat = poisson3d(3);
  EXPECT_EQ(mat.n, 27);
  EXPECT_EQ(entries_of(mat)[13],
            (std::vector<tests::entry>{
                {5, -1.0}, {11, -1.0}, {13, -1.0}, {14, 6.0}, {15, -1.0}, {17, -1.0}, {23, -1.0}}));
  EXPECT_EQ(entries_of(mat)[0],
            (std::vector<tests::entry>{{1, 6.0}, {2, -1.0}, {4, -1.0}, {10, -1.0}}));
}

TEST(Poisson, IsSymmetricSortedAndExactlyAllocated) {
  const auto expect_proper = [](const csr_matrix& mat) {
    expect_symmetric(mat);
    expect_sorted(mat);
    EXPECT_EQ(mat.ja.length(), csr_matrix_num_nz(mat));
    EXPECT_EQ(mat.a.length(), csr_matrix_num_nz(mat));
  };
  expect_proper(poisson2d(1));
  expect_proper(poisson2d(7));
  expect_proper(poisson3d(1));
  expect_proper(poisson3d(4));
}

// Everything about the mesh that a matrix on its inner points can be compared with.
struct inner_mesh {
  csrmat::triangle_mesh mesh;
  std::vector<std::int32_t> row;  // of each point, 0 on the boundary

  inner_mesh(std::int32_t points, std::uint64_t seed)
      : mesh(csrmat::jittered_grid(points + 1, seed)) {
    csrmat::make_delaunay(mesh);
    for (std::int32_t y = 0; y <= points + 1; ++y)
      for (std::int32_t x = 0; x <= points + 1; ++x) {
        const bool inner = 1 <= x && x <= points && 1 <= y && y <= points;
        row.push_back(inner ? (y - 1) * points + x : 0);
      }
  }
};

// The stiffness of an edge is minus half the cotangents of the angles that face it.
dense stiffness_by_angles(const inner_mesh& inner) {
  dense places;
  for (const csrmat::triangle& t : inner.mesh.triangles)
    for (std::size_t k = 0; k < 3; ++k) {
      const auto at = [&](std::size_t i) {
        return inner.mesh.points[static_cast<std::size_t>(t.corner[i % 3])];
      };
      const auto direction = [&](std::size_t i) {
        return std::atan2(at(i).y - at(k).y, at(i).x - at(k).x);
      };
      const double stiffness = 0.5 / std::tan(direction(k + 2) - direction(k + 1));
      const std::int32_t i = inner.row[static_cast<std::size_t>(t.corner[(k + 1) % 3])];
      const std::int32_t j = inner.row[static_cast<std::size_t>(t.corner[(k + 2) % 3])];
      if (i != 0) places[{i, i}] += stiffness;
      if (j != 0) places[{j, j}] += stiffness;
      if (i != 0 && j != 0) places[{i, j}] -= stiffness;
      if (i != 0 && j != 0) places[{j, i}] -= stiffness;
    }
  return places;
}

TEST(FiniteElements, HaveTheStiffnessThatTheAnglesOfTheMeshGive) {
  const dense expected = stiffness_by_angles(inner_mesh(9, 4));
  const dense places = places_of(finite_elements(9, 4));
  ASSERT_EQ(places.size(), expected.size());
  for (const auto& [place, value] : expected) {
    ASSERT_EQ(places.count(place), 1U);
    EXPECT_NEAR(places.at(place), value, 1e-12);
  }
}

TEST(FiniteElements, AreSymmetricAndSorted) {
  for (const std::int32_t points : {1, 2, 12}) {
    const csr_matrix mat = finite_elements(points, 1);
    EXPECT_EQ(mat.n, points * points);
    EXPECT_EQ(mat.m, mat.n);
    expect_symmetric(mat);
    expect_sorted(mat);
  }
}

// Gershgorin: such a matrix is positive definite, as some rows are strictly dominant.
TEST(FiniteElements, HaveRowsThatSumUpToZeroAwayFromTheBoundaryAndToMoreBesideIt) {
  const std::int32_t points = 15;
  const inner_mesh inner(points, 2);
  std::vector<bool> beside_boundary(static_cast<std::size_t>(points * points), false);
  for (const csrmat::triangle& t : inner.mesh.triangles) {
    const auto row = [&](std::int32_t v) { return inner.row[static_cast<std::size_t>(v)]; };
    if (std::all_of(t.corner.begin(), t.corner.end(), row)) continue;
    for (const std::int32_t v : t.corner)
      if (row(v) != 0) beside_boundary[static_cast<std::size_t>(row(v) - 1)] = true;
  }
  const auto rows = entries_of(finite_elements(points, 2));
  for (std::size_t i = 0; i < rows.size(); ++i) {
    double sum = 0.0;
    for (const tests::entry& e : rows[i]) sum += e.value;
    if (beside_boundary[i])
      EXPECT_GT(sum, 1e-3);
    else
      EXPECT_NEAR(sum, 0.0, 1e-12);
  }
}

TEST(FiniteElements, HaveNoPositiveEntryBesideTheDiagonalBecauseTheMeshIsDelaunay) {
  for (const auto& [place, value] : places_of(finite_elements(25, 7))) {
    if (place.first == place.second)
      EXPECT_GT(value, 0.0);
    else
      EXPECT_LE(value, 1e-15);
  }
}

TEST(FiniteElements, AreTheSameForTheSameSeedOnly) {
  const auto rows = entries_of(finite_elements(6, 11));
  EXPECT_EQ(entries_of(finite_elements(6, 11)), rows);
  EXPECT_NE(entries_of(finite_elements(6, 12)), rows);
}

TEST(RandomGraph, IsAnUndirectedGraphWithoutLoopsOrRepetitions) {
  const csr_matrix graph = random_graph(200, 5);
  EXPECT_EQ(graph.type, csr_matrix_mod::matrix_structure_only);
  EXPECT_EQ(graph.m, 200);
  const auto rows = columns_of(graph);
  std::int32_t i = 0;
  for (const auto& row : rows) {
    ++i;
    EXPECT_TRUE(std::is_sorted(row.begin(), row.end()));
    EXPECT_EQ(std::adjacent_find(row.begin(), row.end()), row.end());
    for (const std::int32_t j : row) {
      EXPECT_NE(i, j);
      const auto& partner = rows[static_cast<std::size_t>(j - 1)];
      EXPECT_TRUE(std::binary_search(partner.begin(), partner.end(), i));
    }
  }
  EXPECT_LE(csr_matrix_num_nz(graph), 1600);
  EXPECT_GT(csr_matrix_num_nz(graph), 1400);
}

TEST(RandomGraph, IsTheSameForTheSameSeedOnly) {
  EXPECT_EQ(columns_of(random_graph(50, 1)), columns_of(random_graph(50, 1)));
  EXPECT_NE(columns_of(random_graph(50, 1)), columns_of(random_graph(50, 2)));
}

TEST(Gallery, RefusesWhatDoesNotFit) {
  EXPECT_EQ(refusal([] { return poisson2d(50000); }),
            "poisson2d of size 50000: its rows do not fit, at most 2147483646");
  EXPECT_EQ(refusal([] { return poisson2d(21000); }),
            "poisson2d of size 21000: its entries do not fit, at most 2147483646");
  EXPECT_EQ(refusal([] { return poisson3d(2147483646); }),
            "poisson3d of size 2147483646: its rows do not fit, at most 2147483646");
  EXPECT_EQ(refusal([] { return poisson3d(700); }),
            "poisson3d of size 700: its entries do not fit, at most 2147483646");
  EXPECT_EQ(refusal([] { return finite_elements(2147483646, 1); }),
            "fem of size 2147483646: its triangles do not fit, at most 2147483646");
  EXPECT_EQ(refusal([] { return finite_elements(11000, 1); }),
            "fem of size 11000: its element entries do not fit, at most 2147483646");
  EXPECT_EQ(refusal([] { return random_graph(300000000, 1); }),
            "random of size 300000000: its entries do not fit, at most 2147483646");
}

TEST(Gallery, RefusesWhatTheMachineHasNoMemoryFor) {
  EXPECT_NO_THROW(csrmat::require_memory(1000, "this"));
  try {
    csrmat::require_memory(4000000000000000000, "this");
    FAIL();
  } catch (const csrmat::failure& why) {
    EXPECT_EQ(std::string(why.what())
                  .rfind("this needs 4000000000000 MB of memory, this machine has ", 0),
              0U);
  }
}

TEST(Gallery, CountsTheMemoryForColumnsInIntegers) {
  EXPECT_NO_THROW(csrmat::require_memory_for_columns(1000, 2, "this"));
  try {
    csrmat::require_memory_for_columns(2147483647, 1000000000, "this");
    FAIL();
  } catch (const csrmat::failure& why) {
    EXPECT_EQ(std::string(why.what()).rfind("this needs 8589934588000 MB of memory, ", 0), 0U);
  }
}

// The standard fixes the engine: its 10000th number is known.
TEST(RandomNumbers, AreThoseOfTheStandardEngine) {
  csrmat::random_numbers random(5489);
  constexpr std::uint64_t bound = std::uint64_t{1} << 63;
  std::uint64_t last = 0;
  for (int k = 0; k < 10000; ++k) last = random.below(bound);
  EXPECT_EQ(last, std::uint64_t{9981545732273789042U} % bound);
}

TEST(RandomNumbers, StayInTheirRange) {
  csrmat::random_numbers random(1);
  std::vector<int> seen(3);
  for (int k = 0; k < 3000; ++k) {
    ++seen[random.below(3)];
    const double x = random.symmetric();
    EXPECT_TRUE(-1.0 <= x && x < 1.0);
  }
  for (const int count : seen) EXPECT_NEAR(count, 1000, 150);
}

}  // namespace
