// SPDX-License-Identifier: MIT
// The sum of two matrices, row by row, with a column marker. The sum and the off-diagonal pattern
// differ only in the rule for an entry.
#include "../support/entry_count.hpp"
#include "../support/scratch.hpp"
#include "../support/stop.hpp"

#include <csr_matrix_mod/convert.hpp>

#include <algorithm>

namespace csr_matrix_mod {

namespace {

struct add_values {
  static constexpr std::string_view routine = "csr_matrix_sum";
  static bool skips(std::int32_t /*i*/, std::int32_t /*j*/) { return false; }
  static void place(double& kept, double value) { kept = value; }
  static void repeat(double& kept, double value) { kept = kept + value; }
};

struct unit_off_diagonal {
  static constexpr std::string_view routine = "csr_matrix_sum_nodiag";
  static bool skips(std::int32_t i, std::int32_t j) { return i == j; }
  static void place(double& kept, double /*value*/) { kept = 1.0; }
  static void repeat(double& kept, double /*value*/) { kept = 1.0; }
};

struct operand {
  explicit operand(const csr_matrix& mat)
      : starts(mat.ia.data()), columns(mat.ja.data()), values(mat.a.data()) {}

  const std::int32_t* starts;
  const std::int32_t* columns;
  const double* values;
};

// The columns of row i not counted yet; mark(j) is the last row in which column j was.
template <class Rule>
std::int64_t count_row(const operand& mat, std::int32_t i, std::int32_t* mark) {
  std::int64_t fresh = 0;
  const std::int32_t next_row = mat.starts[i];
  for (std::int32_t k = mat.starts[i - 1]; k < next_row; ++k) {
    const std::int32_t j = mat.columns[k - 1];
    if (Rule::skips(i, j) || mark[j - 1] >= i) continue;
    mark[j - 1] = i;
    ++fresh;
  }
  return fresh;
}

// The rows of the sum while they are filled; mark(j) is the position of column j in the row at
// hand, 0 if it has none.
template <class Rule>
class filling {
 public:
  filling(csr_matrix& sum, std::int32_t* mark)
      : columns_(sum.ja.data()),
        values_(sum.type == matrix_real ? sum.a.data() : nullptr),
        mark_(mark) {}

  // Puts row i of an operand behind position p-1; the next free position.
  std::int32_t add_row(const operand& mat, std::int32_t i, std::int32_t p) const {
    const std::int32_t next_row = mat.starts[i];
    for (std::int32_t k = mat.starts[i - 1]; k < next_row; ++k) {
      const std::int32_t j = mat.columns[k - 1];
      if (Rule::skips(i, j)) continue;
      if (mark_[j - 1] == 0) {
        mark_[j - 1] = p;
        columns_[p - 1] = j;
        if (values_ != nullptr) Rule::place(values_[p - 1], mat.values[k - 1]);
        ++p;
      } else if (values_ != nullptr) {
        Rule::repeat(values_[mark_[j - 1] - 1], mat.values[k - 1]);
      }
    }
    return p;
  }

  // Only the columns of the row that ends are unmarked, so a row costs what it holds.
  void end_row(std::int32_t start, std::int32_t next_row) const {
    for (std::int32_t k = start; k < next_row; ++k) mark_[columns_[k - 1] - 1] = 0;
  }

 private:
  std::int32_t* columns_;
  double* values_;
  std::int32_t* mark_;
};

void require_same_shape(const csr_matrix& mat1, const csr_matrix& mat2) {
  if (mat1.n == mat2.n && mat1.m == mat2.m) return;
  print_free("n = ", mat1.n, mat2.n, " m = ", mat1.m, mat2.m);
  stop("try to sum two matrix of different row/column size");
}

template <class Rule>
void sum(const csr_matrix& mat1, const csr_matrix& mat2, csr_matrix& mat3) {
  require_same_shape(mat1, mat2);
  const bool values = mat1.type == matrix_real && mat2.type == matrix_real;
  csr_matrix_initial(mat1.n, mat3, mat1.m, values ? matrix_real : matrix_structure_only);
  scratch<std::int32_t> mark(mat1.m, contents::zero, Rule::routine);
  const operand first(mat1);
  const operand second(mat2);

  // Count: each column of a row once, whichever operand shows it.
  std::int64_t nnz = 0;
  for (std::int64_t row = 1; row <= mat1.n; ++row) {
    const auto i = static_cast<std::int32_t>(row);
    nnz += count_row<Rule>(first, i, mark.data());
    nnz += count_row<Rule>(second, i, mark.data());
  }
  std::fill(mark.begin(), mark.end(), 0);
  csr_matrix_allocate(mat3, entry_count(nnz, Rule::routine));

  // Fill and row starts in one pass: the columns of the first operand, then those only the second
  // has.
  const filling<Rule> fill(mat3, mark.data());
  std::int32_t* const starts = mat3.ia.data();
  std::int32_t p = 1;
  if (mat3.n >= 0) starts[0] = p;
  for (std::int64_t row = 1; row <= mat3.n; ++row) {
    const auto i = static_cast<std::int32_t>(row);
    p = fill.add_row(first, i, p);
    p = fill.add_row(second, i, p);
    fill.end_row(starts[i - 1], p);
    starts[i] = p;
  }
}

}  // namespace

void csr_matrix_sum(const csr_matrix& mat1, const csr_matrix& mat2, csr_matrix& mat3) {
  sum<add_values>(mat1, mat2, mat3);
}

void csr_matrix_sum_nodiag(const csr_matrix& mat1, const csr_matrix& mat2, csr_matrix& mat3) {
  sum<unit_off_diagonal>(mat1, mat2, mat3);
}

}  // namespace csr_matrix_mod
