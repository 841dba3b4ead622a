// SPDX-License-Identifier: MIT
// It may leave rows unsorted until somebody looks; that sorting is not part of the call.
#include "peers.hpp"
#include "zero_based.hpp"

#include <numeric>
#include <stdexcept>
#include <utility>

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wpedantic"
extern "C" {
#include <GraphBLAS.h>
}
#pragma GCC diagnostic pop

namespace bench {

namespace {

void require(GrB_Info info) {
  if (info != GrB_SUCCESS && info != GrB_NO_VALUE) throw std::runtime_error("GraphBLAS");
}

// Once a process, before its first matrix.
void start() {
  require(GrB_init(GrB_NONBLOCKING));
  require(GxB_Global_Option_set(GxB_GLOBAL_NTHREADS, 1));
}

class owned {
 public:
  owned() = default;
  owned(std::int64_t n, std::int64_t m) {
    require(GrB_Matrix_new(&held_, GrB_FP64, static_cast<GrB_Index>(n), static_cast<GrB_Index>(m)));
  }
  explicit owned(const matrix& of) {
    const zero_based<GrB_Index> arrays(of);
    require(GrB_Matrix_import_FP64(
        &held_, GrB_FP64, static_cast<GrB_Index>(of.n), static_cast<GrB_Index>(of.m),
        arrays.starts.data(), arrays.columns.data(), arrays.values.data(), arrays.starts.size(),
        arrays.columns.size(), arrays.values.size(), GrB_CSR_FORMAT));
    require(GrB_Matrix_wait(held_, GrB_MATERIALIZE));
  }
  owned(owned&& other) noexcept : held_(std::exchange(other.held_, nullptr)) {}
  owned& operator=(owned&&) = delete;
  ~owned() {
    if (held_ != nullptr) GrB_Matrix_free(&held_);
  }
  [[nodiscard]] GrB_Matrix get() const { return held_; }

 private:
  GrB_Matrix held_ = nullptr;
};

class owned_vector {
 public:
  owned_vector(GrB_Type type, std::int64_t length) {
    require(GrB_Vector_new(&held_, type, static_cast<GrB_Index>(length)));
  }
  owned_vector(owned_vector&& other) noexcept : held_(std::exchange(other.held_, nullptr)) {}
  owned_vector& operator=(owned_vector&&) = delete;
  ~owned_vector() {
    if (held_ != nullptr) GrB_Vector_free(&held_);
  }
  [[nodiscard]] GrB_Vector get() const { return held_; }

