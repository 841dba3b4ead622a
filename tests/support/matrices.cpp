// SPDX-License-Identifier: MIT
#include "matrices.hpp"

#include <gtest/gtest.h>

#include <bit>
#include <ostream>
#include <stdexcept>

namespace tests {

namespace {

using csr_matrix_mod::array_ref;

template <class T>
array_ref<T> storage(std::size_t length) {
  array_ref<T> array;
  if (!array.allocate(static_cast<std::int64_t>(length))) throw std::bad_alloc();
  return array;
}

csr_matrix record(std::int32_t m, const column_rows& rows, std::int32_t spare,
                  csr_matrix_mod::matrix_type type) {
  csr_matrix mat;
  mat.n = static_cast<std::int32_t>(rows.size());
  mat.m = m;
  mat.type = type;
  mat.ia = storage<std::int32_t>(rows.size() + 1);
  mat.ia(1) = 1;
  for (std::int32_t i = 1; i <= mat.n; ++i)
    mat.ia(i + 1) =
        mat.ia(i) + static_cast<std::int32_t>(rows[static_cast<std::size_t>(i - 1)].size());
  mat.ja = storage<std::int32_t>(static_cast<std::size_t>(mat.ia(mat.n + 1) - 1 + spare));
  std::int32_t k = 0;
  for (const auto& row : rows)
    for (const std::int32_t j : row) mat.ja(++k) = j;
  while (k < mat.ja.length()) mat.ja(++k) = -77;  // spare slots are nobody's column
  return mat;
}

}  // namespace

bool operator==(const entry& left, const entry& right) {
  return left.column == right.column &&
         std::bit_cast<std::uint64_t>(left.value) == std::bit_cast<std::uint64_t>(right.value);
}

std::ostream& operator<<(std::ostream& out, const entry& e) {
  const auto precision = out.precision(17);
  out << '(' << e.column << ", " << e.value << ')';
  out.precision(precision);
  return out;
}

csr_matrix real_matrix(std::int32_t m, const entry_rows& rows, std::int32_t spare) {
  csr_matrix mat = record(m, columns_of(rows), spare, csr_matrix_mod::matrix_real);
  mat.a = storage<double>(static_cast<std::size_t>(mat.ja.length()));
  std::int32_t k = 0;
  for (const auto& row : rows)
    for (const entry& e : row) mat.a(++k) = e.value;
  while (k < mat.a.length()) mat.a(++k) = -77.0;
  return mat;
}

csr_matrix pattern(std::int32_t m, const column_rows& rows, std::int32_t spare) {
  return record(m, rows, spare, csr_matrix_mod::matrix_structure_only);
}

entry_rows entries_of(const csr_matrix& mat) {
  EXPECT_EQ(mat.type, csr_matrix_mod::matrix_real);
  EXPECT_EQ(csr_matrix_check(mat).value_or("well formed"), "well formed");
  entry_rows rows;
  for (std::int32_t i = 1; i <= mat.n; ++i) {
    rows.emplace_back();
    for (std::int32_t k = mat.ia(i); k < mat.ia(i + 1); ++k)
      rows.back().push_back({mat.ja(k), mat.a(k)});
  }
  return rows;
}

column_rows columns_of(const csr_matrix& mat) {
  EXPECT_EQ(csr_matrix_check(mat).value_or("well formed"), "well formed");
  column_rows rows;
  for (std::int32_t i = 1; i <= mat.n; ++i) {
    rows.emplace_back();
    for (std::int32_t k = mat.ia(i); k < mat.ia(i + 1); ++k) rows.back().push_back(mat.ja(k));
  }
  return rows;
}

column_rows columns_of(const entry_rows& rows) {
  column_rows columns;
  for (const auto& row : rows) {
    columns.emplace_back();
    for (const entry& e : row) columns.back().push_back(e.column);
  }
  return columns;
}

}  // namespace tests
