// SPDX-License-Identifier: MIT
// It keeps recursive blocks; forming them is not part of a call that takes and gives them.
#include "peers.hpp"
#include "zero_based.hpp"

#include <stdexcept>

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wpedantic"
#pragma GCC diagnostic ignored "-Wconversion"
#include <rsb.h>
#pragma GCC diagnostic pop

namespace bench {

namespace {

constexpr rsb_type_t real = RSB_NUMERICAL_TYPE_DOUBLE;
constexpr double one = 1;
constexpr double zero = 0;

void require(rsb_err_t error) {
  if (error != RSB_ERR_NO_ERROR) throw std::runtime_error("librsb");
}

// Once a process, before its first matrix.
void start() {
  require(rsb_lib_init(RSB_NULL_INIT_OPTIONS));
  const rsb_int_t threads = 1;
  require(rsb_lib_set_opt(RSB_IO_WANT_EXECUTING_THREADS, &threads));
}

struct freer {
  void operator()(rsb_mtx_t* of) const { rsb_mtx_free(of); }
};
using owned = std::unique_ptr<rsb_mtx_t, freer>;

owned made_or_throw(rsb_mtx_t* made, rsb_err_t error) {
  owned kept(made);
  require(error);
  return kept;
}

owned record(const matrix& of) {
  const zero_based<rsb_coo_idx_t> arrays(of);
  rsb_err_t error = RSB_ERR_NO_ERROR;
  rsb_mtx_t* const made = rsb_mtx_alloc_from_csr_const(
      arrays.values.data(), arrays.starts.data(), arrays.columns.data(), of.nnz(), real, of.n, of.m,
      RSB_DEFAULT_BLOCKING, RSB_DEFAULT_BLOCKING, RSB_FLAG_NOFLAGS, &error);
  return made_or_throw(made, error);
}

answer taken(const owned& of) {
  rsb_coo_idx_t n = 0;
  rsb_coo_idx_t m = 0;
  rsb_nnz_idx_t nnz = 0;
  require(rsb_mtx_get_info(of.get(), RSB_MIF_MATRIX_ROWS__TO__RSB_COO_INDEX_T, &n));
  require(rsb_mtx_get_info(of.get(), RSB_MIF_MATRIX_COLS__TO__RSB_COO_INDEX_T, &m));
  require(rsb_mtx_get_info(of.get(), RSB_MIF_MATRIX_NNZ__TO__RSB_NNZ_INDEX_T, &nnz));
  array<rsb_nnz_idx_t> starts(static_cast<std::size_t>(n) + 1);
  array<rsb_coo_idx_t> columns(static_cast<std::size_t>(nnz));
  array<double> values(static_cast<std::size_t>(nnz));
  require(rsb_mtx_get_csr(real, of.get(), values.data(), starts.data(), columns.data(),
                          RSB_FLAG_C_INDICES_INTERFACE));
  return matrix_answer(from_zero_based(n, m, starts.data(), columns.data(), values.data()));
}

owned product(const owned& a, const owned& b) {
  rsb_err_t error = RSB_ERR_NO_ERROR;
  rsb_mtx_t* const c = rsb_spmsp(real, RSB_TRANSPOSITION_N, &one, a.get(), RSB_TRANSPOSITION_N,
                                 &one, b.get(), &error);
  return made_or_throw(c, error);
}

owned added(const owned& a, const owned& b, rsb_trans_t right) {
  rsb_err_t error = RSB_ERR_NO_ERROR;
  rsb_mtx_t* const c =
      rsb_sppsp(real, RSB_TRANSPOSITION_N, &one, a.get(), right, &one, b.get(), &error);
  return made_or_throw(c, error);
}

std::unique_ptr<contestant> multiply(const problem& p) {
  start();
  return makes([a = record(p.a)] { return product(a, a); }, taken);
}
std::unique_ptr<contestant> restriction(const problem& p) {
  start();
  return makes(
      [a = record(p.a), b = record(p.b), r = record(p.r)] { return product(r, product(a, b)); },
      taken);
}
std::unique_ptr<contestant> sum(const problem& p) {
  start();
  return makes([a = record(p.a), b = record(p.b)] { return added(a, b, RSB_TRANSPOSITION_N); },
               taken);
}
std::unique_ptr<contestant> symmetrize(const problem& p) {
  start();
  return makes([a = record(p.a)] { return added(a, a, RSB_TRANSPOSITION_T); }, taken);
}
std::unique_ptr<contestant> multiplied(const problem& p, rsb_trans_t how) {
  start();
  return changes([&p] { return array<double>(p.x.size(), 0.0); },
                 [a = record(p.a), &p, how](array<double>& y) {
                   require(rsb_spmv(how, &one, a.get(), p.x.data(), 1, &zero, y.data(), 1));
                 },
                 vector_answer<array<double>>);
}
std::unique_ptr<contestant> product_with_vector(const problem& p) {
  return multiplied(p, RSB_TRANSPOSITION_N);
}
std::unique_ptr<contestant> product_with_vector_transposed(const problem& p) {
  return multiplied(p, RSB_TRANSPOSITION_T);
}

}  // namespace

peer librsb() {
  return {"librsb",
          {{"multiply", multiply},
           {"restriction", restriction},
           {"sum", sum},
           {"symmetrize", symmetrize},
           {"A x", product_with_vector},
           {"A' x", product_with_vector_transposed}}};
}

}  // namespace bench
