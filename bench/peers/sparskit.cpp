// SPDX-License-Identifier: MIT
// Fortran 77: it counts from 1 as we do, and its callers bring the storage, so the count that sizes
// it is part of the call.
#include "peers.hpp"

#include <stdexcept>

extern "C" {
void amubdg_(const int* nrow, const int* ncol, const int* ncolb, const int* ja, const int* ia,
             const int* jb, const int* ib, int* ndegr, int* nnz, int* iw);
void amub_(const int* nrow, const int* ncol, const int* job, const double* a, const int* ja,
           const int* ia, const double* b, const int* jb, const int* ib, double* c, int* jc,
           int* ic, const int* nzmax, int* iw, int* ierr);
void aplbdg_(const int* nrow, const int* ncol, const int* ja, const int* ia, const int* jb,
             const int* ib, int* ndegr, int* nnz, int* iw);
void aplb_(const int* nrow, const int* ncol, const int* job, const double* a, const int* ja,
           const int* ia, const double* b, const int* jb, const int* ib, double* c, int* jc,
           int* ic, const int* nzmax, int* iw, int* ierr);
void csrcsc2_(const int* n, const int* n2, const int* job, const int* ipos, const double* a,
              const int* ja, const int* ia, double* ao, int* jao, int* iao);
void coocsr_(const int* nrow, const int* nnz, const double* a, const int* ir, const int* jc,
             double* ao, int* jao, int* iao);
void amux_(const int* n, const double* x, double* y, const double* a, const int* ja, const int* ia);
void atmuxr_(const int* m, const int* n, const double* x, double* y, const double* a, const int* ja,
             const int* ia);
}

namespace bench {

namespace {

constexpr int with_values = 1;

matrix room(std::int32_t n, std::int32_t m, std::int32_t nnz) {
  matrix made;
  made.n = n;
  made.m = m;
  made.starts.resize(static_cast<std::size_t>(n) + 1);
  made.columns.resize(static_cast<std::size_t>(nnz));
  made.values.resize(static_cast<std::size_t>(nnz));
  return made;
}

array<int> work(std::int32_t length) { return array<int>(static_cast<std::size_t>(length)); }

void require(int error) {
  if (error != 0) throw std::runtime_error("SPARSKIT wants more room");
}

matrix product(const matrix& a, const matrix& b) {
  array<int> degree = work(a.n);
  array<int> marker = work(b.m);
  int nnz = 0;
  amubdg_(&a.n, &a.m, &b.m, a.columns.data(), a.starts.data(), b.columns.data(), b.starts.data(),
          degree.data(), &nnz, marker.data());
  matrix c = room(a.n, b.m, nnz);
  int error = 0;
  amub_(&a.n, &b.m, &with_values, a.values.data(), a.columns.data(), a.starts.data(),
        b.values.data(), b.columns.data(), b.starts.data(), c.values.data(), c.columns.data(),
        c.starts.data(), &nnz, marker.data(), &error);
  require(error);
  return c;
}

matrix added(const matrix& a, const matrix& b) {
  array<int> degree = work(a.n);
  array<int> marker = work(a.m);
  int nnz = 0;
  aplbdg_(&a.n, &a.m, a.columns.data(), a.starts.data(), b.columns.data(), b.starts.data(),
          degree.data(), &nnz, marker.data());
  matrix c = room(a.n, a.m, nnz);
  int error = 0;
  aplb_(&a.n, &a.m, &with_values, a.values.data(), a.columns.data(), a.starts.data(),
        b.values.data(), b.columns.data(), b.starts.data(), c.values.data(), c.columns.data(),
        c.starts.data(), &nnz, marker.data(), &error);
  require(error);
  return c;
}

matrix transposed(const matrix& a) {
  constexpr int first = 1;
  matrix t = room(a.m, a.n, a.nnz());
  csrcsc2_(&a.n, &a.m, &with_values, &first, a.values.data(), a.columns.data(), a.starts.data(),
           t.values.data(), t.columns.data(), t.starts.data());
  return t;
}

std::unique_ptr<contestant> multiply(const problem& p) {
  return makes([&p] { return product(p.a, p.a); }, matrix_answer);
}
std::unique_ptr<contestant> restriction(const problem& p) {
  return makes([&p] { return product(p.r, product(p.a, p.b)); }, matrix_answer);
}
std::unique_ptr<contestant> sum(const problem& p) {
  return makes([&p] { return added(p.a, p.b); }, matrix_answer);
}
std::unique_ptr<contestant> symmetrize(const problem& p) {
  return makes([&p] { return added(p.a, transposed(p.a)); }, matrix_answer);
}
std::unique_ptr<contestant> transpose(const problem& p) {
  return makes([&p] { return transposed(p.a); }, matrix_answer);
}
std::unique_ptr<contestant> sort(const problem& p) {
  return makes([&p] { return transposed(transposed(p.a)); }, matrix_answer);
}
std::unique_ptr<contestant> coordinates(const problem& p) {
  return makes(
      [&p] {
        const std::int32_t nnz = p.a.nnz();
        matrix a = room(p.a.n, p.a.m, nnz);
        coocsr_(&p.a.n, &nnz, p.listed.values.data(), p.rows.data(), p.listed.columns.data(),
                a.values.data(), a.columns.data(), a.starts.data());
        return a;
      },
      matrix_answer);
}
std::unique_ptr<contestant> product_with_vector(const problem& p) {
  return changes([&p] { return array<double>(p.x.size(), 0.0); },
                 [&p](array<double>& y) {
                   amux_(&p.a.n, p.x.data(), y.data(), p.a.values.data(), p.a.columns.data(),
                         p.a.starts.data());
                 },
                 vector_answer<array<double>>);
}
std::unique_ptr<contestant> product_with_vector_transposed(const problem& p) {
  return changes([&p] { return array<double>(p.x.size(), 0.0); },
                 [&p](array<double>& y) {
                   atmuxr_(&p.a.m, &p.a.n, p.x.data(), y.data(), p.a.values.data(),
                           p.a.columns.data(), p.a.starts.data());
                 },
                 vector_answer<array<double>>);
}

}  // namespace

peer sparskit() {
  return {"SPARSKIT",
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
