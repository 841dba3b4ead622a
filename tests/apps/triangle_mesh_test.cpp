// SPDX-License-Identifier: MIT
#include "triangle_mesh.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace {

using csrmat::cell_width;
using csrmat::inside_circle;
using csrmat::jittered_grid;
using csrmat::make_delaunay;
using csrmat::outside;
using csrmat::point;
using csrmat::triangle;
using csrmat::triangle_mesh;
using csrmat::twice_area;

point corner(const triangle_mesh& mesh, const triangle& t, std::size_t i) {
  return mesh.points[static_cast<std::size_t>(t.corner[i % 3])];
}

// How many points are inside the circle of how many triangles, by its centre and radius.
int points_in_circles(const triangle_mesh& mesh) {
  int found = 0;
  for (const triangle& t : mesh.triangles) {
    const point a = corner(mesh, t, 0);
    const long double bx = corner(mesh, t, 1).x - a.x;
    const long double by = corner(mesh, t, 1).y - a.y;
    const long double cx = corner(mesh, t, 2).x - a.x;
    const long double cy = corner(mesh, t, 2).y - a.y;
    const long double area4 = 2 * (bx * cy - by * cx);
    const long double x = (cy * (bx * bx + by * by) - by * (cx * cx + cy * cy)) / area4;
    const long double y = (bx * (cx * cx + cy * cy) - cx * (bx * bx + by * by)) / area4;
    const long double radius = std::hypot(x, y);
    for (const point& p : mesh.points)
      if (std::hypot(p.x - a.x - x, p.y - a.y - y) < radius * (1 - 1e-12L)) ++found;
  }
  return found;
}

// Every triangle counterclockwise, the square covered, neighbours agreeing on their common edge.
void expect_sound(const triangle_mesh& mesh) {
  const std::int64_t width = std::int64_t{mesh.cells} * cell_width;
  std::int64_t area = 0;
  std::int32_t id = 0;
  for (const triangle& t : mesh.triangles) {
    const std::int64_t own = twice_area(corner(mesh, t, 0), corner(mesh, t, 1), corner(mesh, t, 2));
    EXPECT_GT(own, 0);
    area += own;
    for (std::size_t k = 0; k < 3; ++k) {
      const std::int32_t from = t.corner[(k + 1) % 3];
      const std::int32_t to = t.corner[(k + 2) % 3];
      if (t.across[k] == outside) {
        const point p = corner(mesh, t, k + 1);
        const point q = corner(mesh, t, k + 2);
        EXPECT_TRUE((p.x == q.x && p.x % width == 0) || (p.y == q.y && p.y % width == 0));
        continue;
      }
      const triangle& u = mesh.triangles[static_cast<std::size_t>(t.across[k])];
      const auto back = std::find(u.across.begin(), u.across.end(), id);
      ASSERT_NE(back, u.across.end());
      const auto m = static_cast<std::size_t>(back - u.across.begin());
      EXPECT_EQ(u.corner[(m + 1) % 3], to);
      EXPECT_EQ(u.corner[(m + 2) % 3], from);
    }
    ++id;
  }
  EXPECT_EQ(area, 2 * width * width);
  EXPECT_EQ(mesh.triangles.size(), std::size_t(2 * mesh.cells * mesh.cells));
}

TEST(InsideCircle, IsTrueInsideOnly) {
  const point a{0, 0};
  const point b{4, 0};
  const point c{4, 4};
  EXPECT_TRUE(inside_circle(a, b, c, {1, 3}));
  EXPECT_FALSE(inside_circle(a, b, c, {0, 4}));  // on the circle
  EXPECT_FALSE(inside_circle(a, b, c, {-1, 5}));
}

TEST(InsideCircle, IsExactForTheLargestCoordinates) {
  constexpr std::int32_t far = 1 << 30;
  const point a{0, 0};
  const point b{far, 0};
  const point c{far, far};
  EXPECT_FALSE(inside_circle(a, b, c, {0, far}));
  EXPECT_TRUE(inside_circle(a, b, c, {1, far}));
  EXPECT_TRUE(inside_circle(a, b, c, {0, far - 1}));
}

TEST(JitteredGrid, CoversTheSquare) {
  for (std::uint64_t seed = 1; seed <= 5; ++seed) expect_sound(jittered_grid(7, seed));
  expect_sound(jittered_grid(1, 1));
}

TEST(JitteredGrid, IsTheSameForTheSameSeed) {
  const auto same = [](const point& p, const point& q) { return p.x == q.x && p.y == q.y; };
  const triangle_mesh one = jittered_grid(5, 1);
  const triangle_mesh again = jittered_grid(5, 1);
  const triangle_mesh other = jittered_grid(5, 2);
  EXPECT_TRUE(std::equal(one.points.begin(), one.points.end(), again.points.begin(), same));
  EXPECT_FALSE(std::equal(one.points.begin(), one.points.end(), other.points.begin(), same));
}

TEST(MakeDelaunay, LeavesNoPointInsideTheCircleOfATriangle) {
  for (std::uint64_t seed = 1; seed <= 5; ++seed) {
    triangle_mesh mesh = jittered_grid(8, seed);
    EXPECT_GT(points_in_circles(mesh), 0);
    make_delaunay(mesh);
    expect_sound(mesh);
    EXPECT_EQ(points_in_circles(mesh), 0);
  }
}

TEST(MakeDelaunay, LeavesVerticesOfManyDegrees) {
  triangle_mesh mesh = jittered_grid(30, 1);
  make_delaunay(mesh);
  expect_sound(mesh);
  std::vector<int> degree(mesh.points.size());
  for (const triangle& t : mesh.triangles)
    for (const std::int32_t v : t.corner) ++degree[static_cast<std::size_t>(v)];
  for (const int seen : {4, 5, 6, 7, 8})
    EXPECT_NE(std::count(degree.begin(), degree.end(), seen), 0) << seen;
}

}  // namespace
