// SPDX-License-Identifier: MIT
// Rows in ascending order of columns, each column once.
#include "../csr_matrix/ascending_rows.hpp"
#include "../csr_matrix/row_starts.hpp"
#include "../support/scratch.hpp"
#include "row_sorter.hpp"

#include <csr_matrix_mod/ordering.hpp>

#include <algorithm>
#include <utility>

namespace csr_matrix_mod {

namespace {

struct no_values {
  static constexpr std::string_view routine = "csr_matrix_sortrow_noval";
  void reorder(const std::int32_t* /*perm*/, std::int32_t /*len*/) const {}
  void move(std::int32_t /*k*/, std::int32_t /*p*/) const {}
  void add(std::int32_t /*k*/, std::int32_t /*p*/) const {}
};

struct row_values {
  static constexpr std::string_view routine = "csr_matrix_sortrow";

  void reorder(const std::int32_t* perm, std::int32_t len) const {
    scratch<double> sorted(len, contents::undefined, routine);
    std::transform(perm, perm + len, sorted.begin(), [this](std::int32_t k) { return a[k - 1]; });
    std::copy(sorted.begin(), sorted.end(), a);
  }
  void move(std::int32_t k, std::int32_t p) const { a[k - 1] = a[p - 1]; }
  void add(std::int32_t k, std::int32_t p) const { a[k - 1] = a[k - 1] + a[p - 1]; }

  double* a;
};

template <class Values>
void sort_row(std::int32_t& len, std::int32_t* cols, const Values& values) {
  if (len < 1) return;
  {
    scratch<std::int32_t> perm(len, contents::undefined, Values::routine);
    quicksort({cols, len}, {perm.data(), len});
    values.reorder(perm.data(), len);
  }
  std::int32_t k = 1;  // the last column kept
  std::int32_t p = 1;
  while (p < len) {
    ++p;
    if (cols[k - 1] == cols[p - 1]) {
      values.add(k, p);
      continue;
    }
    ++k;
    values.move(k, p);
    cols[k - 1] = cols[p - 1];
  }
  len = k;
}

// Sorts every row and moves it to where the row before it ends. How many entries remain.
std::int32_t sort_rows(csr_matrix& mat) {
  row_sorter sorter(mat, lengths_of_rows(mat).longest,
                    mat.type == matrix_structure_only ? no_values::routine : row_values::routine);
  std::int32_t* const starts = mat.ia.data();
  std::int32_t q = 1;
  std::int32_t next_row = std::exchange(starts[0], q);
  for (std::int64_t i = 1; i <= mat.n; ++i) {
    const std::int32_t start = next_row;
    next_row = starts[i];
    q += sorter.sort(start, next_row - start, q);
    starts[i] = q;
  }
  return q - 1;
}

}  // namespace

void csr_matrix_sortrow(std::int32_t& len, array_view<std::int32_t> cols, array_view<double> vals) {
  sort_row(len, cols.data(), row_values{vals.data()});
}

void csr_matrix_sortrow_noval(std::int32_t& len, array_view<std::int32_t> cols) {
  sort_row(len, cols.data(), no_values{});
}

void csr_matrix_sort(csr_matrix& mat) {
  if (rows_ascend(mat)) return;
  const std::int32_t stored = csr_matrix_num_nz(mat);
  const std::int32_t nnz = sort_rows(mat);
  // Nothing merged: the storage stays, spare capacity included.
  if (nnz != stored) csr_matrix_reallocate(mat, nnz);
}

}  // namespace csr_matrix_mod
