// SPDX-License-Identifier: MIT
// Any sequence of routines on four small records. Beside each record stands what it should hold,
// row by row, worked out by dense matrices that share no code with the library. Records share their
// arrays, are reused for results, meet a refusal of storage half-way, and go.
#include "claims.hpp"
#include "target.hpp"
#include "tests/support/dense.hpp"
#include "tests/support/matrices.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <vector>

namespace fuzz {

namespace {

using namespace csr_matrix_mod;  // NOLINT: every line below names one of its routines
using tests::entry;
using tests::entry_rows;
namespace dense = tests::dense;

// The input, byte by byte; 0 when it has ended.
class choices {
 public:
  explicit choices(bytes from) : from_(from) {}

  [[nodiscard]] bool left() const { return next_ < from_.size(); }
  std::int32_t below(std::int32_t count) {
    const std::int32_t byte = left() ? from_[next_++] : 0;
    return count > 0 ? byte % count : 0;
  }
  double value() {
    constexpr std::array values = {1.0, -1.0, 0.0, -0.0, 0.1, 3.0, 1e-9, -7e8};
    return values.at(static_cast<std::size_t>(below(static_cast<std::int32_t>(values.size()))));
  }

 private:
  bytes from_;
  std::size_t next_ = 0;
};

struct slot {
  csr_matrix mat;
  entry_rows rows;  // what `mat` should hold; the values of a pattern play no part
  bool used = false;

  [[nodiscard]] bool real() const { return mat.type == matrix_real; }
  [[nodiscard]] std::int32_t entries() const { return csr_matrix_num_nz(mat); }
};

bool same(double left, double right) {
  return same_bytes(&left, &right, 1) || (std::isnan(left) && std::isnan(right));
}

bool same(const entry_rows& left, const entry_rows& right, bool with_values) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [=](const auto& row, const auto& other) {
                      return std::equal(row.begin(), row.end(), other.begin(), other.end(),
                                        [=](const entry& e, const entry& f) {
                                          return e.column == f.column &&
                                                 (!with_values || same(e.value, f.value));
                                        });
                    });
}

bool same(const std::vector<double>& left, const std::vector<double>& right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](double x, double y) { return same(x, y); });
}

entry_rows held(const csr_matrix& mat) {
  claim_well_formed(mat, "a record stays well formed");
  entry_rows rows;
  for (std::int32_t i = 1; i <= mat.n; ++i) {
    rows.emplace_back();
    for (std::int32_t k = mat.ia(i); k < mat.ia(i + 1); ++k)
      rows.back().push_back({mat.ja(k), mat.type == matrix_real ? mat.a(k) : 1.0});
  }
  return rows;
}

std::vector<entry>::iterator place_of(std::vector<entry>& row, std::int32_t column) {
  return std::find_if(row.begin(), row.end(),
                      [column](const entry& e) { return e.column == column; });
}

// Repeated columns merged where they stood first.
entry_rows cleaned(const entry_rows& rows) {
  entry_rows result;
  for (const auto& row : rows) {
    result.emplace_back();
    for (const entry& e : row) {
      const auto first = place_of(result.back(), e.column);
      if (first == result.back().end())
        result.back().push_back(e);
      else
        first->value = first->value + e.value;
    }
  }
  return result;
}

entry_rows sorted(const entry_rows& rows) {
  entry_rows result = cleaned(rows);
  for (auto& row : result)
    std::sort(row.begin(), row.end(),
              [](const entry& e, const entry& f) { return e.column < f.column; });
  return result;
}

entry_rows without_diagonal(const entry_rows& rows) {
  entry_rows result = rows;
  for (std::size_t i = 0; i < result.size(); ++i)
    std::erase_if(result[i],
                  [i](const entry& e) { return e.column == static_cast<std::int32_t>(i) + 1; });
  return result;
}

// True if every row had one; else the rows before the first that had none are done.
bool move_diagonal(entry_rows& rows) {
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const auto found = place_of(rows[i], static_cast<std::int32_t>(i) + 1);
    if (found == rows[i].end()) return false;
    std::iter_swap(rows[i].begin(), found);
  }
  return true;
}

int requests_until_refusal = -1;
bool refused = false;

// Of the requests from now on the one behind `count` others is refused, or none.
void refuse_request(int count) {
  requests_until_refusal = count;
  refused = false;
  detail::set_refusal([](std::size_t requested) noexcept {
    const bool refuse = requests_until_refusal-- == 0 || requested > most_bytes;
    refused = refused || refuse;
    return refuse;
  });
}

class records {
 public:
  explicit records(bytes contents) : next_(contents) {}

