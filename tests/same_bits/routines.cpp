// SPDX-License-Identifier: MIT
// Every routine that works in memory, on every matrix of the gallery that it takes.
#include "gallery.hpp"
#include "report.hpp"

#include <cstddef>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace same_bits {

using namespace csr_matrix_mod;  // NOLINT: every line below names one of its routines

namespace {

using integers = array_view<const std::int32_t>;
using doubles = array_view<const double>;

csr_matrix copy_of(const csr_matrix& mat) {
  csr_matrix copy;
  csr_matrix_assign(copy, mat);
  return copy;
}

// Products and sums large enough for whatever is done for large ones alone.
csr_matrix large_grid(kind values) { return five_point(420, 400, values); }
csr_matrix large_scatter(kind values) { return unsorted(60000, 60000, 9, values, 6); }
// So many entries all over that they are put into rows by way of buckets.
csr_matrix all_over(kind values) { return unsorted(70000, 60000, 26, values, 35); }
// So many short rows that where they end is not foreseen.
csr_matrix many_short_rows(kind values) { return unsorted(20000, 3000, 3, values, 34); }

template <class Use>
void for_square_matrices(const Use& use) {
  for (const sample& each : square_matrices()) use(each.values, each.mat);
}

// With the matrices that are large, in two kinds of values.
template <class Use>
void for_all_matrices(const Use& use) {
  for_square_matrices(use);
  for (const kind values : {kind::even, kind::pattern}) {
    use(values, large_grid(values));
    use(values, large_scatter(values));
  }
}

// What a stop says, line and message.
void stopping_message(std::string_view message) { throw std::runtime_error(std::string(message)); }

template <class Call>
void add_stop(digest& result, const Call& call) {
  const stop_handler before = set_stop_handler(stopping_message);
  try {
    call();
    result.add(std::string_view("did not stop"));
  } catch (const std::runtime_error& stopped) {
    result.add(std::string_view(stopped.what()));
  }
  set_stop_handler(before);
}

}  // namespace

void support_routines(report& results) {
  numbers random(10);
  for (std::int32_t bits = 0; bits < 32; ++bits)
    for (const std::int32_t sign : {1, -1}) {
      const auto number = static_cast<std::int32_t>(random.next() >> 33 >> bits) * sign;
      results["digit"].add(digit(number));
      results["int2str"].add(std::string_view(int2str(number, bits)));
    }
  results["digit"].add(digit(std::numeric_limits<std::int32_t>::min()));
  results["int2str"].add(std::string_view(int2str(std::numeric_limits<std::int32_t>::min(), 12)));

  for (const std::int32_t length : {0, 1, 2, 17, 1000}) {
    std::vector<std::int32_t> keys = integer_vector(length, 7);
    for (std::size_t k = 0; k < keys.size(); k += 3) keys[k] %= 10;  // equal keys
    std::vector<std::int32_t> perm(keys.size());
    quicksort(keys, perm);
    results["quicksort"].add_all<std::int32_t>(keys);
    results["quicksort"].add_all<std::int32_t>(perm);
  }

  csr_matrix mat = five_point(5, 4, kind::even);
  for (const std::int32_t length : {7, 80, 81, 0}) {
    const std::int32_t kept = length < 7 ? length : 7;
    results["iexpand1"].add(iexpand1(mat.ja, length));
    results["iexpand1"].add_first<std::int32_t>(kept, mat.ja);
    results["expand1"].add(expand1(mat.a, length));
    results["expand1"].add_first<double>(kept, mat.a);
  }
}

