// SPDX-License-Identifier: MIT
// It keeps columns, not rows: the arrays of a matrix by rows are those of its transpose by columns.
#include "peers.hpp"
#include "zero_based.hpp"

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wshadow"
#include <armadillo>
#pragma GCC diagnostic pop

namespace bench {

namespace {

template <class T>
arma::Col<T> column(const array<T>& of) {
  return arma::Col<T>(of.data(), of.size());
}

arma::sp_mat record(const matrix& of) {
  const zero_based<arma::uword> arrays(of);
  return arma::sp_mat(column(arrays.columns), column(arrays.starts), column(arrays.values),
                      static_cast<arma::uword>(of.m), static_cast<arma::uword>(of.n));
}

arma::vec record(const array<double>& x) { return arma::vec(x.data(), x.size()); }

answer taken(const arma::sp_mat& of) {
  return matrix_answer(from_zero_based<arma::uword>(static_cast<std::int64_t>(of.n_cols),
                                                    static_cast<std::int64_t>(of.n_rows),
                                                    of.col_ptrs, of.row_indices, of.values));
}

std::unique_ptr<contestant> multiply(const problem& p) {
  return makes([a = record(p.a)]() -> arma::sp_mat { return a * a; }, taken);
}
std::unique_ptr<contestant> restriction(const problem& p) {
  return makes(
      [a = record(p.a), b = record(p.b), r = record(p.r)]() -> arma::sp_mat {
        const arma::sp_mat ab = b * a;
        return ab * r;
      },
      taken);
}
std::unique_ptr<contestant> sum(const problem& p) {
  return makes([a = record(p.a), b = record(p.b)]() -> arma::sp_mat { return a + b; }, taken);
}
std::unique_ptr<contestant> symmetrize(const problem& p) {
  return makes([a = record(p.a)]() -> arma::sp_mat { return a + a.t(); }, taken);
}
std::unique_ptr<contestant> transpose(const problem& p) {
  return makes([a = record(p.a)]() -> arma::sp_mat { return a.t(); }, taken);
}
std::unique_ptr<contestant> coordinates(const problem& p) {
  arma::umat places(2, p.rows.size());
  for (std::size_t k = 0; k < p.rows.size(); ++k) {
    places(0, k) = static_cast<arma::uword>(p.listed.columns[k] - 1);
    places(1, k) = static_cast<arma::uword>(p.rows[k] - 1);
  }
  return makes(
      [places = std::move(places), values = record(p.listed.values), n = p.a.n, m = p.a.m] {
        return arma::sp_mat(places, values, static_cast<arma::uword>(m),
                            static_cast<arma::uword>(n), true, false);
      },
      taken);
}
std::unique_ptr<contestant> product_with_vector(const problem& p) {
  return changes(
      [length = static_cast<arma::uword>(p.a.n)] { return arma::vec(length, arma::fill::zeros); },
      [a = record(p.a), x = record(p.x)](arma::vec& y) { y = a.t() * x; },
      vector_answer<arma::vec>);
}
std::unique_ptr<contestant> product_with_vector_transposed(const problem& p) {
  return changes(
      [length = static_cast<arma::uword>(p.a.m)] { return arma::vec(length, arma::fill::zeros); },
      [a = record(p.a), x = record(p.x)](arma::vec& y) { y = a * x; }, vector_answer<arma::vec>);
}

}  // namespace

peer armadillo() {
  return {"Armadillo",
          {{"multiply", multiply},
           {"restriction", restriction},
           {"sum", sum},
           {"symmetrize", symmetrize},
           {"transpose", transpose},
           {"coordinates", coordinates},
           {"A x", product_with_vector},
           {"A' x", product_with_vector_transposed}}};
}

}  // namespace bench
