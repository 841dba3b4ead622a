// SPDX-License-Identifier: MIT
// Matrix times vector, plain and transposed; with the values, or with the pattern where every entry
// weighs 1.
#include "../csr_matrix/uneven_rows.hpp"
#include "../support/stop.hpp"
#include "../support/vector_registers.hpp"

#include <csr_matrix_mod/products.hpp>

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace csr_matrix_mod {

namespace {

// A term for each entry: entry k times the element x. Of two entries that follow each other those
// that are not kept give +0, which changes no sum, as none is -0: it begins with +0.
struct weighted {
  using pair = detail::vector_of<16>::type;

  const double* values;

  [[nodiscard]] double term(std::int32_t k, double x) const { return values[k - 1] * x; }

  [[nodiscard]] pair terms(std::int32_t k, double x0, double x1, const std::int64_t* kept) const {
    typedef std::int64_t mask __attribute__((vector_size(16)));  // NOLINT(modernize-use-using)
    pair two;
    mask which;
    std::memcpy(&two, values + (k - 1), sizeof(two));
    std::memcpy(&which, kept, sizeof(which));
    return std::bit_cast<pair>(std::bit_cast<mask>(two * pair{x0, x1}) & which);
  }

  [[nodiscard]] static double plus(double term, double sum) { return term + sum; }
};

// The element x; sums wrap at 32 bits.
struct unweighted {
  using pair = std::array<std::int32_t, 2>;

  static constexpr std::nullptr_t values = nullptr;

  [[nodiscard]] static std::int32_t term(std::int32_t, std::int32_t x) { return x; }

  [[nodiscard]] static pair terms(std::int32_t, std::int32_t x0, std::int32_t x1,
                                  const std::int64_t* kept) {
    return {x0 & static_cast<std::int32_t>(kept[0]), x1 & static_cast<std::int32_t>(kept[1])};
  }

  [[nodiscard]] static std::int32_t plus(std::int32_t term, std::int32_t sum) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(term) +
                                     static_cast<std::uint32_t>(sum));
  }
};

void require_room(std::string_view size, std::int32_t needed, std::int64_t length,
                  std::string_view message) {
  if (length >= needed) return;
  print_free(size, needed);
  print_free("size of y = ", static_cast<std::int32_t>(length));
  stop(message);
}

// Visits the rows in order, with the position of the first entry and the one behind the last. Where
// a row ends the next one starts, which is read once: in the cache 1.1 to 1.25 times as fast.
template <class Row>
void for_each_row(const csr_matrix& mat, const Row& row) {
  const std::int32_t* const starts = mat.ia.data();
  std::int32_t first = starts[0];
  for (std::int64_t i = 1; i <= mat.n; ++i) {
    const std::int32_t end = starts[i];
    row(i, first, end);
    first = end;
  }
}

// Calls back with the walk over the entries that suits the matrix.
template <class Values, class Call>
void walk_entries(const csr_matrix& mat, Values values, const Call& call) {
  if (mat.n <= 0) return;
  const std::int64_t a_row = entries_a_row(mat);
  if (are_short_and_surprise(mat))
    call(entries_in_steps<most_in_short_rows, Values>(mat, values));
  else if (a_row > most_in_short_rows && ends_surprise(mat, 8))
    call(entries_in_steps<8, Values>(mat, values));
  else if (a_row > 3)
    call(entries_ahead(mat, values));
  else if (entries_fit_the_cache(mat.ja.length()))
    call(few_entries_in_turn{});
  else
    call(few_entries_ahead(mat, values));
}

template <class T, class Weight>
void multiply(const csr_matrix& mat, array_view<const T> x, array_view<T> y, const Weight weight) {
  walk_entries(mat, weight.values, [&](const auto entries) {
    const std::int32_t* const columns = mat.ja.data();
    const T* const from = x.data();
    T* const to = y.data();
    for_each_row(mat, [&](std::int64_t i, std::int32_t first, std::int32_t end) {
      T sum = 0;
      entries.visit(
          i, first, end,
          [&](std::int32_t k) {
            sum = Weight::plus(weight.term(k, from[columns[k - 1] - 1]), sum);
          },
          [&](std::int32_t k, const std::int64_t* kept) {
            const auto terms =
                weight.terms(k, from[columns[k - 1] - 1], from[columns[k] - 1], kept);
            sum = Weight::plus(terms[0], sum);
            sum = Weight::plus(terms[1], sum);
          });
      to[i - 1] = sum;
    });
  });
}

// All of `y` is cleared, not only the part that the matrix reaches.
template <class T, class Weight>
void multiply_transposed(const csr_matrix& mat, array_view<const T> x, array_view<T> y,
                         const Weight weight) {
  std::fill(y.begin(), y.end(), T{0});
  walk_entries(mat, weight.values, [&](const auto entries) {
    const std::int32_t* const columns = mat.ja.data();
    const T* const from = x.data();
    T* const to = y.data();
    for_each_row(mat, [&](std::int64_t i, std::int32_t first, std::int32_t end) {
      const T xi = from[i - 1];
      const auto add = [&](std::int32_t k, T term) {
        T& sum = to[columns[k - 1] - 1];
        sum = Weight::plus(term, sum);
      };
      entries.visit(
          i, first, end, [&](std::int32_t k) { add(k, weight.term(k, xi)); },
          [&](std::int32_t k, const std::int64_t* kept) {
            const auto terms = weight.terms(k, xi, xi, kept);
            add(k, terms[0]);
            add(k + 1, terms[1]);
          });
    });
  });
}

}  // namespace

void csr_matrix_multiply_rvector(const csr_matrix& mat, array_view<const double> x,
                                 array_view<double> y) {
  require_room("row size of matrix = ", mat.n, y.length(),
               "size of y too small in matrix_multiply_rvector");
  multiply(mat, x, y, weighted{mat.a.data()});
}

void csr_matrix_trans_mult_rvector(const csr_matrix& mat, array_view<const double> x,
                                   array_view<double> y) {
  require_room("column size of matrix = ", mat.m, y.length(),
               "size of y too small in matrix_trans_mult_rvector");
  multiply_transposed(mat, x, y, weighted{mat.a.data()});
}

void csr_matrix_multiply_ivector(const csr_matrix& mat, array_view<const std::int32_t> x,
                                 array_view<std::int32_t> y) {
  require_room("row size of matrix = ", mat.n, y.length(),
               "size of y too small in matrix_multiply_ivector");
  multiply(mat, x, y, unweighted{});
}

void csr_matrix_trans_mult_ivector(const csr_matrix& mat, array_view<const std::int32_t> x,
                                   array_view<std::int32_t> y) {
  require_room("column size of matrix = ", mat.m, y.length(),
               "size of y too small in matrix_trans_mult_ivector");
  multiply_transposed(mat, x, y, unweighted{});
}

}  // namespace csr_matrix_mod
