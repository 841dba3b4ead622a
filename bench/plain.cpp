// SPDX-License-Identifier: MIT
#include "plain.hpp"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace bench::plain {

namespace {

using integers = std::vector<std::int32_t>;  // temporaries, zero at first

std::size_t at(std::int32_t position) { return static_cast<std::size_t>(position); }

matrix shaped(std::int32_t n, std::int32_t m) {
  matrix result;
  result.n = n;
  result.m = m;
  result.starts.resize(at(n) + 1);
  return result;
}

void allocate(matrix& result, std::int64_t nnz, bool with_values) {
  result.columns.resize(static_cast<std::size_t>(nnz));
  if (with_values) result.values.resize(static_cast<std::size_t>(nnz));
}

// Numbers count from 1 in the arrays, so position k is element k-1 in all that follows.

std::int64_t product_size(const matrix& a, const matrix& b, bool skip_diagonal) {
  integers mark(at(b.m));
  std::int64_t nnz = 0;
  for (std::int32_t i = 1; i <= a.n; ++i)
    for (std::int32_t k = a.starts[at(i - 1)]; k < a.starts[at(i)]; ++k) {
      const std::int32_t j = a.columns[at(k - 1)];
      for (std::int32_t l = b.starts[at(j - 1)]; l < b.starts[at(j)]; ++l) {
        const std::int32_t column = b.columns[at(l - 1)];
        if (skip_diagonal && column == i) continue;
        if (mark[at(column - 1)] != i) {
          mark[at(column - 1)] = i;
          ++nnz;
        }
      }
    }
  return nnz;
}

template <class Value>
void product_fill(const matrix& a, const matrix& b, bool skip_diagonal, matrix& c, Value value) {
  integers marker(at(b.m));
  std::int32_t* const mark = marker.data();
  std::int32_t* const columns = c.columns.data();
  double* const values = c.values.data();
  c.starts[0] = 1;
  std::int32_t pos = 0;
  for (std::int32_t i = 1; i <= a.n; ++i) {
    for (std::int32_t k = a.starts[at(i - 1)]; k < a.starts[at(i)]; ++k) {
      const std::int32_t j = a.columns[at(k - 1)];
      for (std::int32_t l = b.starts[at(j - 1)]; l < b.starts[at(j)]; ++l) {
        const std::int32_t column = b.columns[at(l - 1)];
        if (skip_diagonal && column == i) continue;
        const std::int32_t p = mark[column - 1];
        if (p == 0) {
          mark[column - 1] = ++pos;
          columns[pos - 1] = column;
          values[pos - 1] = value(k, l);
        } else {
          values[p - 1] = value(k, l) + values[p - 1];
        }
      }
    }
    for (std::int32_t q = c.starts[at(i - 1)]; q <= pos; ++q) mark[columns[q - 1] - 1] = 0;
    c.starts[at(i)] = pos + 1;
  }
}

}  // namespace

matrix multiply(const matrix& a, const matrix& b) {
  matrix c = shaped(a.n, b.m);
  allocate(c, product_size(a, b, false), true);
  const double* const left = a.values.data();
  const double* const right = b.values.data();
  product_fill(a, b, false, c,
               [=](std::int32_t k, std::int32_t l) { return left[k - 1] * right[l - 1]; });
  return c;
}

matrix multiply_graph(const matrix& a, const matrix& b) {
  matrix c = shaped(a.n, b.m);
  allocate(c, product_size(a, b, true), true);
  product_fill(a, b, true, c, [](std::int32_t, std::int32_t) { return 1.0; });
  return c;
}

matrix restriction(const matrix& a, const matrix& p, const matrix& r) {
  return multiply(r, multiply(a, p));
}

