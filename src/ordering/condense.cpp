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

// The entries whose column stands in their row already.
std::int64_t repeated_entries(const csr_matrix& mat) {
  scratch<std::int32_t> mark(mat.m, contents::zero, routine);  // the last row column j was in
  std::int64_t repeated = 0;
  for (std::int64_t row = 1; row <= mat.n; ++row) {
    const auto i = static_cast<std::int32_t>(row);
    for (const std::int32_t j : csr_matrix_getrow(mat, i)) {
      repeated += mark(j) == i ? 1 : 0;
      mark(j) = i;
    }
  }
  return repeated;
}

// The columns parted into classes, numbered from 1 in order of creation. At first all are in class
// 1; after row i two columns share a class when the same rows up to i hold them.
//
// A repeated column counts in the size of its class as often as it stands, so the class looks
// larger, or more of it seems to lie in the row, than is true. A class that looks too large can
// lose all its members and is then never met again; each repeat can leave one such class behind,
// hence there are never more classes than columns and repeated entries.
class column_partition {
 public:
  explicit column_partition(const csr_matrix& mat)
      : columns_(mat.m),
        classes_(columns_ + repeated_entries(mat)),
        block_(2 * columns_ + 3 * classes_, contents::undefined, routine),
        degree_(block_.data()),
        class_(degree_ + columns_),
        size_(class_ + columns_),
        stamp_(size_ + classes_),
        redirect_(stamp_ + classes_) {
    std::fill_n(degree_, columns_, 0);
    std::fill_n(class_, columns_, 1);
    size_[0] = mat.m;
    stamp_[0] = 0;
  }

  // Splits every class that has members in this row and members outside it.
  void refine(std::int32_t i, array_view<const std::int32_t> row) {
    for (const std::int32_t j : row) {
      ++degree_[j - 1];
      --size_[class_[j - 1] - 1];
    }
    for (const std::int32_t j : row) {
      const std::int32_t cl = class_[j - 1];
      if (stamp_[cl - 1] < i) {
        stamp_[cl - 1] = i;
        const std::int32_t home = size_[cl - 1] <= 0 ? cl : create_class(i);
        redirect_[cl - 1] = home;
        size_[home - 1] = 1;
        class_[j - 1] = home;
      } else {
        class_[j - 1] = redirect_[cl - 1];
        ++size_[class_[j - 1] - 1];
      }
    }
  }

  // Renumbers the classes that are kept, those of columns with more than one entry, in order of
  // creation. How many there are.
  std::int32_t keep_classes() {
    scratch<std::int32_t> number(created_, contents::zero, routine);
    for (std::int64_t j = 1; j <= columns_; ++j) number(class_[j - 1]) = degree_[j - 1];
    std::int32_t kept = 0;
    for (std::int32_t& degree : number) degree = degree > 1 ? ++kept : dropped;
    for (std::int64_t j = 1; j <= columns_; ++j) class_[j - 1] = number(class_[j - 1]);
    return kept;
  }

  // The classes in place of the columns, each once a row where it occurs first; the next free
  // position. No row grows, so every column is read before its place is written.
  std::int32_t rewrite_rows(csr_matrix& mat) {
    std::fill_n(stamp_, columns_, 0);
    std::int32_t* const starts = mat.ia.data();
    std::int32_t* const columns = mat.ja.data();
    std::int32_t p = 1;
    for (std::int64_t row = 1; row <= mat.n; ++row) {
      const auto i = static_cast<std::int32_t>(row);
      std::int32_t k = starts[i - 1];
      starts[i - 1] = p;
      for (const std::int32_t next_row = starts[i]; k < next_row; ++k) {
        const std::int32_t cl = class_[columns[k - 1] - 1];
        if (cl == dropped || stamp_[cl - 1] == i) continue;
        stamp_[cl - 1] = i;
        columns[p - 1] = cl;
        ++p;
      }
    }
    starts[mat.n] = p;
    return p;
  }

  // Adds the weight of every column to that of its class; sums wrap at 32 bits.
  void add_weights(const std::int32_t* column_weight, std::int32_t* class_weight) const {
    for (std::int64_t j = 1; j <= columns_; ++j) {
      if (class_[j - 1] == dropped) continue;
      std::int32_t& sum = class_weight[class_[j - 1] - 1];
      sum = static_cast<std::int32_t>(static_cast<std::uint32_t>(sum) +
                                      static_cast<std::uint32_t>(column_weight[j - 1]));
    }
  }

 private:
  // A class born in a row is its own home: what else of it stands in the row belongs there.
  std::int32_t create_class(std::int32_t i) {
    ++created_;
    stamp_[created_ - 1] = i;
    redirect_[created_ - 1] = created_;
    return created_;
  }

  std::int64_t columns_;
  std::int64_t classes_;  // room for so many
  scratch<std::int32_t> block_;
  std::int32_t* degree_;  // entries of each column so far
  std::int32_t* class_;   // the class of each column
  // For each class: its members outside the row at hand, the last row it was met in, and where the
  // members met in that row go.
  std::int32_t* size_;
  std::int32_t* stamp_;
  std::int32_t* redirect_;
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