  void run() {
    for (int step = 0; step < 60 && next_.left(); ++step) {
      const std::int32_t what = next_.below(32);
      slot& x = any_slot();
      slot& y = any_slot();
      slot& z = any_slot();
      // Every eighth call or so meets a shortage.
      refuse_request(next_.below(8) == 0 ? next_.below(6) : -1);
      if (what < 8)
        make(z);
      else
        work(what, x, y, z);
      refuse_request(-1);
    }
  }

 private:
  slot& any_slot() { return slots_.at(static_cast<std::size_t>(next_.below(4))); }

  // -------------------------------------------------------------------------------- new records

  void make(slot& z) {
    const int refusal = std::exchange(requests_until_refusal, -1);
    const std::int32_t m = next_.below(6);
    entry_rows rows(static_cast<std::size_t>(next_.below(6)));
    for (auto& row : rows)
      for (std::int32_t count = m > 0 ? next_.below(5) : 0; count > 0; --count)
        row.push_back({next_.below(m) + 1, next_.value()});
    const std::int32_t spare = next_.below(3);
    z.mat = next_.below(3) == 0 ? tests::pattern(m, tests::columns_of(rows), spare)
                                : tests::real_matrix(m, rows, spare);
    z.rows = rows;
    z.used = true;
    requests_until_refusal = refusal;
  }

  // ------------------------------------------------------------------------------ one call each

  // `call` fills the record of z, from others. Whatever comes of it, no other record changes.
  void result(slot& z, const std::function<void()>& call, const entry_rows& expected,
              std::int32_t m, matrix_type type) {
    const auto stop = stop_of(call);
    if (stop) {
      claim_shortage(*stop);
      release(z);
    } else {
      z.used = true;
      z.rows = expected;
      claim(z.mat.n == static_cast<std::int32_t>(expected.size()) && z.mat.m == m,
            "a result has the size that was promised");
      claim(z.mat.type == type, "a result is of the kind that was promised");
      claim(z.mat.ja.length() == std::max(z.entries(), 1), "a result has no spare capacity");
    }
    claim_all();
  }

  // `call` changes the record of x, and those that share its arrays. Those that still share some of
  // them, but not all, are of no use any more.
  void change(slot& x, const std::function<void()>& call, const entry_rows& expected,
              bool stop_expected = false) {
    std::array<bool, 4> shared{};
    for (std::size_t s = 0; s < slots_.size(); ++s) shared.at(s) = shares(slots_.at(s), x);
    const auto stop = stop_of(call);
    if (stop && !stop_expected) {
      claim_shortage(*stop);
      for (std::size_t s = 0; s < slots_.size(); ++s)
        if (shared.at(s)) release(slots_.at(s));
      claim_all();
      return;
    }
    claim(stop.has_value() == stop_expected, "a call stops where it should");
    x.rows = expected;
    for (std::size_t s = 0; s < slots_.size(); ++s) {
      slot& other = slots_.at(s);
      if (&other == &x || !shared.at(s)) continue;
      if (!shares_all(other, x) && shares(other, x))
        release(other);
      else if (shares_all(other, x))
        other.rows = x.rows;
    }
    claim_all();
  }

  void work(std::int32_t what, slot& x, slot& y, slot& z) {
    if (!x.used) return;
    csr_matrix& mat = x.mat;
    const bool other = &x != &z;
    const bool square = mat.n == mat.m;
    switch (what) {
      case 8:
        if (other)
          result(
              z, [&] { csr_matrix_transpose(mat, z.mat); }, dense::transpose(x.rows, mat.m), mat.n,
              mat.type);
        return;
      case 9:
      case 10:
      case 11:
        if (other && y.used && &y != &z) combine(what, x, y, z);
        return;
      case 12:
      case 13:
      case 14:
        if (other && y.used && &y != &z && mat.m <= y.mat.n) multiply(what, x, y, z);
        return;
      case 15:
        if (square)
          change(
              x, [&] { csr_matrix_symmetrize(mat); },
              dense::sum(x.rows, dense::transpose(x.rows, mat.m), mat.m));
        return;
      case 16:
        if (square)
          change(
              x, [&] { csr_matrix_symmetrize_nodiag(mat); },
              dense::union_nodiag(x.rows, dense::transpose(x.rows, mat.m), mat.m));
        return;
      case 17:
        change(
            x, [&] { csr_matrix_sort(mat); }, sorted(x.rows));
        return;
      case 18:
        if (x.entries() > 0)
          change(
              x, [&] { csr_matrix_clean(mat); }, cleaned(x.rows));
        return;
      case 19:
        change(
            x, [&] { csr_matrix_remove_diag(mat); }, without_diagonal(x.rows));
        return;
      case 20:
        if (x.real()) {
          entry_rows moved = x.rows;
          const bool whole = move_diagonal(moved);
          change(
              x, [&] { csr_matrix_movediag(mat); }, moved, !whole);
        }
        return;
      case 21:
        share(x, z);
        return;
      case 22:
        if (other)
          result(
              z, [&] { csr_matrix_assign(z.mat, mat); }, x.rows, mat.m, mat.type);
        return;
      case 23:
        release(x);
        claim_all();
        return;
      case 24:
        through_lists(x, z);
        return;
      case 25:
        through_arrays(x, z);
        return;
      case 26:
        if (const std::int32_t nz = x.entries() + next_.below(4); nz > 0) {
          change(
              x, [&] { csr_matrix_reallocate(mat, nz); }, x.rows);
          claim(!x.used || mat.ja.length() == nz, "capacity is what was asked for");
        }
        return;
      case 27:
        if (x.real()) {
          const double v = next_.value();
          entry_rows set = x.rows;
          for (auto& row : set)
            for (entry& e : row) e.value = v;
          change(
              x, [&] { csr_matrix_setval(mat, v); }, set);
        }
        return;
      case 28:
        multiply_vectors(x);
        return;
      case 29:
        condense(x);
        return;
      case 30:
        ask_for_symmetry(x);
        return;
      default:
        if (other && y.used && &y != &z) restrict_to(x, y, any_slot(), z);
        return;
    }
  }

