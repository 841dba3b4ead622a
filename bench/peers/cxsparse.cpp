// SPDX-License-Identifier: MIT
// It keeps columns, not rows: the arrays of a matrix by rows are those of its transpose by columns,
// so the rows of A B come from cs_multiply(B', A').
#include "peers.hpp"
#include "zero_based.hpp"

#include <suitesparse/cs.h>

namespace bench {

namespace {

struct freer {
  void operator()(cs_di* of) const { cs_di_spfree(of); }
};
using owned = std::unique_ptr<cs_di, freer>;

owned record(const matrix& of) {
  const zero_based<int> arrays(of);
  owned made(cs_di_spalloc(of.m, of.n, of.nnz(), 1, 0));
  std::copy(arrays.starts.begin(), arrays.starts.end(), made->p);
  std::copy(arrays.columns.begin(), arrays.columns.end(), made->i);
  std::copy(arrays.values.begin(), arrays.values.end(), made->x);
  return made;
}

answer taken(const owned& of) {
  return matrix_answer(from_zero_based<int>(of->n, of->m, of->p, of->i, of->x));
}

std::unique_ptr<contestant> multiply(const problem& p) {
  return makes([a = record(p.a)] { return owned(cs_di_multiply(a.get(), a.get())); }, taken);
}

std::unique_ptr<contestant> restriction(const problem& p) {
  return makes(
      [a = record(p.a), b = record(p.b), r = record(p.r)] {
        const owned ab(cs_di_multiply(b.get(), a.get()));
        return owned(cs_di_multiply(ab.get(), r.get()));
      },
      taken);
}

std::unique_ptr<contestant> sum(const problem& p) {
  return makes(
      [a = record(p.a), b = record(p.b)] { return owned(cs_di_add(a.get(), b.get(), 1, 1)); },
      taken);
}

std::unique_ptr<contestant> symmetrize(const problem& p) {
  return makes(
      [a = record(p.a)] {
        const owned t(cs_di_transpose(a.get(), 1));
        return owned(cs_di_add(a.get(), t.get(), 1, 1));
      },
      taken);
}

std::unique_ptr<contestant> transpose(const problem& p) {
  return makes([a = record(p.a)] { return owned(cs_di_transpose(a.get(), 1)); }, taken);
}

std::unique_ptr<contestant> sort(const problem& p) {
  return makes(
      [a = record(p.a)] {
        const owned t(cs_di_transpose(a.get(), 1));
        return owned(cs_di_transpose(t.get(), 1));
      },
      taken);
}

std::unique_ptr<contestant> coordinates(const problem& p) {
  const std::int32_t nnz = p.a.nnz();
  owned entries(cs_di_spalloc(p.a.m, p.a.n, nnz, 1, 1));
  shifted(p.rows.data(), p.rows.size(), entries->p, -1);
  shifted(p.listed.columns.data(), p.rows.size(), entries->i, -1);
  std::copy(p.listed.values.begin(), p.listed.values.end(), entries->x);
  entries->nz = nnz;
  return makes([entries = std::move(entries)] { return owned(cs_di_compress(entries.get())); },
               taken);
}

std::unique_ptr<contestant> product_with_vector_transposed(const problem& p) {
  return changes([length = static_cast<std::size_t>(p.a.m)] { return array<double>(length, 0.0); },
                 [a = record(p.a), &p](array<double>& y) {
                   std::fill(y.begin(), y.end(), 0.0);
                   cs_di_gaxpy(a.get(), p.x.data(), y.data());
                 },
                 vector_answer<array<double>>);
}

std::unique_ptr<contestant> clean(const problem& p) {
  return changes([&p] { return record(p.a); }, [](owned& a) { cs_di_dupl(a.get()); }, taken);
}

}  // namespace

peer cxsparse() {
  return {"CXSparse",
          {{"multiply", multiply},
           {"restriction", restriction},
           {"sum", sum},
           {"symmetrize", symmetrize},
           {"transpose", transpose},
           {"sort", sort},
           {"coordinates", coordinates},
           {"A' x", product_with_vector_transposed},
           {"clean", clean}}};
}

}  // namespace bench
