// SPDX-License-Identifier: MIT
#include "workloads.hpp"

#include "plain.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <initializer_list>
#include <numeric>
#include <utility>

namespace bench {

namespace {

// splitmix64: the library's distributions differ between systems, this does not.
class random_numbers {
 public:
  // Seeds that follow each other must not begin sequences that are the same but for some numbers.
  explicit random_numbers(std::uint64_t seed) : state_(mixed(seed)) {}

  std::uint64_t bits() { return mixed(state_ += 0x9e3779b97f4a7c15U); }
  std::int32_t below(std::int32_t end) {
    return static_cast<std::int32_t>((bits() >> 32) * static_cast<std::uint64_t>(end) >> 32);
  }
  double unit() { return static_cast<double>(bits() >> 11) * 0x1p-53; }
  double symmetric() { return 2 * unit() - 1; }

 private:
  static std::uint64_t mixed(std::uint64_t z) {
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9U;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebU;
    return z ^ (z >> 31);
  }

  std::uint64_t state_;
};

template <class T>
void shuffle(T first, std::int32_t length, random_numbers& random) {
  for (std::int32_t k = length - 1; k > 0; --k) std::swap(first[k], first[random.below(k + 1)]);
}

void fill_values(matrix& a, random_numbers& random) {
  a.values.resize(a.columns.size());
  std::generate(a.values.begin(), a.values.end(), [&] { return random.symmetric(); });
}

matrix with_rows(std::int32_t n, std::int32_t m, std::size_t entries) {
  matrix a;
  a.n = n;
  a.m = m;
  a.starts.reserve(static_cast<std::size_t>(n) + 1);
  a.starts.push_back(1);
  a.columns.reserve(entries);
  return a;
}

void end_row(matrix& a) { a.starts.push_back(static_cast<std::int32_t>(a.columns.size()) + 1); }

struct offset {
  std::int32_t x, y, z;
};

// A box of nx by ny by nz points; what an offset reaches outside it is left out.
template <std::size_t Points>
matrix stencil(std::int32_t nx, std::int32_t ny, std::int32_t nz,
               const std::array<offset, Points>& neighbours, std::uint64_t seed) {
  const std::int32_t n = nx * ny * nz;
  matrix a = with_rows(n, n, static_cast<std::size_t>(n) * Points);
  for (std::int32_t z = 0; z < nz; ++z)
    for (std::int32_t y = 0; y < ny; ++y)
      for (std::int32_t x = 0; x < nx; ++x) {
        for (const offset& by : neighbours) {
          const std::int32_t u = x + by.x;
          const std::int32_t v = y + by.y;
          const std::int32_t w = z + by.z;
          if (u < 0 || u >= nx || v < 0 || v >= ny || w < 0 || w >= nz) continue;
          a.columns.push_back((w * ny + v) * nx + u + 1);
        }
        end_row(a);
      }
  random_numbers random(seed);
  fill_values(a, random);
  return a;
}

std::array<offset, 27> all_neighbours() {
  std::array<offset, 27> neighbours{};
  for (std::int32_t k = 0; k < 27; ++k)
    neighbours[static_cast<std::size_t>(k)] = {k % 3 - 1, k / 3 % 3 - 1, k / 9 - 1};
  return neighbours;
}

}  // namespace

std::int32_t square_side(double rows) {
  return std::max(2, static_cast<std::int32_t>(std::lround(std::sqrt(rows))));
}

std::int32_t cube_side(double rows) {
  return std::max(2, static_cast<std::int32_t>(std::lround(std::cbrt(rows))));
}

matrix five_point(double rows, std::uint64_t seed) {
  const std::int32_t side = square_side(rows);
  return stencil<5>(side, side, 1, {{{0, -1, 0}, {-1, 0, 0}, {0, 0, 0}, {1, 0, 0}, {0, 1, 0}}},
                    seed);
}

matrix seven_point(double rows, std::uint64_t seed) {
  const std::int32_t side = cube_side(rows);
  return stencil<7>(
      side, side, side,
      {{{0, 0, -1}, {0, -1, 0}, {-1, 0, 0}, {0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}}}, seed);
}

matrix twenty_seven_point(double rows, std::uint64_t seed) {
  const std::int32_t side = cube_side(rows);
  return stencil<27>(side, side, side, all_neighbours(), seed);
}

matrix triangles(double rows, std::uint64_t seed) {
  const std::int32_t side = square_side(rows);
  random_numbers random(seed);
  std::vector<std::int32_t> rises(static_cast<std::size_t>(side) * static_cast<std::size_t>(side));
  std::generate(rises.begin(), rises.end(), [&] { return random.below(2); });
  // Does the diagonal of the little square with point (x, y) as its lowest go up to the right?
  const auto rising = [&](std::int32_t x, std::int32_t y) {
    return rises[static_cast<std::size_t>(y * side + x)] != 0;
  };

  matrix a = with_rows(side * side, side * side, rises.size() * 7);
  for (std::int32_t y = 0; y < side; ++y)
    for (std::int32_t x = 0; x < side; ++x) {
      const bool left = x > 0;
      const bool right = x < side - 1;
      const bool below = y > 0;
      const bool above = y < side - 1;
      const std::int32_t i = y * side + x + 1;
      const auto add_if = [&](bool is_neighbour, std::int32_t j) {
        if (is_neighbour) a.columns.push_back(j);
      };
      add_if(below && left && rising(x - 1, y - 1), i - side - 1);
      add_if(below, i - side);
      add_if(below && right && !rising(x, y - 1), i - side + 1);
      add_if(left, i - 1);
      add_if(true, i);
      add_if(right, i + 1);
      add_if(above && left && !rising(x - 1, y), i + side - 1);
      add_if(above, i + side);
      add_if(above && right && rising(x, y), i + side + 1);
      end_row(a);
    }
  fill_values(a, random);
  return a;
}

matrix uniform_random(double rows, int per_row, std::uint64_t seed) {
  const auto n = std::max(16, static_cast<std::int32_t>(rows));
  random_numbers random(seed);
  matrix a = with_rows(n, n, static_cast<std::size_t>(n) * static_cast<std::size_t>(per_row));
  std::vector<std::int32_t> row;
  for (std::int32_t i = 0; i < n; ++i) {
    row.clear();
    while (std::ssize(row) < per_row) {
      const std::int32_t column = random.below(n) + 1;
      if (std::find(row.begin(), row.end(), column) == row.end()) row.push_back(column);
    }
    std::sort(row.begin(), row.end());
    a.columns.insert(a.columns.end(), row.begin(), row.end());
    end_row(a);
  }
  fill_values(a, random);
  return a;
}

matrix uneven_random(double rows, int most, std::uint64_t seed) {
  const auto n = std::max(16, static_cast<std::int32_t>(rows));
  random_numbers random(seed);
  matrix a = with_rows(n, n, static_cast<std::size_t>(n) * static_cast<std::size_t>(most));
  for (std::int32_t i = 0; i < n; ++i) {
    const auto first = a.columns.end() - a.columns.begin();
    for (std::int32_t left = random.below(most + 1); left > 0; --left)
      a.columns.push_back(random.below(n) + 1);
    std::sort(a.columns.begin() + first, a.columns.end());
    a.columns.erase(std::unique(a.columns.begin() + first, a.columns.end()), a.columns.end());
    end_row(a);
  }
  fill_values(a, random);
  return a;
}

matrix band(double rows, std::int32_t beside, std::uint64_t seed) {
  const auto n = std::max(16, static_cast<std::int32_t>(rows));
  matrix a =
      with_rows(n, n, static_cast<std::size_t>(n) * static_cast<std::size_t>(2 * beside + 1));
  for (std::int32_t i = 1; i <= n; ++i) {
    for (std::int32_t j = std::max(1, i - beside); j <= std::min(n, i + beside); ++j)
      a.columns.push_back(j);
    end_row(a);
  }
  random_numbers random(seed);
  fill_values(a, random);
  return a;
}

matrix several_unknowns(const matrix& of, std::int32_t number, std::uint64_t seed) {
  matrix a = with_rows(of.n * number, of.m * number,
                       of.columns.size() * static_cast<std::size_t>(number * number));
  for (std::size_t i = 0; i + 1 < of.starts.size(); ++i)
    for (std::int32_t unknown = 0; unknown < number; ++unknown) {
      for (std::int32_t k = of.starts[i]; k < of.starts[i + 1]; ++k)
        for (std::int32_t other = 1; other <= number; ++other)
          a.columns.push_back((of.columns[static_cast<std::size_t>(k - 1)] - 1) * number + other);
      end_row(a);
    }
  random_numbers random(seed);
  fill_values(a, random);
  return a;
}

matrix renumbered(const matrix& of, std::int32_t within, std::uint64_t seed) {
  random_numbers random(seed);
  std::vector<std::int32_t> old(static_cast<std::size_t>(of.n));
  std::iota(old.begin(), old.end(), 0);
  for (std::int32_t i = 0; i < of.n; i += within)
    shuffle(old.begin() + i, std::min(within, of.n - i), random);
  std::vector<std::int32_t> now(old.size());
  for (std::size_t i = 0; i < old.size(); ++i)
    now[static_cast<std::size_t>(old[i])] = static_cast<std::int32_t>(i) + 1;

  matrix a = with_rows(of.n, of.m, of.columns.size());
  for (const std::int32_t i : old) {
    const auto first = a.columns.end() - a.columns.begin();
    const auto row = static_cast<std::size_t>(i);
    for (std::int32_t k = of.starts[row]; k < of.starts[row + 1]; ++k)
      a.columns.push_back(
          now[static_cast<std::size_t>(of.columns[static_cast<std::size_t>(k - 1)] - 1)]);
    std::sort(a.columns.begin() + first, a.columns.end());
    end_row(a);
  }
  fill_values(a, random);
  return a;
}

matrix rmat(double rows, std::uint64_t seed) {
  const int scale = std::max(4, static_cast<int>(std::floor(std::log2(rows) + 1e-9)));
  const std::int32_t n = 1 << scale;
  random_numbers random(seed);
  std::vector<std::pair<std::int32_t, std::int32_t>> edges(16 * static_cast<std::size_t>(n));
  for (auto& [row, column] : edges) {
    row = column = 0;
    for (int level = 0; level < scale; ++level) {
      const double u = random.unit();
      row = 2 * row + (u >= 0.76 ? 1 : 0);
      column = 2 * column + ((u >= 0.57 && u < 0.76) || u >= 0.95 ? 1 : 0);
    }
  }
  std::sort(edges.begin(), edges.end());
  edges.erase(std::unique(edges.begin(), edges.end()), edges.end());

  matrix a = with_rows(n, n, edges.size());
  auto edge = edges.begin();
  for (std::int32_t i = 0; i < n; ++i) {
    for (; edge != edges.end() && edge->first == i; ++edge) a.columns.push_back(edge->second + 1);
    end_row(a);
  }
  fill_values(a, random);
  return a;
}

matrix shuffled_rows(matrix of, std::uint64_t seed) {
  random_numbers random(seed);
  for (std::size_t i = 0; i + 1 < of.starts.size(); ++i) {
    const std::int32_t start = of.starts[i] - 1;
    const std::int32_t length = of.starts[i + 1] - of.starts[i];
    shuffle(of.columns.begin() + start, length, random);
  }
  return of;  // the values are random: they need not move with their columns
}

matrix repeated_entries(const matrix& of, std::uint64_t seed) {
  random_numbers random(seed);
  matrix a = with_rows(of.n, of.m, of.columns.size() * 3 / 2);
  for (std::size_t i = 0; i + 1 < of.starts.size(); ++i) {
    const auto first = of.columns.begin() + (of.starts[i] - 1);
    const std::int32_t length = of.starts[i + 1] - of.starts[i];
    a.columns.insert(a.columns.end(), first, first + length);
    for (std::int32_t again = length / 3; again > 0; --again)
      a.columns.push_back(first[random.below(length)]);
    end_row(a);
  }
  fill_values(a, random);
  return a;
}

matrix half_redrawn(const matrix& of, std::uint64_t seed) {
  random_numbers random(seed);
  matrix a = with_rows(of.n, of.m, of.columns.size());
  for (std::size_t i = 0; i + 1 < of.starts.size(); ++i) {
    const auto first = a.columns.insert(a.columns.end(), of.columns.begin() + (of.starts[i] - 1),
                                        of.columns.begin() + (of.starts[i + 1] - 1));
    for (auto column = first; column != a.columns.end(); ++column)
      if (random.below(2) == 0) *column = random.below(of.m) + 1;
    std::sort(first, a.columns.end());
    a.columns.erase(std::unique(first, a.columns.end()), a.columns.end());
    end_row(a);
  }
  fill_values(a, random);
  return a;
}

matrix lower_triangle(const matrix& of) {
  matrix a = with_rows(of.n, of.m, of.columns.size());
  for (std::size_t i = 0; i + 1 < of.starts.size(); ++i) {
    for (auto k = static_cast<std::size_t>(of.starts[i] - 1);
         k + 1 < static_cast<std::size_t>(of.starts[i + 1]); ++k)
      if (of.columns[k] <= static_cast<std::int32_t>(i + 1)) {
        a.columns.push_back(of.columns[k]);
        a.values.push_back(of.values[k]);
      }
    end_row(a);
  }
  return a;
}

namespace {

// One entry of 1 a row, in the column of its aggregate.
template <class Aggregate>
matrix piecewise_constant(std::int32_t n, std::int32_t coarse, Aggregate aggregate) {
  matrix p = with_rows(n, coarse, static_cast<std::size_t>(n));
  for (std::int32_t i = 0; i < n; ++i) {
    p.columns.push_back(aggregate(i) + 1);
    end_row(p);
  }
  p.values.assign(p.columns.size(), 1.0);
  return p;
}

}  // namespace

matrix aggregates_of_square(std::int32_t side) {
  const std::int32_t half = (side + 1) / 2;
  return piecewise_constant(side * side, half * half,
                            [=](std::int32_t i) { return i / side / 2 * half + i % side / 2; });
}

matrix aggregates_of_cube(std::int32_t side) {
  const std::int32_t half = (side + 1) / 2;
  return piecewise_constant(side * side * side, half * half * half, [=](std::int32_t i) {
    const std::int32_t x = i % side;
    const std::int32_t y = i / side % side;
    const std::int32_t z = i / side / side;
    return (z / 2 * half + y / 2) * half + x / 2;
  });
}

matrix aggregates_in_order(std::int32_t rows, std::int32_t block) {
  return piecewise_constant(rows, (rows + block - 1) / block,
                            [=](std::int32_t i) { return i / block; });
}

matrix smoothed(const matrix& a, const matrix& p) {
  matrix damped = a;
  for (std::size_t i = 0; i + 1 < a.starts.size(); ++i) {
    const auto first = a.values.begin() + (a.starts[i] - 1);
    const auto last = a.values.begin() + (a.starts[i + 1] - 1);
    const double size = std::accumulate(
        first, last, 0.0, [](double sum, double value) { return sum + std::abs(value); });
    for (std::int32_t k = a.starts[i]; k < a.starts[i + 1]; ++k) {
      const auto at = static_cast<std::size_t>(k - 1);
      const double identity = a.columns[at] == static_cast<std::int32_t>(i) + 1 ? 1.0 : 0.0;
      damped.values[at] = identity - 2.0 / 3.0 * a.values[at] / size;
    }
  }
  return plain::multiply(damped, p);
}

array<double> random_vector(std::int64_t length, std::uint64_t seed) {
  random_numbers random(seed);
  array<double> x(static_cast<std::size_t>(length));
  std::generate(x.begin(), x.end(), [&] { return random.symmetric(); });
  return x;
}

array<std::int32_t> random_integers(std::int64_t length, std::uint64_t seed) {
  random_numbers random(seed);
  array<std::int32_t> x(static_cast<std::size_t>(length));
  std::generate(x.begin(), x.end(), [&] { return random.below(1000); });
  return x;
}

array<std::int32_t> random_order(std::int64_t length, std::uint64_t seed) {
  random_numbers random(seed);
  array<std::int32_t> order(static_cast<std::size_t>(length));
  std::iota(order.begin(), order.end(), 0);
  shuffle(order.begin(), static_cast<std::int32_t>(length), random);
  return order;
}

array<std::int32_t> rows_of_entries(const matrix& a) {
  array<std::int32_t> rows(a.columns.size());
  for (std::int32_t i = 0; i < a.n; ++i)
    std::fill(rows.begin() + (a.starts[static_cast<std::size_t>(i)] - 1),
              rows.begin() + (a.starts[static_cast<std::size_t>(i) + 1] - 1), i + 1);
  return rows;
}

}  // namespace bench