  void combine(std::int32_t what, slot& x, slot& y, slot& z) {
    if (x.mat.n != y.mat.n || x.mat.m != y.mat.m) return;
    const matrix_type type = x.real() && y.real() ? matrix_real : matrix_structure_only;
    if (what == 9)
      result(
          z, [&] { csr_matrix_sum_nodiag(x.mat, y.mat, z.mat); },
          dense::union_nodiag(x.rows, y.rows, x.mat.m), x.mat.m, type);
    else
      result(
          z, [&] { csr_matrix_sum(x.mat, y.mat, z.mat); }, dense::sum(x.rows, y.rows, x.mat.m),
          x.mat.m, type);
  }

  void multiply(std::int32_t what, slot& x, slot& y, slot& z) {
    const std::int32_t m = y.mat.m;
    if (what == 12) {
      const matrix_type type = x.real() && y.real() ? matrix_real : matrix_structure_only;
      result(
          z, [&] { csr_matrix_multiply(x.mat, y.mat, z.mat); }, dense::product(x.rows, y.rows, m),
          m, type);
      return;
    }
    std::vector<std::int32_t> weights(static_cast<std::size_t>(x.mat.m), 1);
    if (what == 14)
      for (std::int32_t& weight : weights) weight = next_.below(9) - 4;
    const std::optional<array_view<const std::int32_t>> given =
        what == 14 ? std::optional<array_view<const std::int32_t>>(weights) : std::nullopt;
    result(
        z, [&] { csr_matrix_multiply_graph(x.mat, y.mat, z.mat, {}, given); },
        dense::graph_product(tests::columns_of(x.rows), tests::columns_of(y.rows), m, weights), m,
        matrix_real);
  }

  void restrict_to(slot& m1, slot& p, slot& r, slot& z) {
    const bool fits = r.used && &r != &z && m1.mat.n == m1.mat.m && p.mat.n == m1.mat.n &&
                      r.mat.m == m1.mat.n && m1.real() && p.real() && r.real();
    if (!fits) return;
    const std::int32_t m = p.mat.m;
    const entry_rows mp = dense::product(m1.rows, p.rows, m);
    if (next_.below(2) == 0)
      result(
          z, [&] { csr_matrix_restriction(m1.mat, p.mat, r.mat, z.mat); },
          dense::product(r.rows, mp, m), m, matrix_real);
    else
      result(
          z, [&] { csr_matrix_graph_restriction(m1.mat, p.mat, r.mat, z.mat); },
          dense::product(r.rows, mp, m, dense::diagonal::skipped), m, matrix_real);
  }

  // The arrays of x under a second record, which may be x itself.
  void share(slot& x, slot& z) {
    csr_matrix_transfer(z.mat, x.mat);
    z.rows = x.rows;
    z.used = true;
    claim(z.mat.ja.data() == x.mat.ja.data(), "a transfer shares the arrays");
    claim_all();
  }

  void through_lists(slot& x, slot& z) {
    std::int32_t nnz = 0;
    array_ref<std::int32_t> row;
    array_ref<std::int32_t> col;
    array_ref<double> val;
    const auto call = [&, n = x.mat.n, m = x.mat.m, type = x.mat.type] {
      csr_matrix_to_coo(x.mat, nnz, row, col, val);
      coo_to_csr_format(n, nnz, row, col, val, z.mat, type, m);
    };
    result(z, call, entry_rows(x.rows), x.mat.m, x.mat.type);
  }

