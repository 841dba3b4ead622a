// SPDX-License-Identifier: MIT
#include "peers.hpp"
#include "zero_based.hpp"

// Its headers are C of another style.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wpedantic"
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wsign-conversion"
#pragma GCC diagnostic ignored "-Wshadow"
#include <HYPRE.h>
#include <_hypre_utilities.h>
#include <mpi.h>
#include <seq_mv.h>
#pragma GCC diagnostic pop

namespace bench {

namespace {

struct freer {
  void operator()(hypre_CSRMatrix* of) const { hypre_CSRMatrixDestroy(of); }
  void operator()(hypre_Vector* of) const { hypre_SeqVectorDestroy(of); }
};
using owned = std::unique_ptr<hypre_CSRMatrix, freer>;
using owned_vector = std::unique_ptr<hypre_Vector, freer>;

// Once a process, before its first matrix.
void start() {
  int running = 0;
  MPI_Initialized(&running);
  if (running == 0) MPI_Init(nullptr, nullptr);
  HYPRE_Init();
}

owned record(const matrix& of) {
  const zero_based<HYPRE_Int> arrays(of);
  owned made(hypre_CSRMatrixCreate(of.n, of.m, of.nnz()));
  hypre_CSRMatrixInitialize(made.get());
  std::copy(arrays.starts.begin(), arrays.starts.end(), hypre_CSRMatrixI(made.get()));
  std::copy(arrays.columns.begin(), arrays.columns.end(), hypre_CSRMatrixJ(made.get()));
  std::copy(arrays.values.begin(), arrays.values.end(), hypre_CSRMatrixData(made.get()));
  return made;
}

owned_vector room(std::int32_t length) {
  owned_vector made(hypre_SeqVectorCreate(length));
  hypre_SeqVectorInitialize(made.get());
  hypre_SeqVectorSetConstantValues(made.get(), 0);
  return made;
}

owned_vector record(const array<double>& x) {
  owned_vector made = room(static_cast<std::int32_t>(x.size()));
  std::copy(x.begin(), x.end(), hypre_VectorData(made.get()));
  return made;
}

answer taken(const owned& of) {
  return matrix_answer(from_zero_based<HYPRE_Int>(
      hypre_CSRMatrixNumRows(of.get()), hypre_CSRMatrixNumCols(of.get()),
      hypre_CSRMatrixI(of.get()), hypre_CSRMatrixJ(of.get()), hypre_CSRMatrixData(of.get())));
}

answer taken_vector(const owned_vector& of) {
  answer found;
  found.values.assign(hypre_VectorData(of.get()),
                      hypre_VectorData(of.get()) + hypre_VectorSize(of.get()));
  return found;
}

owned transposed(const owned& a) {
  hypre_CSRMatrix* t = nullptr;
  hypre_CSRMatrixTranspose(a.get(), &t, 1);
  return owned(t);
}

std::unique_ptr<contestant> multiply(const problem& p) {
  start();
  return makes([a = record(p.a)] { return owned(hypre_CSRMatrixMultiply(a.get(), a.get())); },
               taken);
}
std::unique_ptr<contestant> restriction(const problem& p) {
  start();
  return makes(
      [a = record(p.a), b = record(p.b), r = record(p.r)] {
        const owned ab(hypre_CSRMatrixMultiply(a.get(), b.get()));
        return owned(hypre_CSRMatrixMultiply(r.get(), ab.get()));
      },
      taken);
}
std::unique_ptr<contestant> sum(const problem& p) {
  start();
  return makes([a = record(p.a),
                b = record(p.b)] { return owned(hypre_CSRMatrixAdd(1, a.get(), 1, b.get())); },
               taken);
}
std::unique_ptr<contestant> symmetrize(const problem& p) {
  start();
  return makes(
      [a = record(p.a)] {
        const owned t = transposed(a);
        return owned(hypre_CSRMatrixAdd(1, a.get(), 1, t.get()));
      },
      taken);
}
std::unique_ptr<contestant> transpose(const problem& p) {
  start();
  return makes([a = record(p.a)] { return transposed(a); }, taken);
}
std::unique_ptr<contestant> sort(const problem& p) {
  start();
  return makes([a = record(p.a)] { return transposed(transposed(a)); }, taken);
}
std::unique_ptr<contestant> product_with_vector(const problem& p) {
  start();
  return changes([length = p.a.n] { return room(length); },
                 [a = record(p.a), x = record(p.x)](owned_vector& y) {
                   hypre_CSRMatrixMatvec(1, a.get(), x.get(), 0, y.get());
                 },
                 taken_vector);
}
std::unique_ptr<contestant> product_with_vector_transposed(const problem& p) {
  start();
  return changes([length = p.a.m] { return room(length); },
                 [a = record(p.a), x = record(p.x)](owned_vector& y) {
                   hypre_CSRMatrixMatvecT(1, a.get(), x.get(), 0, y.get());
                 },
                 taken_vector);
}

}  // namespace

peer hypre() {
  return {"hypre",
          {{"multiply", multiply},
           {"restriction", restriction},
           {"sum", sum},
           {"symmetrize", symmetrize},
           {"transpose", transpose},
           {"sort", sort},
           {"A x", product_with_vector},
           {"A' x", product_with_vector_transposed}}};
}

}  // namespace bench
