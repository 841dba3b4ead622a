// SPDX-License-Identifier: MIT
#include "peers.hpp"
#include "zero_based.hpp"

#include <Eigen/SparseCore>

namespace bench {

namespace {

using rows = Eigen::SparseMatrix<double, Eigen::RowMajor, int>;
using vector = Eigen::VectorXd;

rows record(const matrix& of) {
  const zero_based<int> arrays(of);
  return Eigen::Map<const rows>(of.n, of.m, of.nnz(), arrays.starts.data(), arrays.columns.data(),
                                arrays.values.data());
}

answer taken(const rows& of) {
  return matrix_answer(from_zero_based<int>(of.rows(), of.cols(), of.outerIndexPtr(),
                                            of.innerIndexPtr(), of.valuePtr()));
}

vector record(const array<double>& x) { return Eigen::Map<const vector>(x.data(), std::ssize(x)); }

std::unique_ptr<contestant> multiply(const problem& p) {
  return makes([a = record(p.a)]() -> rows { return a * a; }, taken);
}

std::unique_ptr<contestant> restriction(const problem& p) {
  return makes(
      [a = record(p.a), b = record(p.b), r = record(p.r)]() -> rows { return r * rows(a * b); },
      taken);
}

std::unique_ptr<contestant> sum(const problem& p) {
  return makes([a = record(p.a), b = record(p.b)]() -> rows { return a + b; }, taken);
}

std::unique_ptr<contestant> symmetrize(const problem& p) {
  return makes([a = record(p.a)]() -> rows { return a + rows(a.transpose()); }, taken);
}

std::unique_ptr<contestant> transpose(const problem& p) {
  return makes([a = record(p.a)]() -> rows { return a.transpose(); }, taken);
}

// Rows come out sorted when they pass through the other order.
std::unique_ptr<contestant> sort(const problem& p) {
  return makes(
      [a = record(p.a)]() -> rows { return Eigen::SparseMatrix<double, Eigen::ColMajor, int>(a); },
      taken);
}

std::unique_ptr<contestant> coordinates(const problem& p) {
  std::vector<Eigen::Triplet<double, int>> entries(p.rows.size());
  for (std::size_t k = 0; k < entries.size(); ++k)
    entries[k] = {p.rows[k] - 1, p.listed.columns[k] - 1, p.listed.values[k]};
  return makes(
      [n = p.a.n, m = p.a.m, entries = std::move(entries)] {
        rows a(n, m);
        a.setFromTriplets(entries.begin(), entries.end());
        return a;
      },
      taken);
}

std::unique_ptr<contestant> product_with_vector(const problem& p) {
  return changes([length = p.a.n] { return vector(vector::Zero(length)); },
                 [a = record(p.a), x = record(p.x)](vector& y) { y.noalias() = a * x; },
                 vector_answer<vector>);
}

std::unique_ptr<contestant> product_with_vector_transposed(const problem& p) {
  return changes([length = p.a.m] { return vector(vector::Zero(length)); },
                 [a = record(p.a), x = record(p.x)](vector& y) { y.noalias() = a.transpose() * x; },
                 vector_answer<vector>);
}

}  // namespace

peer eigen() {
  return {"Eigen",
          {{"multiply", multiply},
           {"restriction", restriction},
           {"sum", sum},
           {"symmetrize", symmetrize},
           {"transpose", transpose},
           {"sort", sort},
           {"coordinates", coordinates},
           {"A x", product_with_vector},
           {"A' x", product_with_vector_transposed}}};
}

}  // namespace bench