  void through_arrays(slot& x, slot& z) {
    std::int32_t n = 0;
    std::int32_t m = 0;
    std::int32_t nnz = 0;
    array_ref<std::int32_t> starts;
    array_ref<std::int32_t> columns;
    array_ref<double> values;
    const bool real = x.real();
    const auto call = [&] {
      csr_to_csr_arrays(x.mat, n, m, nnz, starts, columns, real ? &values : nullptr);
      if (real)
        csr_to_csr_matrix(n, m, z.mat, starts, columns, values);
      else
        csr_to_csr_matrix(n, m, z.mat, starts, columns);
    };
    result(z, call, entry_rows(x.rows), x.mat.m, x.mat.type);
  }

  void multiply_vectors(slot& x) {
    std::vector<double> right(static_cast<std::size_t>(x.mat.m));
    std::vector<double> left(static_cast<std::size_t>(x.mat.n));
    for (double& element : right) element = next_.value();
    for (double& element : left) element = next_.value();
    if (x.real()) {
      std::vector<double> y(left.size());
      csr_matrix_multiply_rvector(x.mat, right, y);
      claim(same(y, dense::times(x.rows, right)), "mat x is that of the dense matrix");
      y.resize(right.size());
      csr_matrix_trans_mult_rvector(x.mat, left, y);
      claim(same(y, dense::transpose_times(x.rows, x.mat.m, left)),
            "transpose(mat) x is that of the dense matrix");
    }
    const std::vector<std::int32_t> ones(left.size(), 1);
    std::vector<std::int32_t> counts(right.size());
    csr_matrix_trans_mult_ivector(x.mat, ones, counts);
    claim(counts == dense::transpose_times(tests::columns_of(x.rows), x.mat.m, ones),
          "transpose(pattern) x is that of the dense matrix");
  }

  // What it keeps is tested elsewhere; here it meets patterns that nobody thought of.
  void condense(slot& x) {
    if (x.real() || x.entries() == 0) return;
    for (slot& other : slots_)
      if (&other != &x && shares(other, x)) release(other);
    std::vector<std::int32_t> weights(static_cast<std::size_t>(x.mat.m), 1);
    const std::int32_t m = x.mat.m;
    if (const auto stop = stop_of([&] { csr_matrix_condense(x.mat, weights); })) {
      claim_shortage(*stop);
      release(x);
    } else {
      claim(x.mat.m <= m, "condensation makes no columns");
      x.rows = held(x.mat);
    }
    claim_all();
  }

  void ask_for_symmetry(slot& x) {
    bool symmetric = false;
    const auto stop = stop_of([&] { symmetric = matrix_is_struct_symmetric(x.mat); });
    if (stop) claim_shortage(*stop);
    const bool mirrored = x.mat.n == x.mat.m &&
                          same(sorted(x.rows), dense::transpose(sorted(x.rows), x.mat.m), false) &&
                          same(x.rows, cleaned(x.rows), false);
    claim(stop || symmetric || !mirrored, "a symmetric pattern is found symmetric");
    claim_all();
  }

  // --------------------------------------------------------------------------------- all of them

  static bool shares(const slot& one, const slot& other) {
    return one.used && other.used &&
           (one.mat.ia.data() == other.mat.ia.data() || one.mat.ja.data() == other.mat.ja.data() ||
            (one.mat.a.allocated() && one.mat.a.data() == other.mat.a.data()));
  }
  static bool shares_all(const slot& one, const slot& other) {
    return one.mat.ia.data() == other.mat.ia.data() && one.mat.ja.data() == other.mat.ja.data() &&
           (!one.real() || one.mat.a.data() == other.mat.a.data());
  }

  static void release(slot& x) {
    x.mat.type = matrix_real;
    csr_matrix_deallocate(x.mat);
    claim(!x.mat.ia.allocated() && !x.mat.ja.allocated() && !x.mat.a.allocated(),
          "a record can be released");
    x.used = false;
  }

  // Only storage can be short here.
  static void claim_shortage(const std::string& stop) {
    claim(refused, "nothing stops unless storage is refused", stop);
    claim(stop.find("alloc") != stop.npos || stop == " ", "a shortage is called so", stop);
  }

  void claim_all() {
    for (const slot& each : slots_)
      if (each.used)
        claim(same(held(each.mat), each.rows, each.real()), "a record holds what it should");
  }

  choices next_;
  std::array<slot, 4> slots_;
};

}  // namespace

void run(bytes contents) {
  static const bool prepared = [] {
    prepare_library();
    return true;
  }();
  static_cast<void>(prepared);
  records(contents).run();
}

}  // namespace fuzz