void record_routines(report& results) {
  csr_matrix fresh;
  csr_matrix_initial(3, fresh, 7, matrix_structure_only);
  results["csr_matrix_initial"].add(fresh.n);
  results["csr_matrix_initial"].add(fresh.m);
  results["csr_matrix_initial"].add(static_cast<std::uint64_t>(fresh.ia.length()));
  csr_matrix_allocate(fresh, 0);
  results["csr_matrix_allocate"].add(static_cast<std::uint64_t>(fresh.ja.length()));
  results["csr_matrix_allocate"].add(fresh.a.allocated());
  csr_matrix_setsize_row(fresh, 5);
  results["csr_matrix_setsize_row"].add(fresh.n);
  csr_matrix_setsize_column(fresh, 6);
  results["csr_matrix_setsize_column"].add(fresh.n);
  results["csr_matrix_setsize_column"].add(fresh.m);
  csr_matrix_set_type(fresh, matrix_real);
  results["csr_matrix_set_type"].add(fresh.type == matrix_structure_only);
  csr_matrix_deallocate(fresh);  // which has no values to release, and says so
  results["csr_matrix_deallocate"].add(fresh.ia.allocated());
  add_stop(results["csr_matrix_reallocate"], [&] { csr_matrix_reallocate(fresh, -1); });
  add_stop(results["csr_matrix_getrow"], [&] { (void)csr_matrix_getrow(fresh, 9); });

  for_square_matrices([&](kind values, const csr_matrix& mat) {
    csr_matrix copy;
    csr_matrix_assign(copy, mat);
    results["csr_matrix_assign"].add(copy);
    csr_matrix second;
    csr_matrix_transfer(second, copy);
    results["csr_matrix_transfer"].add(second);
    const std::int32_t nnz = csr_matrix_num_nz(mat);
    results["csr_matrix_num_nz"].add(nnz);
    results["csr_matrix_check"].add(csr_matrix_check(mat).has_value());
    csr_row buffer;
    (void)buffer.ja.allocate(0);
    (void)buffer.a.allocate(0);
    for (std::int32_t i = 1; i <= mat.n; ++i) {
      results["csr_matrix_num_row_entries"].add(csr_matrix_num_row_entries(mat, i));
      const integers columns = csr_matrix_getrow(mat, i);
      results["csr_matrix_getrow"].add_all(columns);
      if (values != kind::pattern)
        results["csr_matrix_getrowval"].add_all(csr_matrix_getrowval(mat, i));
      for (const std::int32_t column : columns) csr_matrix_extrow(buffer, column, 0.1 * column);
    }
    results["csr_matrix_extrow"].add(static_cast<std::uint64_t>(buffer.ja.length()));
    results["csr_matrix_extrow"].add_first<std::int32_t>(buffer.count, buffer.ja);
    results["csr_matrix_extrow"].add_first<double>(buffer.count, buffer.a);

    std::vector<std::int32_t> placed(static_cast<std::size_t>(mat.n));
    for (std::int32_t i = mat.n; i >= 1; --i)
      for (std::int32_t k = csr_matrix_num_row_entries(mat, i); k > 0; --k)
        csr_matrix_fill(second, i, placed, k,
                        values == kind::pattern ? std::nullopt : std::optional<double>(i / 7.0));
    results["csr_matrix_fill"].add(second);
    if (values != kind::pattern) csr_matrix_setval(second, -1.0 / 3.0);
    results["csr_matrix_setval"].add(second);
    if (nnz > 1) csr_matrix_reallocate(second, nnz + 3);
    results["csr_matrix_reallocate"].add(second);
  });
}

void ordering_routines(report& results) {
  for_all_matrices([&](kind values, const csr_matrix& mat) {
    if (csr_matrix_num_nz(mat) > 0) {
      csr_matrix cleaned = copy_of(mat);
      csr_matrix_clean(cleaned);
      results["csr_matrix_clean"].add(cleaned);
    }
    csr_matrix bare = copy_of(mat);
    csr_matrix_remove_diag(bare);
    results["csr_matrix_remove_diag"].add(bare);
    csr_matrix sorted = copy_of(mat);
    csr_matrix_sort(sorted);
    results["csr_matrix_sort"].add(sorted);
    csr_matrix_sort(sorted);
    results["csr_matrix_sort"].add(sorted);
    results["matrix_is_struct_symmetric"].add(matrix_is_struct_symmetric(mat));
    if (values == kind::pattern) {
      std::vector<std::int32_t> weights = integer_vector(sorted.m, 2);
      csr_matrix_condense(sorted, weights);
      results["csr_matrix_condense"].add(sorted);
      results["csr_matrix_condense"].add_first<std::int32_t>(sorted.m, weights);
    } else {
      csr_matrix moved = copy_of(mat);
      add_stop(results["csr_matrix_movediag"], [&] { csr_matrix_movediag(moved); });
      results["csr_matrix_movediag"].add(moved);
    }
  });

  numbers random(8);
  for (std::int32_t length = 0; length <= 300; length += 1 + length / 20) {
    std::vector<std::int32_t> columns = integer_vector(length, 9);
    std::vector<double> vals = value_vector(length, kind::even, 9);
    for (std::int32_t& column : columns)
      if (random.below(3) == 0) column %= 5;  // repeats
    std::vector<std::int32_t> others = columns;
    std::int32_t len = length;
    csr_matrix_sortrow(len, columns, vals);
    results["csr_matrix_sortrow"].add_first<std::int32_t>(len, columns);
    results["csr_matrix_sortrow"].add_first<double>(len, vals);
    len = length;
    csr_matrix_sortrow_noval(len, others);
    results["csr_matrix_sortrow_noval"].add_first<std::int32_t>(len, others);
  }
}

