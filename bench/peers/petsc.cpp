// SPDX-License-Identifier: MIT
#include "peers.hpp"
#include "zero_based.hpp"

#include <stdexcept>
#include <utility>

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wpedantic"
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wsign-conversion"
#pragma GCC diagnostic ignored "-Wshadow"
#include <petscmat.h>
#pragma GCC diagnostic pop

namespace bench {

namespace {

void require(PetscErrorCode error) {
  if (error != 0) throw std::runtime_error("PETSc");
}

// Once a process, before its first matrix.
void start() { require(PetscInitializeNoArguments()); }

class owned {
 public:
  owned() = default;
  explicit owned(const matrix& of) : arrays_(of) {
    require(MatCreateSeqAIJWithArrays(PETSC_COMM_SELF, of.n, of.m, arrays_.starts.data(),
                                      arrays_.columns.data(), arrays_.values.data(), &held));
  }
  owned(owned&& other) noexcept
      : held(std::exchange(other.held, nullptr)), arrays_(std::move(other.arrays_)) {}
  owned& operator=(owned&&) = delete;
  ~owned() {
    if (held != nullptr) MatDestroy(&held);
  }

  Mat held = nullptr;

 private:
  zero_based<PetscInt> arrays_{matrix{}};
};

struct owned_vector {
  explicit owned_vector(std::int32_t length) {
    require(VecCreateSeq(PETSC_COMM_SELF, length, &held));
  }
  explicit owned_vector(const array<double>& x)
      : owned_vector(static_cast<std::int32_t>(x.size())) {
    double* values = nullptr;
    require(VecGetArray(held, &values));
    std::copy(x.begin(), x.end(), values);
    require(VecRestoreArray(held, &values));
  }
  owned_vector(owned_vector&& other) noexcept : held(std::exchange(other.held, nullptr)) {}
  owned_vector& operator=(owned_vector&&) = delete;
  ~owned_vector() {
    if (held != nullptr) VecDestroy(&held);
  }

  Vec held = nullptr;
};

answer taken(const owned& of) {
  PetscInt n = 0;
  PetscInt m = 0;
  require(MatGetSize(of.held, &n, &m));
  const PetscInt* starts = nullptr;
  const PetscInt* columns = nullptr;
  const double* values = nullptr;
  PetscBool done = PETSC_FALSE;
  require(MatGetRowIJ(of.held, 0, PETSC_FALSE, PETSC_FALSE, &n, &starts, &columns, &done));
  require(MatSeqAIJGetArrayRead(of.held, &values));
  return matrix_answer(from_zero_based<PetscInt>(n, m, starts, columns, values));
}

answer taken_vector(const owned_vector& of) {
  PetscInt length = 0;
  const double* values = nullptr;
  require(VecGetSize(of.held, &length));
  require(VecGetArrayRead(of.held, &values));
  answer found;
  found.values.assign(values, values + length);
  require(VecRestoreArrayRead(of.held, &values));
  return found;
}

owned transposed(const owned& a) {
  owned t;
  require(MatTranspose(a.held, MAT_INITIAL_MATRIX, &t.held));
  return t;
}

std::unique_ptr<contestant> multiply(const problem& p) {
  start();
  return makes(
      [a = owned(p.a)] {
        owned c;
        require(MatMatMult(a.held, a.held, MAT_INITIAL_MATRIX, PETSC_DEFAULT, &c.held));
        return c;
      },
      taken);
}
std::unique_ptr<contestant> restriction(const problem& p) {
  start();
  return makes(
      [a = owned(p.a), b = owned(p.b), r = owned(p.r)] {
        owned c;
        require(MatMatMatMult(r.held, a.held, b.held, MAT_INITIAL_MATRIX, PETSC_DEFAULT, &c.held));
        return c;
      },
      taken);
}
std::unique_ptr<contestant> sum(const problem& p) {
  start();
  return makes(
      [a = owned(p.a), b = owned(p.b)] {
        owned c;
        require(MatDuplicate(b.held, MAT_COPY_VALUES, &c.held));
        require(MatAXPY(c.held, 1, a.held, UNKNOWN_NONZERO_PATTERN));
        return c;
      },
      taken);
}
std::unique_ptr<contestant> symmetrize(const problem& p) {
  start();
  return makes(
      [a = owned(p.a)] {
        owned t = transposed(a);
        require(MatAXPY(t.held, 1, a.held, UNKNOWN_NONZERO_PATTERN));
        return t;
      },
      taken);
}
std::unique_ptr<contestant> transpose(const problem& p) {
  start();
  return makes([a = owned(p.a)] { return transposed(a); }, taken);
}
std::unique_ptr<contestant> sort(const problem& p) {
  start();
  return makes([a = owned(p.a)] { return transposed(transposed(a)); }, taken);
}
// The lists belong to the call, which may change them.
struct lists {
  array<PetscInt> rows;
  array<PetscInt> columns;
  owned made;
};

std::unique_ptr<contestant> coordinates(const problem& p) {
  start();
  return changes(
      [&p] {
        lists entries{array<PetscInt>(p.rows.size()), array<PetscInt>(p.rows.size()), {}};
        shifted(p.rows.data(), p.rows.size(), entries.rows.data(), -1);
        shifted(p.listed.columns.data(), p.rows.size(), entries.columns.data(), -1);
        return entries;
      },
      [&p](lists& entries) {
        Mat& a = entries.made.held;
        require(MatCreate(PETSC_COMM_SELF, &a));
        require(MatSetSizes(a, p.a.n, p.a.m, p.a.n, p.a.m));
        require(MatSetType(a, MATSEQAIJ));
        require(MatSetPreallocationCOO(a, static_cast<PetscCount>(entries.rows.size()),
                                       entries.rows.data(), entries.columns.data()));
        require(MatSetValuesCOO(a, p.listed.values.data(), INSERT_VALUES));
      },
      [](const lists& entries) { return taken(entries.made); });
}
std::unique_ptr<contestant> product_with_vector(const problem& p) {
  start();
  return changes([length = p.a.n] { return owned_vector(length); },
                 [a = owned(p.a), x = owned_vector(p.x)](owned_vector& y) {
                   require(MatMult(a.held, x.held, y.held));
                 },
                 taken_vector);
}
std::unique_ptr<contestant> product_with_vector_transposed(const problem& p) {
  start();
  return changes([length = p.a.m] { return owned_vector(length); },
                 [a = owned(p.a), x = owned_vector(p.x)](owned_vector& y) {
                   require(MatMultTranspose(a.held, x.held, y.held));
                 },
                 taken_vector);
}

}  // namespace

peer petsc() {
  return {"PETSc",
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
