// SPDX-License-Identifier: MIT
#include "gallery.hpp"

#include <bit>
#include <cstddef>
#include <numeric>
#include <utility>

namespace same_bits {

namespace {

using csr_matrix_mod::csr_matrix;

constexpr std::uint64_t exponent_bits = std::uint64_t{0x7ff} << 52;

// All bits of sign and fraction, and one of `exponents` exponents from the lowest on.
double with_exponent(numbers& random, std::int32_t lowest, std::int32_t exponents) {
  const std::uint64_t sign_and_fraction = random.next() & ~exponent_bits;
  const auto biased = static_cast<std::uint64_t>(lowest + random.below(exponents) + 1023);
  return std::bit_cast<double>(sign_and_fraction | biased << 52);
}

double whole_number(numbers& random) {
  const std::int32_t number = random.below(21) - 10;
  return number == 0 && random.below(2) == 0 ? -0.0 : static_cast<double>(number);
}

// The rows of a matrix, one after the other, on their way into a record.
class rows_in_order {
 public:
  rows_in_order(std::int32_t columns, kind values, std::uint64_t seed)
      : columns_(columns), values_(values), random_(seed) {}

  void entry(std::int32_t column) {
    ja_.push_back(column);
    a_.push_back(value_of(values_, random_));
  }
  void end_row() { ia_.push_back(static_cast<std::int32_t>(ja_.size()) + 1); }

  [[nodiscard]] csr_matrix matrix() const {
    csr_matrix mat;
    const auto n = static_cast<std::int32_t>(ia_.size()) - 1;
    if (values_ == kind::pattern)
      csr_to_csr_matrix(n, columns_, mat, ia_, ja_);
    else
      csr_to_csr_matrix(n, columns_, mat, ia_, ja_, csr_matrix_mod::array_view<const double>(a_));
    return mat;
  }