namespace {

void coordinate_lists(report& results, const csr_matrix& mat) {
  std::int32_t nnz = 0;
  array_ref<std::int32_t> row;
  array_ref<std::int32_t> col;
  array_ref<double> val;
  csr_matrix_to_coo(mat, nnz, row, col, val);
  results["csr_matrix_to_coo"].add_first<std::int32_t>(nnz, row);
  results["csr_matrix_to_coo"].add_first<std::int32_t>(nnz, col);
  if (mat.type == matrix_real) results["csr_matrix_to_coo"].add_first<double>(nnz, val);

  csr_matrix in_order;
  coo_to_csr_format(mat.n, nnz, row, col, val, in_order, mat.type, mat.m);
  results["coo_to_csr_format"].add(in_order);
  // By columns: the transpose.
  csr_matrix by_columns;
  coo_to_csr_format(mat.n, nnz, col, row, val, by_columns, mat.type);
  results["coo_to_csr_format"].add(by_columns);
}

void plain_arrays(report& results, const csr_matrix& mat) {
  std::int32_t n = 0;
  std::int32_t m = 0;
  std::int32_t nnz = 0;
  array_ref<std::int32_t> ia;
  array_ref<std::int32_t> ja;
  array_ref<double> a;
  csr_to_csr_arrays(mat, n, m, nnz, ia, ja, &a);
  results["csr_to_csr_arrays"].add_all<std::int32_t>(ia);
  results["csr_to_csr_arrays"].add_all<std::int32_t>(ja);
  results["csr_to_csr_arrays"].add_all<double>(a);
  csr_matrix again;
  csr_to_csr_matrix(n, m, again, ia, ja, doubles(a));
  results["csr_to_csr_matrix"].add(again);
}

}  // namespace

void convert_routines(report& results) {
  for_all_matrices([&](kind, const csr_matrix& mat) {
    coordinate_lists(results, mat);
    plain_arrays(results, mat);
    csr_matrix transpose;
    csr_matrix_transpose(mat, transpose);
    results["csr_matrix_transpose"].add(transpose);
    csr_matrix sum;
    csr_matrix_sum(mat, transpose, sum);
    results["csr_matrix_sum"].add(sum);
    csr_matrix_sum(mat, mat, sum);
    results["csr_matrix_sum"].add(sum);
    csr_matrix_sum_nodiag(transpose, mat, sum);
    results["csr_matrix_sum_nodiag"].add(sum);
    csr_matrix symmetric = copy_of(mat);
    csr_matrix_symmetrize(symmetric);
    results["csr_matrix_symmetrize"].add(symmetric);
    csr_matrix_symmetrize(symmetric);
    results["csr_matrix_symmetrize"].add(symmetric);
    csr_matrix graph = copy_of(mat);
    csr_matrix_symmetrize_nodiag(graph);
    results["csr_matrix_symmetrize_nodiag"].add(graph);
  });
  csr_matrix wide_transpose;
  csr_matrix_transpose(unsorted(90, 30, 12, kind::even, 33), wide_transpose, 40);
  results["csr_matrix_transpose"].add(wide_transpose);
  for (const kind values : {kind::even, kind::pattern}) {
    csr_matrix_transpose(many_short_rows(values), wide_transpose);
    results["csr_matrix_transpose"].add(wide_transpose);
    csr_matrix_transpose(all_over(values), wide_transpose);
    results["csr_matrix_transpose"].add(wide_transpose);
    coordinate_lists(results, all_over(values));
  }
}

