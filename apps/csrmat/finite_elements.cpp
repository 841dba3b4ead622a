// SPDX-License-Identifier: MIT
#include "gallery_matrices.hpp"
#include "limits.hpp"
#include "triangle_mesh.hpp"

#include <csr_matrix_mod/csr_matrix_mod.hpp>

#include <array>
#include <cstddef>
#include <vector>

namespace csrmat {

using namespace csr_matrix_mod;

namespace {

constexpr std::int32_t no_row = 0;  // of a point on the boundary

// Rows are numbered in the order of the inner points.
std::vector<std::int32_t> number_rows(const triangle_mesh& mesh) {
  const std::int32_t width = mesh.cells * cell_width;
  std::vector<std::int32_t> rows;
  rows.reserve(mesh.points.size());
  std::int32_t row = 0;
  for (const point& p : mesh.points) {
    const bool inner = 0 < p.x && p.x < width && 0 < p.y && p.y < width;
    rows.push_back(inner ? ++row : no_row);
  }
  return rows;
}

using local_matrix = std::array<std::array<double, 3>, 3>;

// The integrals of grad u_i * grad u_j over the triangle, u_i being linear, 1 at corner i and 0 at
// the others. In the plane they do not depend on the unit of length.
local_matrix stiffness(const std::array<point, 3>& corner) {
  std::array<std::int64_t, 3> dx{};  // along the edge facing corner i
  std::array<std::int64_t, 3> dy{};
  for (std::size_t i = 0; i < 3; ++i) {
    const point from = corner[(i + 1) % 3];
    const point to = corner[(i + 2) % 3];
    dx[i] = std::int64_t{to.x} - from.x;
    dy[i] = std::int64_t{to.y} - from.y;
  }
  const auto area4 = static_cast<double>(2 * twice_area(corner[0], corner[1], corner[2]));
  local_matrix k{};
  for (std::size_t i = 0; i < 3; ++i)
    for (std::size_t j = 0; j < 3; ++j)
      k[i][j] = static_cast<double>(dx[i] * dx[j] + dy[i] * dy[j]) / area4;
  return k;
}

struct coordinate_lists {
  std::vector<std::int32_t> row;
  std::vector<std::int32_t> col;
  std::vector<double> val;

  void reserve(std::size_t entries) {
    row.reserve(entries);
    col.reserve(entries);
    val.reserve(entries);
  }
  void add(std::int32_t i, std::int32_t j, double v) {
    row.push_back(i);
    col.push_back(j);
    val.push_back(v);
  }
};

// One entry for each pair of corners of each triangle; those of one pair add up when rows are
// sorted.
coordinate_lists assemble(const triangle_mesh& mesh) {
  const std::vector<std::int32_t> row_of = number_rows(mesh);
  coordinate_lists lists;
  lists.reserve(9 * mesh.triangles.size());
  for (const triangle& t : mesh.triangles) {
    std::array<point, 3> corner{};
    std::array<std::int32_t, 3> row{};
    for (std::size_t i = 0; i < 3; ++i) {
      corner[i] = mesh.points[static_cast<std::size_t>(t.corner[i])];
      row[i] = row_of[static_cast<std::size_t>(t.corner[i])];
    }
    const local_matrix k = stiffness(corner);
    for (std::size_t i = 0; i < 3; ++i)
      for (std::size_t j = 0; j < 3; ++j)
        if (row[i] != no_row && row[j] != no_row) lists.add(row[i], row[j], k[i][j]);
  }
  return lists;
}

}  // namespace

csr_matrix finite_elements(std::int32_t points, std::uint64_t seed) {
  const std::string size = "fem of size " + std::to_string(points);
  const std::int64_t cells = std::int64_t{points} + 1;
  const std::int64_t triangles = fitting_product(2 * cells, cells, size + ": its triangles");
  const std::int64_t entries = fitting_product(9, triangles, size + ": its element entries");
  const auto mesh_bytes = static_cast<std::int64_t>(sizeof(triangle) + sizeof(point)) * triangles;
  require_memory(mesh_bytes + (16 + 12) * entries, size);  // the mesh, three lists and the matrix
  // Whatever fits is a mesh of exact coordinates.
  static_assert(std::int64_t{18} * most_cells * most_cells > max_entries);

  triangle_mesh mesh = jittered_grid(static_cast<std::int32_t>(cells), seed);
  make_delaunay(mesh);
  const coordinate_lists lists = assemble(mesh);
  const std::int32_t n = points * points;
  csr_matrix mat;
  coo_to_csr_format(n, static_cast<std::int32_t>(lists.row.size()), lists.row, lists.col, lists.val,
                    mat, matrix_real, n);
  csr_matrix_sort(mat);
  return mat;
}

}  // namespace csrmat
