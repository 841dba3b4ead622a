// SPDX-License-Identifier: MIT
// Rows in ascending order of columns, each column once. A row with values and a row without differ
// only in what moves along with a column.
#include "../support/scratch.hpp"

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
  for (std::int32_t p = 2; p <= len; ++p) {
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

// Sorts every row where it stands; row_end(i+1) is where its distinct columns end.
void sort_rows(csr_matrix& mat, std::int32_t* row_end) {
  for (std::int64_t i = 1; i <= mat.n; ++i) {
    const std::int32_t start = mat.ia(i);
    std::int32_t len = mat.ia(i + 1) - start;
    const array_view<std::int32_t> cols(mat.ja.data() + (start - 1), len);
    if (mat.type == matrix_structure_only)
      csr_matrix_sortrow_noval(len, cols);
    else
      csr_matrix_sortrow(len, cols, {mat.a.data() + (start - 1), len});
    row_end[i] = start + len;
  }
}

template <class T>
void move_down(T* entries, std::int32_t from, std::int32_t count, std::int32_t to) {
  if (from != to) std::copy_n(entries + (from - 1), count, entries + (to - 1));
}

// Closes the gaps behind the rows; row_end becomes the row starts.
void close_gaps(csr_matrix& mat, std::int32_t* row_end) {
  std::int32_t q = 1;
  row_end[0] = q;
  for (std::int64_t i = 1; i <= mat.n; ++i) {
    const std::int32_t start = mat.ia(i);
    const std::int32_t count = row_end[i] - start;
    move_down(mat.ja.data(), start, count, q);
    if (mat.type == matrix_real) move_down(mat.a.data(), start, count, q);
    q += count;
    row_end[i] = q;
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
  scratch<std::int32_t> newia(std::int64_t{mat.n} + 1, contents::undefined, "csr_matrix_sort");
  sort_rows(mat, newia.data());
  close_gaps(mat, newia.data());

  // Nothing merged: the storage stays, spare capacity included.
  const std::int32_t nnz = newia(newia.length()) - 1;
  if (nnz != csr_matrix_num_nz(mat)) csr_matrix_reallocate(mat, nnz);
  std::copy(newia.begin(), newia.end(), mat.ia.data());
}

}  // namespace csr_matrix_mod
