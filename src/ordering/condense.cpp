// SPDX-License-Identifier: MIT
// Columns with the same rows become one, by refining a partition of the columns row by row.
#include "../support/scratch.hpp"
#include "../support/stop.hpp"

#include <csr_matrix_mod/ordering.hpp>

#include <algorithm>
#include <utility>

namespace csr_matrix_mod {

namespace {

constexpr std::string_view routine = "csr_matrix_condense";
constexpr std::int32_t dropped = -1;

// The columns parted into classes, numbered from 1 in order of creation. At first all are in class
// 1; after row i two columns share a class when the same rows up to i hold them.
//
// A repeated column counts in the size of its class as often as it stands, so the class looks
// larger, or more of it seems to lie in the row, than is true. A class that looks too large can
// lose all its members and is then never met again; each repeat can leave one such class behind,
// so that there come to be more classes than columns: then room is made for twice as many. To
// count repeats beforehand takes a quarter of the time.
class column_partition {
 public:
  explicit column_partition(const csr_matrix& mat)
      : columns_(mat.m, contents::undefined, routine),
        classes_(mat.m, contents::undefined, routine) {
    std::fill(columns_.begin(), columns_.end(), column{0, 1});
    classes_(1) = {mat.m, 0, 0};
  }

  // Splits every class that has members in this row and members outside it.
  void refine(std::int32_t i, array_view<const std::int32_t> row) {
    for (const std::int32_t j : row) {
      column& of = columns_(j);
      ++of.degree;
      --classes_(of.cl).size;
    }
    for (const std::int32_t j : row) {
      std::int32_t& cl = columns_(j).cl;
      column_class& from = classes_(cl);
      if (from.stamp < i) {
        from.stamp = i;
        if (from.size <= 0) {
          from.redirect = cl;
          from.size = 1;
        } else {
          from.redirect = created_ + 1;
          cl = create_class(i);
        }
      } else {
        cl = from.redirect;
        ++classes_(cl).size;
      }
    }
  }

  // Renumbers the classes that are kept, those of columns with more than one entry, in order of
  // creation. How many there are.
  std::int32_t keep_classes() {
    scratch<std::int32_t> number(created_, contents::zero, routine);
    for (const column& of : columns_) number(of.cl) = of.degree;
    std::int32_t kept = 0;
    for (std::int32_t& degree : number) degree = degree > 1 ? ++kept : dropped;
    for (column& of : columns_) of.cl = number(of.cl);
    return kept;
  }

  // The classes in place of the columns, each once a row where it occurs first; the next free
  // position. No row grows, so every column is read before its place is written.
  std::int32_t rewrite_rows(csr_matrix& mat) {
    for (column_class& cl : classes_) cl.stamp = 0;
    std::int32_t* const starts = mat.ia.data();
    std::int32_t* const columns = mat.ja.data();
    std::int32_t p = 1;
    for (std::int64_t row = 1; row <= mat.n; ++row) {
      const auto i = static_cast<std::int32_t>(row);
      std::int32_t k = starts[i - 1];
      starts[i - 1] = p;
      for (const std::int32_t next_row = starts[i]; k < next_row; ++k) {
        const std::int32_t cl = columns_(columns[k - 1]).cl;
        if (cl == dropped || classes_(cl).stamp == i) continue;
        classes_(cl).stamp = i;
        columns[p - 1] = cl;
        ++p;
      }
    }
    starts[mat.n] = p;
    return p;
  }

  // Adds the weight of every column to that of its class; sums wrap at 32 bits.
  void add_weights(const std::int32_t* column_weight, std::int32_t* class_weight) const {
    for (const column& of : columns_) {
      const std::int32_t weight = *column_weight++;
      if (of.cl == dropped) continue;
      std::int32_t& sum = class_weight[of.cl - 1];
      sum = static_cast<std::int32_t>(static_cast<std::uint32_t>(sum) +
                                      static_cast<std::uint32_t>(weight));
    }
  }

 private:
  struct column {
    std::int32_t degree;  // entries so far
    std::int32_t cl;      // its class
  };

  struct column_class {
    std::int32_t size;      // members outside the row at hand
    std::int32_t stamp;     // the last row it was met in,
    std::int32_t redirect;  // and where its members met in that row go
  };

  // With one member. A class born in a row is its own home: what else of it stands in the row
  // belongs there.
  std::int32_t create_class(std::int32_t i) {
    if (created_ == classes_.length()) grow();
    ++created_;
    classes_(created_) = {1, i, created_};
    return created_;
  }

  void grow() {
    scratch<column_class> more(2 * classes_.length(), contents::undefined, routine);
    std::copy(classes_.begin(), classes_.end(), more.begin());
    classes_ = std::move(more);
  }

  scratch<column> columns_;
  scratch<column_class> classes_;
  std::int32_t created_ = 1;
};

}  // namespace

void csr_matrix_condense(csr_matrix& mat, array_view<std::int32_t> col_wgt) {
  if (mat.type == matrix_real) stop("try condensing matrix with values!");
  if (col_wgt.length() < mat.m) stop(" size of col_wgt too small");
  if (mat.m <= 0) {
    print_line("warning: try condensing a matrix of 0 columns!");
    return;
  }
  column_partition partition(mat);
  for (std::int64_t row = 1; row <= mat.n; ++row) {
    const auto i = static_cast<std::int32_t>(row);
    partition.refine(i, csr_matrix_getrow(std::as_const(mat), i));
  }
  const std::int32_t newm = partition.keep_classes();

  // All temporaries are had before the matrix changes.
  scratch<std::int32_t> weights(newm, contents::zero, routine);
  partition.add_weights(col_wgt.data(), weights.data());
  const std::int32_t next_free = partition.rewrite_rows(mat);
  mat.m = newm;
  csr_matrix_reallocate(mat, next_free);  // one spare slot
  std::copy(weights.begin(), weights.end(), col_wgt.data());
}

}  // namespace csr_matrix_mod
