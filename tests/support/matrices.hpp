// SPDX-License-Identifier: MIT
// Small matrices written down row by row, and records read back the same way. Values are compared
// bit for bit: -0.0 is not 0.0, and a NaN equals itself.
#pragma once

#include <csr_matrix_mod/csr_matrix.hpp>

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <vector>

namespace tests {

using csr_matrix_mod::csr_matrix;

struct entry {
  std::int32_t column;
  double value;
};
bool operator==(const entry& left, const entry& right);
std::ostream& operator<<(std::ostream& out, const entry& e);

using entry_rows = std::vector<std::vector<entry>>;          // in stored order
using column_rows = std::vector<std::vector<std::int32_t>>;  // in stored order

// n is the number of rows given; `spare` slots of capacity beyond the entries. Nothing is printed.
csr_matrix real_matrix(std::int32_t m, const entry_rows& rows, std::int32_t spare = 0);
csr_matrix pattern(std::int32_t m, const column_rows& rows, std::int32_t spare = 0);

// The stored entries row by row. The record must be well formed, else the test fails.
entry_rows entries_of(const csr_matrix& mat);
column_rows columns_of(const csr_matrix& mat);

// The pattern of `rows`.
column_rows columns_of(const entry_rows& rows);

// In the record and in `rows`, row `row`, counted from 0, begins where the row two before it does:
// the row before it has no entries any more, this one has those of all three.
template <class Rows>
void begin_two_rows_earlier(csr_matrix& mat, Rows& rows, std::size_t row) {
  mat.ia.data()[row] = mat.ia.data()[row - 2];
  auto all = rows[row - 2];
  for (const std::size_t more : {row - 1, row})
    all.insert(all.end(), rows[more].begin(), rows[more].end());
  rows[row - 1].clear();
  rows[row] = all;
}

// In the record and in `rows`, the row before row `row`, counted from 0, ends with the last entry of
// all; row `row` begins there, ends before it begins, and has no entries any more.
template <class Rows>
void end_before_it_begins(csr_matrix& mat, Rows& rows, std::size_t row) {
  mat.ia.data()[row] = mat.ia.data()[rows.size()];
  auto& all = rows[row - 1];
  for (std::size_t more = row; more < rows.size(); ++more)
    all.insert(all.end(), rows[more].begin(), rows[more].end());
  rows[row].clear();
}

}  // namespace tests
