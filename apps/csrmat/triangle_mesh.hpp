// SPDX-License-Identifier: MIT
// Unstructured triangle meshes of a square. Points have whole coordinates, so that every question
// about a triangle is answered exactly.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace csrmat {

struct point {
  std::int32_t x;
  std::int32_t y;
};

struct triangle {
  std::array<std::int32_t, 3> corner;  // counterclockwise, from 0
  std::array<std::int32_t, 3> across;  // triangle on the other side of the edge facing each corner
};

inline constexpr std::int32_t outside = -1;  // across an edge of the square

// Widths of `jittered_grid` up to this are exact.
inline constexpr std::int32_t most_cells = 16384;
inline constexpr std::int32_t cell_width = 65536;

struct triangle_mesh {
  std::int32_t cells;         // the square is cells * cell_width wide
  std::vector<point> points;  // (cells + 1)^2, line by line
  std::vector<triangle> triangles;
};

// Twice the area of a, b, c; positive when they stand counterclockwise.
std::int64_t twice_area(point a, point b, point c);

// Is d inside the circle through a, b, c, which stand counterclockwise?
bool inside_circle(point a, point b, point c, point d);

// A grid whose points are moved at random by less than a quarter of a cell (those on an edge of the
// square along it, its corners not at all), each cell cut into two triangles.
triangle_mesh jittered_grid(std::int32_t cells, std::uint64_t seed);

// Exchanges diagonals until no triangle has a point of the mesh inside its circle: C. L. Lawson,
// "Software for C1 surface interpolation", Mathematical Software III (1977), 161-194.
void make_delaunay(triangle_mesh& mesh);

}  // namespace csrmat
