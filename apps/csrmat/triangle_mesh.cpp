// SPDX-License-Identifier: MIT
#include "triangle_mesh.hpp"

#include "random_numbers.hpp"

#include <algorithm>
#include <cassert>
#include <cstddef>

namespace csrmat {

namespace {

// Differences of coordinates have 30 bits, so a determinant of the circle test has 124.
__extension__ using int128 = __int128;
static_assert(std::int64_t{most_cells} * cell_width <= std::int64_t{1} << 30);

struct offset {
  std::int64_t x;
  std::int64_t y;
};

offset operator-(point to, point from) {
  return {std::int64_t{to.x} - from.x, std::int64_t{to.y} - from.y};
}

std::int64_t cross(offset u, offset v) { return u.x * v.y - u.y * v.x; }

std::int64_t squared_length(offset u) { return u.x * u.x + u.y * u.y; }

// Ids of the two triangles of a cell, `outside` when there is no such cell.
class cell_numbers {
 public:
  explicit cell_numbers(std::int32_t cells) : cells_(cells) {}

  [[nodiscard]] std::int32_t lower(std::int32_t x, std::int32_t y) const {
    const bool inside = 0 <= x && x < cells_ && 0 <= y && y < cells_;
    return inside ? 2 * (y * cells_ + x) : outside;
  }
  [[nodiscard]] std::int32_t upper(std::int32_t x, std::int32_t y) const {
    const std::int32_t id = lower(x, y);
    return id == outside ? outside : id + 1;
  }

 private:
  std::int32_t cells_;
};

//  d---c    The lower triangle is a, b, c, the upper one a, c, d.
//  | / |
//  a---b
void cut_cell(triangle_mesh& mesh, std::int32_t x, std::int32_t y) {
  const cell_numbers ids(mesh.cells);
  const std::int32_t a = y * (mesh.cells + 1) + x;
  const std::int32_t b = a + 1;
  const std::int32_t d = a + mesh.cells + 1;
  const std::int32_t c = d + 1;
  mesh.triangles.push_back(
      {{a, b, c}, {ids.upper(x + 1, y), ids.upper(x, y), ids.upper(x, y - 1)}});
  mesh.triangles.push_back(
      {{a, c, d}, {ids.lower(x, y + 1), ids.lower(x - 1, y), ids.lower(x, y)}});
}

class delaunay {
 public:
  explicit delaunay(triangle_mesh& mesh) : mesh_(mesh) {}

  void run() {
    for (std::int32_t t = 0; t < static_cast<std::int32_t>(mesh_.triangles.size()); ++t) {
      pending_.push_back(t);
      while (!pending_.empty()) {
        const std::int32_t next = pending_.back();
        pending_.pop_back();
        settle(next);
      }
    }
  }

 private:
  triangle& at(std::int32_t t) { return mesh_.triangles[static_cast<std::size_t>(t)]; }
  [[nodiscard]] point where(std::int32_t v) const {
    return mesh_.points[static_cast<std::size_t>(v)];
  }

  // The corner of t that faces the triangle `other`.
  std::size_t facing(std::int32_t t, std::int32_t other) {
    const auto& across = at(t).across;
    const auto found = std::find(across.begin(), across.end(), other);
    assert(found != across.end());
    return static_cast<std::size_t>(found - across.begin());
  }

  void reconnect(std::int32_t t, std::int32_t from, std::int32_t to) {
    if (t != outside) at(t).across[facing(t, from)] = to;
  }

  // Exchanges the first edge of t that has the far corner behind it inside the circle of t. Both
  // triangles are new then and are looked at again.
  void settle(std::int32_t t) {
    for (std::size_t k = 0; k < 3; ++k) {
      const std::int32_t u = at(t).across[k];
      if (u == outside) continue;
      const std::int32_t far = at(u).corner[facing(u, t)];
      const auto& [a, b, c] = at(t).corner;
      if (!inside_circle(where(a), where(b), where(c), where(far))) continue;
      exchange(t, k, u);
      pending_.push_back(t);
      pending_.push_back(u);
      return;
    }
  }

  //    c            c
  //   /|\          / \      t = a, b, c  becomes  a, b, d
  //  a | d   ->   a---d     u = d, c, b  becomes  a, d, c
  //   \|/          \ /
  //    b            b
  void exchange(std::int32_t t, std::size_t k, std::int32_t u) {
    const triangle left = at(t);
    const triangle right = at(u);
    const std::size_t m = facing(u, t);
    const std::int32_t a = left.corner[k];
    const std::int32_t b = left.corner[(k + 1) % 3];
    const std::int32_t c = left.corner[(k + 2) % 3];
    const std::int32_t d = right.corner[m];
    const std::int32_t ca = left.across[(k + 1) % 3];
    const std::int32_t ab = left.across[(k + 2) % 3];
    const std::int32_t bd = right.across[(m + 1) % 3];
    const std::int32_t dc = right.across[(m + 2) % 3];
    at(t) = {{a, b, d}, {bd, u, ab}};
    at(u) = {{a, d, c}, {dc, ca, t}};
    reconnect(bd, u, t);
    reconnect(ca, t, u);
  }

  triangle_mesh& mesh_;
  std::vector<std::int32_t> pending_;
};

}  // namespace

std::int64_t twice_area(point a, point b, point c) { return cross(b - a, c - a); }

bool inside_circle(point a, point b, point c, point d) {
  const offset u = a - d;
  const offset v = b - d;
  const offset w = c - d;
  const int128 determinant = int128{squared_length(u)} * cross(v, w) +
                             int128{squared_length(v)} * cross(w, u) +
                             int128{squared_length(w)} * cross(u, v);
  return determinant > 0;
}

triangle_mesh jittered_grid(std::int32_t cells, std::uint64_t seed) {
  assert(1 <= cells && cells <= most_cells);
  constexpr std::int32_t reach = cell_width / 4 - 1;
  random_numbers random(seed);
  const auto place = [&](std::int32_t line) {
    if (line == 0 || line == cells) return line * cell_width;
    return line * cell_width + static_cast<std::int32_t>(random.below(2 * reach + 1)) - reach;
  };

  triangle_mesh mesh{cells, {}, {}};
  const auto across = static_cast<std::size_t>(cells);
  mesh.points.reserve((across + 1) * (across + 1));
  for (std::int32_t y = 0; y <= cells; ++y)
    for (std::int32_t x = 0; x <= cells; ++x) {
      const std::int32_t px = place(x);  // drawn before py, whatever the compiler
      const std::int32_t py = place(y);
      mesh.points.push_back({px, py});
    }
  mesh.triangles.reserve(2 * across * across);
  for (std::int32_t y = 0; y < cells; ++y)
    for (std::int32_t x = 0; x < cells; ++x) cut_cell(mesh, x, y);
  return mesh;
}

void make_delaunay(triangle_mesh& mesh) { delaunay(mesh).run(); }

}  // namespace csrmat
