// SPDX-License-Identifier: MIT
// Rows in ascending order of columns, each column once.
#include "../csr_matrix/ascending_rows.hpp"
#include "../csr_matrix/row_starts.hpp"
#include "../support/scratch.hpp"
#include "row_sorter.hpp"

#include <csr_matrix_mod/ordering.hpp>

#include <algorithm>

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

// Sorts every row and moves it to where the row before it ends; the new row starts.
void sort_rows(csr_matrix& mat, std::int32_t* newia) {
  row_sorter sorter(mat, longest_row(mat),
                    mat.type == matrix_structure_only ? no_values::routine : row_values::routine);
  const std::int32_t* const starts = mat.ia.data();
  std::int32_t q = 1;
  newia[0] = q;
  for (std::int64_t i = 1; i <= mat.n; ++i) {
    const std::int32_t start = starts[i - 1];
    q += sorter.sort(start, starts[i] - start, q);
    newia[i] = q;
  }
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
  scratch<std::int32_t> newia(std::int64_t{mat.n} + 1, contents::undefined, "csr_matrix_sort");
  sort_rows(mat, newia.data());

  // Nothing merged: the storage stays, spare capacity included.
  const std::int32_t nnz = newia(newia.length()) - 1;
  if (nnz != csr_matrix_num_nz(mat)) csr_matrix_reallocate(mat, nnz);
  std::copy(newia.begin(), newia.end(), mat.ia.data());
}

}  // namespace csr_matrix_mod