 private:
  std::int32_t columns_;
  kind values_;
  numbers random_;
  std::vector<std::int32_t> ia_{1};
  std::vector<std::int32_t> ja_;
  std::vector<double> a_;
};

// Neighbours within `reach` of a cube of points, all of them or those along one axis.
csr_matrix cube(std::int32_t side, bool diagonals, kind values) {
  rows_in_order rows(side * side * side, values, 27);
  const auto inside = [side](std::int32_t x) { return 0 <= x && x < side; };
  for (std::int32_t z = 0; z < side; ++z)
    for (std::int32_t y = 0; y < side; ++y)
      for (std::int32_t x = 0; x < side; ++x) {
        for (std::int32_t step = 0; step < 27; ++step) {
          const std::int32_t dx = step % 3 - 1;
          const std::int32_t dy = step / 3 % 3 - 1;
          const std::int32_t dz = step / 9 - 1;
          const bool along_an_axis = dx * dx + dy * dy + dz * dz <= 1;
          if ((diagonals || along_an_axis) && inside(x + dx) && inside(y + dy) && inside(z + dz))
            rows.entry(((z + dz) * side + y + dy) * side + x + dx + 1);
        }
        rows.end_row();
      }
  return rows.matrix();
}

// A full first row and column, the diagonal, and nothing in the last row.
csr_matrix arrow(std::int32_t n, kind values) {
  rows_in_order rows(n, values, 3);
  for (std::int32_t j = 1; j <= n; ++j) rows.entry(j);
  rows.end_row();
  for (std::int32_t i = 2; i < n; ++i) {
    rows.entry(i);
    rows.entry(1);
    rows.end_row();
  }
  rows.end_row();
  return rows.matrix();
}

csr_matrix without_entries(std::int32_t n, kind values) {
  rows_in_order rows(n, values, 1);
  for (std::int32_t i = 1; i <= n; ++i) rows.end_row();
  return rows.matrix();
}

// Columns that get rarer: few of them stand in most rows.
csr_matrix skewed(std::int32_t n, std::int32_t length, kind values) {
  rows_in_order rows(n, values, 14);
  numbers random(41);
  for (std::int32_t i = 1; i <= n; ++i) {
    for (std::int32_t k = random.below(length + 1); k > 0; --k)
      rows.entry(random.below(random.below(random.below(n) + 1) + 1) + 1);
    rows.end_row();
  }
  return rows.matrix();
}

}  // namespace

double value_of(kind values, numbers& random) {
  switch (values) {
    case kind::whole:
      return whole_number(random);
    case kind::even:
      return with_exponent(random, -3, 7);
    case kind::wide:
      return with_exponent(random, -500, 801);
    case kind::tiny:
      return with_exponent(random, -1023, 3);
    case kind::pattern:
      break;
  }
  return 1.0;
}

csr_matrix aggregation(std::int32_t rows, std::int32_t classes, kind values) {
  rows_in_order result(classes, values, 11);
  for (std::int32_t i = 0; i < rows; ++i) {
    result.entry(i % classes + 1);
    result.end_row();
  }
  return result.matrix();
}

csr_matrix unsorted(std::int32_t rows, std::int32_t columns, std::int32_t longest, kind values,
                    std::uint64_t seed) {
  rows_in_order result(columns, values, seed);
  numbers random(seed + 1);
  for (std::int32_t i = 1; i <= rows; ++i) {
    for (std::int32_t k = random.below(longest + 1); k > 0; --k)
      result.entry(random.below(columns) + 1);
    result.end_row();
  }
  return result.matrix();
}

csr_matrix five_point(std::int32_t width, std::int32_t height, kind values) {
  rows_in_order rows(width * height, values, 5);
  for (std::int32_t y = 0; y < height; ++y)
    for (std::int32_t x = 0; x < width; ++x) {
      const std::int32_t i = y * width + x + 1;
      if (y > 0) rows.entry(i - width);
      if (x > 0) rows.entry(i - 1);
      rows.entry(i);
      if (x + 1 < width) rows.entry(i + 1);
      if (y + 1 < height) rows.entry(i + width);
      rows.end_row();
    }
  return rows.matrix();
}

std::vector<sample> square_matrices() {
  std::vector<sample> all;
  const auto keep = [&all](kind values, csr_matrix mat) {
    all.push_back({values, std::move(mat)});
  };
  keep(kind::even, without_entries(0, kind::even));
  keep(kind::even, without_entries(4, kind::even));
  keep(kind::pattern, without_entries(3, kind::pattern));
  for (const kind values : {kind::whole, kind::even, kind::wide, kind::tiny, kind::pattern}) {
    keep(values, five_point(1, 1, values));
    keep(values, five_point(19, 14, values));
    keep(values, cube(6, false, values));
    keep(values, cube(5, true, values));
    keep(values, arrow(37, values));
    keep(values, skewed(150, 12, values));
    keep(values, unsorted(200, 200, 9, values, 200));
    keep(values, unsorted(130, 130, 60, values, 60));
    keep(values, unsorted(40, 40, 700, values, 700));
  }
  return all;
}

csr_matrix chain(std::int32_t points, std::int32_t unknowns, kind values) {
  rows_in_order rows(points * unknowns, values, 33);
  for (std::int32_t point = 0; point < points; ++point)
    for (std::int32_t unknown = 0; unknown < unknowns; ++unknown) {
      for (std::int32_t near = point - 1; near <= point + 1; ++near)
        for (std::int32_t other = 1; other <= unknowns; ++other)
          if (0 <= near && near < points) rows.entry(near * unknowns + other);
      rows.end_row();
    }
  return rows.matrix();
}

std::vector<double> value_vector(std::int32_t length, kind values, std::uint64_t seed) {
  numbers random(seed);
  std::vector<double> result(static_cast<std::size_t>(length));
  for (double& element : result) element = value_of(values, random);
  return result;
}

std::vector<std::int32_t> integer_vector(std::int32_t length, std::uint64_t seed) {
  numbers random(seed);
  std::vector<std::int32_t> result(static_cast<std::size_t>(length));
  for (std::int32_t& element : result)
    element = static_cast<std::int32_t>(static_cast<std::uint32_t>(random.next()));
  return result;
}

std::vector<std::int32_t> permutation(std::int32_t length, std::uint64_t seed) {
  numbers random(seed);
  std::vector<std::int32_t> result(static_cast<std::size_t>(length));
  std::iota(result.begin(), result.end(), 1);
  for (std::int32_t k = length; k > 1; --k)
    std::swap(result[static_cast<std::size_t>(k - 1)],
              result[static_cast<std::size_t>(random.below(k))]);
  return result;
}

}  // namespace same_bits