matrix sum(const matrix& a, const matrix& b) {
  integers marker(at(a.m));
  std::int32_t* const mark = marker.data();
  std::int64_t nnz = 0;
  for (std::int32_t i = 1; i <= a.n; ++i)
    for (const matrix* of : {&a, &b})
      for (std::int32_t k = of->starts[at(i - 1)]; k < of->starts[at(i)]; ++k) {
        const std::int32_t j = of->columns[at(k - 1)];
        if (mark[j - 1] < i) {
          mark[j - 1] = i;
          ++nnz;
        }
      }

  matrix c = shaped(a.n, a.m);
  allocate(c, nnz, true);
  std::fill(marker.begin(), marker.end(), 0);
  c.starts[0] = 1;
  std::int32_t p = 1;
  for (std::int32_t i = 1; i <= a.n; ++i) {
    for (const matrix* of : {&a, &b})
      for (std::int32_t k = of->starts[at(i - 1)]; k < of->starts[at(i)]; ++k) {
        const std::int32_t j = of->columns[at(k - 1)];
        const double value = of->values[at(k - 1)];
        if (mark[j - 1] == 0) {
          mark[j - 1] = p;
          c.columns[at(p - 1)] = j;
          c.values[at(p - 1)] = value;
          ++p;
        } else {
          double& kept = c.values[at(mark[j - 1] - 1)];
          kept = kept + value;
        }
      }
    for (std::int32_t q = c.starts[at(i - 1)]; q < p; ++q) mark[c.columns[at(q - 1)] - 1] = 0;
    c.starts[at(i)] = p;
  }
  return c;
}

matrix transpose(const matrix& a) {
  integers cursor(at(a.m));
  const std::int32_t nnz = a.nnz();
  for (std::int32_t k = 1; k <= nnz; ++k) ++cursor[at(a.columns[at(k - 1)] - 1)];

  matrix t = shaped(a.m, a.n);
  allocate(t, nnz, !a.values.empty());
  t.starts[0] = 1;
  for (std::int32_t j = 1; j <= a.m; ++j) {
    t.starts[at(j)] = t.starts[at(j - 1)] + cursor[at(j - 1)];
    cursor[at(j - 1)] = t.starts[at(j - 1)];
  }
  const bool with_values = !a.values.empty();
  for (std::int32_t i = 1; i <= a.n; ++i)
    for (std::int32_t k = a.starts[at(i - 1)]; k < a.starts[at(i)]; ++k) {
      const std::int32_t p = cursor[at(a.columns[at(k - 1)] - 1)]++;
      t.columns[at(p - 1)] = i;
      if (with_values) t.values[at(p - 1)] = a.values[at(k - 1)];
    }
  return t;
}

matrix symmetrize(const matrix& a) { return sum(a, transpose(a)); }

void sort(matrix& a) {
  std::int32_t q = 1;
  for (std::int32_t i = 1; i <= a.n; ++i) {
    const std::int32_t start = a.starts[at(i - 1)];
    const std::int32_t length = a.starts[at(i)] - start;
    std::int32_t* const columns = a.columns.data() + (start - 1);
    double* const values = a.values.data() + (start - 1);
    integers order(at(length));
    std::iota(order.begin(), order.end(), 0);
    std::sort(order.begin(), order.end(), [columns](std::int32_t left, std::int32_t right) {
      return columns[left] != columns[right] ? columns[left] < columns[right] : left < right;
    });
    integers sorted_columns(at(length));
    std::vector<double> sorted_values(at(length));
    for (std::size_t k = 0; k < order.size(); ++k) {
      sorted_columns[k] = columns[order[k]];
      sorted_values[k] = values[order[k]];
    }
    // Equal columns are neighbours now: merge them, and close the gaps of earlier rows.
    const std::int32_t first = q;
    for (std::size_t k = 0; k < order.size(); ++k) {
      if (q > first && a.columns[at(q - 2)] == sorted_columns[k]) {
        a.values[at(q - 2)] = a.values[at(q - 2)] + sorted_values[k];
        continue;
      }
      a.columns[at(q - 1)] = sorted_columns[k];
      a.values[at(q - 1)] = sorted_values[k];
      ++q;
    }
    a.starts[at(i - 1)] = first;
  }
  a.starts[at(a.n)] = q;
  a.columns.resize(at(q - 1));
  a.values.resize(at(q - 1));
}

