// SPDX-License-Identifier: MIT
#include "gallery_matrices.hpp"
#include "limits.hpp"

#include <csr_matrix_mod/csr_matrix_mod.hpp>

#include <array>
#include <cstddef>

namespace csrmat {

using namespace csr_matrix_mod;

namespace {

// A cubic grid of inner points; point i has its neighbours at distances 1, points, points^2, ...
template <int dimension>
class grid {
 public:
  explicit grid(std::int32_t points) : points_(points) {
    const std::string name = "poisson" + std::to_string(dimension) + "d";
    const std::string size = name + " of size " + std::to_string(points);
    std::int64_t rows = 1;
    for (std::int32_t& stride : strides_) {
      stride = static_cast<std::int32_t>(rows);
      rows = fitting_product(rows, points, size + ": its rows");
    }
    rows_ = static_cast<std::int32_t>(rows);
    // A point has two neighbours in each direction, but for those at the two ends of a line.
    const std::int64_t lines = dimension * (rows / points);
    const std::int64_t entries = (2 * dimension + 1) * rows - 2 * lines;
    entries_ = static_cast<std::int32_t>(fitting_product(1, entries, size + ": its entries"));
    require_memory(4 * rows + 12 * entries, size);
  }

  [[nodiscard]] std::int32_t rows() const { return rows_; }
  [[nodiscard]] std::int32_t entries() const { return entries_; }

  // Row i in ascending order of columns.
  template <class Visit>
  void visit_row(std::int32_t i, Visit visit) const {
    for (auto stride = strides_.rbegin(); stride != strides_.rend(); ++stride)
      if (along(i, *stride) > 0) visit(i - *stride, -1.0);
    visit(i, 2.0 * dimension);
    for (const std::int32_t stride : strides_)
      if (along(i, stride) < points_ - 1) visit(i + stride, -1.0);
  }

 private:
  // The place of point i, from 0, on its line in one direction.
  [[nodiscard]] std::int32_t along(std::int32_t i, std::int32_t stride) const {
    return (i - 1) / stride % points_;
  }

  std::int32_t points_;
  std::int32_t rows_ = 0;
  std::int32_t entries_ = 0;
  std::array<std::int32_t, static_cast<std::size_t>(dimension)> strides_{};
};

template <int dimension>
csr_matrix poisson(std::int32_t points) {
  const grid<dimension> places(points);
  csr_matrix mat;
  csr_matrix_initial(places.rows(), mat, places.rows(), matrix_real);
  csr_matrix_allocate(mat, places.entries());
  std::int32_t k = 1;
  for (std::int32_t i = 1; i <= mat.n; ++i) {
    mat.ia(i) = k;
    places.visit_row(i, [&](std::int32_t j, double v) {
      mat.ja(k) = j;
      mat.a(k) = v;
      ++k;
    });
  }
  mat.ia(std::int64_t{mat.n} + 1) = k;
  return mat;
}

}  // namespace

csr_matrix poisson2d(std::int32_t points) { return poisson<2>(points); }

csr_matrix poisson3d(std::int32_t points) { return poisson<3>(points); }

}  // namespace csrmat