namespace {

// The passes of a product, one by one, into arrays of the caller.
void passes(report& results, const csr_matrix& a, const csr_matrix& b, integers weights) {
  const std::int32_t n = a.n;
  const std::int32_t ncol = b.m;
  std::int32_t nz = 0;
  std::vector<std::int32_t> ic(static_cast<std::size_t>(n) + 1);
  std::vector<std::int32_t> jc;
  std::vector<double> ac;
  const auto make_room = [&] {
    jc.assign(static_cast<std::size_t>(nz), 0);
    ac.assign(static_cast<std::size_t>(nz), 0.0);
  };
  const auto keep = [&](digest& result) {
    result.add_all<std::int32_t>(ic);
    result.add_all<std::int32_t>(jc);
    result.add_all<double>(ac);
  };

  matmul_size(n, ncol, a.ia, a.ja, b.ia, b.ja, nz);
  results["matmul_size"].add(nz);
  make_room();
  matmul_noval(n, ncol, a.ia, a.ja, b.ia, b.ja, ic, jc);
  keep(results["matmul_noval"]);
  if (a.type == matrix_real && b.type == matrix_real) {
    matmul_normal(n, ncol, a.ia, a.ja, a.a, b.ia, b.ja, b.a, ic, jc, ac);
    keep(results["matmul_normal"]);
  }
  matmul_size_graph(n, ncol, a.ia, a.ja, b.ia, b.ja, nz);
  results["matmul_size_graph"].add(nz);
  make_room();
  matmul_graph(n, ncol, a.ia, a.ja, b.ia, b.ja, ic, jc, ac);
  keep(results["matmul_graph"]);
  matmul_wgraph(n, ncol, a.ia, a.ja, b.ia, b.ja, ic, jc, ac, weights);
  keep(results["matmul_wgraph"]);
  if (a.type == matrix_real && b.type == matrix_real) {
    matmul_formgraph(n, ncol, a.a, a.ia, a.ja, b.a, b.ia, b.ja, ac, ic, jc);
    keep(results["matmul_formgraph"]);
  }
}

void products(report& results, const csr_matrix& a, const csr_matrix& b) {
  const std::vector<std::int32_t> weights = integer_vector(b.n, 12);
  csr_matrix product;
  csr_matrix_multiply(a, b, product);
  results["csr_matrix_multiply"].add(product);
  csr_matrix_multiply_graph(a, b, product);
  results["csr_matrix_multiply_graph"].add(product);
  csr_matrix_multiply_graph(a, b, product, {}, integers(weights));
  results["csr_matrix_multiply_graph"].add(product);
  passes(results, a, b, weights);
}

// The coarse matrix and graph over classes of one column each, and over the same made smooth.
void coarse_operators(report& results, const csr_matrix& a, kind values) {
  if (a.n < 1) return;
  const csr_matrix piecewise = aggregation(a.n, (a.n + 3) / 4, values);
  csr_matrix smooth;
  csr_matrix_multiply(a, piecewise, smooth);
  const std::vector<const csr_matrix*> prolongations = {&piecewise, &smooth};
  // Values of four factors from the widest range would leave that of doubles.
  for (const csr_matrix* const p : prolongations) {
    if (values == kind::wide && p == &smooth) continue;
    csr_matrix r;
    csr_matrix_transpose(*p, r);
    csr_matrix coarse;
    csr_matrix_restriction(a, *p, r, coarse);
    results["csr_matrix_restriction"].add(coarse);
    csr_matrix_graph_restriction(a, *p, r, coarse);
    results["csr_matrix_graph_restriction"].add(coarse);
  }
}

void vectors(report& results, const csr_matrix& mat, kind values) {
  const std::vector<std::int32_t> x = integer_vector(mat.m > mat.n ? mat.m : mat.n, 4);
  std::vector<std::int32_t> y(x.size() + 2);
  csr_matrix_multiply_ivector(mat, x, y);
  results["csr_matrix_multiply_ivector"].add_all<std::int32_t>(y);
  csr_matrix_trans_mult_ivector(mat, x, y);
  results["csr_matrix_trans_mult_ivector"].add_all<std::int32_t>(y);
  if (values == kind::pattern) return;
  const std::vector<double> u = value_vector(mat.m > mat.n ? mat.m : mat.n, values, 4);
  std::vector<double> v(u.size() + 2);
  csr_matrix_multiply_rvector(mat, u, v);
  results["csr_matrix_multiply_rvector"].add_all<double>(v);
  csr_matrix_trans_mult_rvector(mat, u, v);
  results["csr_matrix_trans_mult_rvector"].add_all<double>(v);
}

}  // namespace

void product_routines(report& results) {
  for_all_matrices([&](kind values, const csr_matrix& mat) {
    products(results, mat, mat);
    vectors(results, mat, values);
    if (values != kind::pattern) coarse_operators(results, mat, values);
  });
  for (const kind values : {kind::even, kind::wide, kind::tiny, kind::pattern}) {
    const csr_matrix a = unsorted(70, 110, 25, values, 71);
    const csr_matrix b = unsorted(110, 50, 40, values, 72);
    products(results, a, b);
    vectors(results, a, values);
    vectors(results, many_short_rows(values), values);
    for (const std::int32_t unknowns : {2, 3, 5, 9}) {
      const csr_matrix several = chain(12, unknowns, values);
      products(results, several, several);
    }
  }
}

}  // namespace same_bits