 private:
  GrB_Vector held_ = nullptr;
};

array<GrB_Index> every_place(std::size_t length) {
  array<GrB_Index> places(length);
  std::iota(places.begin(), places.end(), GrB_Index{0});
  return places;
}

owned_vector record(const array<double>& x) {
  owned_vector made(GrB_FP64, std::ssize(x));
  require(GrB_Vector_build_FP64(made.get(), every_place(x.size()).data(), x.data(), x.size(),
                                GrB_PLUS_FP64));
  require(GrB_Vector_wait(made.get(), GrB_MATERIALIZE));
  return made;
}

owned_vector record(const array<std::int32_t>& x) {
  owned_vector made(GrB_INT32, std::ssize(x));
  require(GrB_Vector_build_INT32(made.get(), every_place(x.size()).data(), x.data(), x.size(),
                                 GrB_PLUS_INT32));
  require(GrB_Vector_wait(made.get(), GrB_MATERIALIZE));
  return made;
}

answer taken(const owned& of) {
  GrB_Index n = 0;
  GrB_Index m = 0;
  GrB_Index starts_length = 0;
  GrB_Index columns_length = 0;
  GrB_Index values_length = 0;
  require(GrB_Matrix_nrows(&n, of.get()));
  require(GrB_Matrix_ncols(&m, of.get()));
  require(GrB_Matrix_exportSize(&starts_length, &columns_length, &values_length, GrB_CSR_FORMAT,
                                of.get()));
  array<GrB_Index> starts(starts_length);
  array<GrB_Index> columns(columns_length);
  array<double> values(values_length);
  require(GrB_Matrix_export_FP64(starts.data(), columns.data(), values.data(), &starts_length,
                                 &columns_length, &values_length, GrB_CSR_FORMAT, of.get()));
  return matrix_answer(from_zero_based(static_cast<std::int64_t>(n), static_cast<std::int64_t>(m),
                                       starts.data(), columns.data(), values.data()));
}

answer taken_vector(const owned_vector& of) {
  GrB_Index length = 0;
  require(GrB_Vector_size(&length, of.get()));
  array<GrB_Index> places(length);
  answer found;
  found.values.resize(length);
  require(GrB_Vector_extractTuples_FP64(places.data(), found.values.data(), &length, of.get()));
  return found;
}

answer taken_integers(const owned_vector& of) {
  GrB_Index length = 0;
  require(GrB_Vector_size(&length, of.get()));
  array<GrB_Index> places(length);
  answer found;
  found.columns.resize(length);
  require(GrB_Vector_extractTuples_INT32(places.data(), found.columns.data(), &length, of.get()));
  return found;
}

GrB_Index rows(const owned& of) {
  GrB_Index n = 0;
  require(GrB_Matrix_nrows(&n, of.get()));
  return n;
}

GrB_Index columns(const owned& of) {
  GrB_Index m = 0;
  require(GrB_Matrix_ncols(&m, of.get()));
  return m;
}

owned room(GrB_Index n, GrB_Index m) {
  return {static_cast<std::int64_t>(n), static_cast<std::int64_t>(m)};
}

owned product(const owned& a, const owned& b, GrB_Semiring by) {
  owned c = room(rows(a), columns(b));
  require(GrB_mxm(c.get(), nullptr, nullptr, by, a.get(), b.get(), nullptr));
  return c;
}

owned added(const owned& a, const owned& b, GrB_Descriptor how) {
  owned c = room(rows(a), columns(a));
  require(GrB_Matrix_eWiseAdd_BinaryOp(c.get(), nullptr, nullptr, GrB_PLUS_FP64, a.get(), b.get(),
                                       how));
  return c;
}

std::unique_ptr<contestant> multiply(const problem& p) {
  start();
  return makes([a = owned(p.a)] { return product(a, a, GrB_PLUS_TIMES_SEMIRING_FP64); }, taken);
}
std::unique_ptr<contestant> restriction(const problem& p) {
  start();
  return makes(
      [a = owned(p.a), b = owned(p.b), r = owned(p.r)] {
        return product(r, product(a, b, GrB_PLUS_TIMES_SEMIRING_FP64),
                       GrB_PLUS_TIMES_SEMIRING_FP64);
      },
      taken);
}
std::unique_ptr<contestant> sum(const problem& p) {
  start();
  return makes([a = owned(p.a), b = owned(p.b)] { return added(a, b, nullptr); }, taken);
}
std::unique_ptr<contestant> symmetrize(const problem& p) {
  start();
  return makes([a = owned(p.a)] { return added(a, a, GrB_DESC_T1); }, taken);
}
std::unique_ptr<contestant> transpose(const problem& p) {
  start();
  return makes(
      [a = owned(p.a)] {
        owned t = room(columns(a), rows(a));
        require(GrB_transpose(t.get(), nullptr, nullptr, a.get(), nullptr));
        return t;
      },
      taken);
}
std::unique_ptr<contestant> coordinates(const problem& p) {
  start();
  array<GrB_Index> at_rows(p.rows.size());
  array<GrB_Index> at_columns(p.rows.size());
  shifted(p.rows.data(), at_rows.size(), at_rows.data(), -1);
  shifted(p.listed.columns.data(), at_columns.size(), at_columns.data(), -1);
  return makes(
      [&p, at_rows = std::move(at_rows), at_columns = std::move(at_columns)] {
        owned a(p.a.n, p.a.m);
        require(GrB_Matrix_build_FP64(a.get(), at_rows.data(), at_columns.data(),
                                      p.listed.values.data(), at_rows.size(), GrB_PLUS_FP64));
        return a;
      },
      taken);
}
std::unique_ptr<contestant> product_with_vector(const problem& p) {
  start();
  return changes([n = p.a.n] { return owned_vector(GrB_FP64, n); },
                 [a = owned(p.a), x = record(p.x)](owned_vector& y) {
                   require(GrB_mxv(y.get(), nullptr, nullptr, GrB_PLUS_TIMES_SEMIRING_FP64, a.get(),
                                   x.get(), nullptr));
                 },
                 taken_vector);
}
std::unique_ptr<contestant> product_with_vector_transposed(const problem& p) {
  start();
  return changes([m = p.a.m] { return owned_vector(GrB_FP64, m); },
                 [a = owned(p.a), x = record(p.x)](owned_vector& y) {
                   require(GrB_vxm(y.get(), nullptr, nullptr, GrB_PLUS_TIMES_SEMIRING_FP64, x.get(),
                                   a.get(), nullptr));
                 },
                 taken_vector);
}
std::unique_ptr<contestant> graph_product(const problem& p) {
  start();
  return makes(
      [a = owned(p.a)] {
        const owned paths = product(a, a, GxB_PLUS_PAIR_FP64);
        owned c = room(rows(a), columns(a));
        require(GrB_Matrix_select_INT64(c.get(), nullptr, nullptr, GrB_OFFDIAG, paths.get(), 0,
                                        nullptr));
        return c;
      },
      taken);
}
std::unique_ptr<contestant> integer_vector(const problem& p) {
  start();
  return changes([n = p.a.n] { return owned_vector(GrB_INT32, n); },
                 [a = owned(p.a), x = record(p.weights)](owned_vector& y) {
                   require(GrB_mxv(y.get(), nullptr, nullptr, GxB_PLUS_SECOND_INT32, a.get(),
                                   x.get(), nullptr));
                 },
                 taken_integers);
}
std::unique_ptr<contestant> integer_vector_transposed(const problem& p) {
  start();
  return changes([m = p.a.m] { return owned_vector(GrB_INT32, m); },
                 [a = owned(p.a), x = record(p.weights)](owned_vector& y) {
                   require(GrB_vxm(y.get(), nullptr, nullptr, GxB_PLUS_FIRST_INT32, x.get(),
                                   a.get(), nullptr));
                 },
                 taken_integers);
}

}  // namespace

peer graphblas() {
  return {"GraphBLAS",
          {{"multiply", multiply},
           {"restriction", restriction},
           {"sum", sum},
           {"symmetrize", symmetrize},
           {"transpose", transpose},
           {"coordinates", coordinates},
           {"A x", product_with_vector},
           {"A' x", product_with_vector_transposed},
           {"graph product", graph_product},
           {"pattern(A) x", integer_vector},
           {"pattern(A)' x", integer_vector_transposed}}};
}

}  // namespace bench