void clean(matrix& a) {
  integers marker(at(a.m));
  integers starts(at(a.n) + 1);
  starts[0] = 1;
  std::int32_t q = 1;
  for (std::int32_t i = 1; i <= a.n; ++i) {
    for (std::int32_t p = a.starts[at(i - 1)]; p < a.starts[at(i)]; ++p) {
      const std::int32_t j = a.columns[at(p - 1)];
      const std::int32_t kept = marker[at(j - 1)];
      if (kept == 0) {
        marker[at(j - 1)] = q;
        a.columns[at(q - 1)] = j;
        a.values[at(q - 1)] = a.values[at(p - 1)];
        ++q;
      } else {
        a.values[at(kept - 1)] = a.values[at(kept - 1)] + a.values[at(p - 1)];
      }
    }
    starts[at(i)] = q;
    for (std::int32_t k = starts[at(i - 1)]; k < q; ++k) marker[at(a.columns[at(k - 1)] - 1)] = 0;
  }
  std::copy(starts.begin(), starts.end(), a.starts.begin());
  a.columns.resize(at(q - 1));
  a.columns.shrink_to_fit();
  a.values.resize(at(q - 1));
  a.values.shrink_to_fit();
}

void condense(matrix& graph, array<std::int32_t>& weights) {
  const std::size_t m = at(graph.m);
  integers degree(m), owner(m, 1), size(m + 1), stamp(m + 1), redirect(m + 1);
  std::int32_t classes = 1;
  size[1] = graph.m;

  // Columns that share a class have shared every row so far; each row splits the classes it cuts.
  for (std::int32_t i = 1; i <= graph.n; ++i) {
    const std::int32_t start = graph.starts[at(i - 1)];
    const std::int32_t end = graph.starts[at(i)];
    for (std::int32_t k = start; k < end; ++k) {
      const std::size_t j = at(graph.columns[at(k - 1)] - 1);
      ++degree[j];
      --size[at(owner[j])];
    }
    for (std::int32_t k = start; k < end; ++k) {
      const std::size_t j = at(graph.columns[at(k - 1)] - 1);
      const std::size_t of = at(owner[j]);
      if (stamp[of] < i) {
        stamp[of] = i;
        if (size[of] <= 0) {
          size[of] = 1;
          redirect[of] = owner[j];
        } else {
          ++classes;
          stamp[at(classes)] = i;
          owner[j] = classes;
          size[at(classes)] = 1;
          redirect[of] = classes;
        }
      } else {
        owner[j] = redirect[of];
        ++size[at(redirect[of])];
      }
    }
  }

  integers class_degree(at(classes) + 1), number(at(classes) + 1);
  for (std::size_t j = 0; j < m; ++j) class_degree[at(owner[j])] = degree[j];
  std::int32_t kept = 0;
  for (std::size_t c = 1; c <= at(classes); ++c) number[c] = class_degree[c] > 1 ? ++kept : -1;
  for (std::int32_t& c : owner) c = number[at(c)];

  std::fill(stamp.begin(), stamp.end(), 0);
  std::int32_t pos = 1;
  for (std::int32_t i = 1; i <= graph.n; ++i) {
    const std::int32_t start = graph.starts[at(i - 1)];
    const std::int32_t end = graph.starts[at(i)];
    graph.starts[at(i - 1)] = pos;
    for (std::int32_t k = start; k < end; ++k) {
      const std::int32_t c = owner[at(graph.columns[at(k - 1)] - 1)];
      if (c < 0 || stamp[at(c)] >= i) continue;
      stamp[at(c)] = i;
      graph.columns[at(pos - 1)] = c;
      ++pos;
    }
  }
  graph.starts[at(graph.n)] = pos;
  graph.m = kept;
  graph.columns.resize(at(pos));
  graph.columns.shrink_to_fit();

  integers sums(at(kept));
  for (std::size_t j = 0; j < m; ++j)
    if (owner[j] >= 0) sums[at(owner[j] - 1)] += weights[j];
  std::copy(sums.begin(), sums.end(), weights.begin());
}

bool is_structurally_symmetric(const matrix& a) {
  if (a.n != a.m) return false;
  const matrix t = transpose(a);
  integers mark(at(a.n));
  for (std::int32_t i = 1; i <= a.n; ++i) {
    for (std::int32_t k = a.starts[at(i - 1)]; k < a.starts[at(i)]; ++k)
      mark[at(a.columns[at(k - 1)] - 1)] = 1;
    for (std::int32_t k = t.starts[at(i - 1)]; k < t.starts[at(i)]; ++k)
      if (mark[at(a.columns[at(k - 1)] - 1)] == 0) return false;
    for (std::int32_t k = a.starts[at(i - 1)]; k < a.starts[at(i)]; ++k)
      mark[at(a.columns[at(k - 1)] - 1)] = 0;
  }
  return true;
}

matrix from_coordinates(std::int32_t n, std::int32_t m, const array<std::int32_t>& rows,
                        const array<std::int32_t>& columns, const array<double>& values) {
  matrix a = shaped(n, m);
  integers cursor(at(n));
  for (const std::int32_t i : rows) ++cursor[at(i - 1)];
  a.starts[0] = 1;
  for (std::int32_t i = 1; i <= n; ++i) {
    a.starts[at(i)] = a.starts[at(i - 1)] + cursor[at(i - 1)];
    cursor[at(i - 1)] = a.starts[at(i - 1)];
  }
  allocate(a, std::ssize(rows), true);
  for (std::size_t k = 0; k < rows.size(); ++k) {
    const std::int32_t p = cursor[at(rows[k] - 1)]++;
    a.columns[at(p - 1)] = columns[k];
    a.values[at(p - 1)] = values[k];
  }
  return a;
}

void multiply_vector(const matrix& a, const array<double>& x, array<double>& y) {
  for (std::int32_t i = 1; i <= a.n; ++i) {
    double sum = 0;
    for (std::int32_t k = a.starts[at(i - 1)]; k < a.starts[at(i)]; ++k)
      sum = a.values[at(k - 1)] * x[at(a.columns[at(k - 1)] - 1)] + sum;
    y[at(i - 1)] = sum;
  }
}

void multiply_vector_transposed(const matrix& a, const array<double>& x, array<double>& y) {
  std::fill(y.begin(), y.end(), 0.0);
  for (std::int32_t i = 1; i <= a.n; ++i) {
    const double xi = x[at(i - 1)];
    for (std::int32_t k = a.starts[at(i - 1)]; k < a.starts[at(i)]; ++k) {
      double& sum = y[at(a.columns[at(k - 1)] - 1)];
      sum = xi * a.values[at(k - 1)] + sum;
    }
  }
}

void multiply_integers(const matrix& a, const array<std::int32_t>& x, array<std::int32_t>& y) {
  for (std::int32_t i = 1; i <= a.n; ++i) {
    std::int32_t sum = 0;
    for (std::int32_t k = a.starts[at(i - 1)]; k < a.starts[at(i)]; ++k)
      sum += x[at(a.columns[at(k - 1)] - 1)];
    y[at(i - 1)] = sum;
  }
}

void multiply_integers_transposed(const matrix& a, const array<std::int32_t>& x,
                                  array<std::int32_t>& y) {
  std::fill(y.begin(), y.end(), 0);
  for (std::int32_t i = 1; i <= a.n; ++i)
    for (std::int32_t k = a.starts[at(i - 1)]; k < a.starts[at(i)]; ++k)
      y[at(a.columns[at(k - 1)] - 1)] += x[at(i - 1)];
}

}  // namespace bench::plain
