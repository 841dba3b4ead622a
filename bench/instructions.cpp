// SPDX-License-Identifier: MIT
// One call of one routine on a small fixed case, for callgrind to count its instructions:
// scripts/instructions.sh runs it.
#include "../src/support/vector_registers.hpp"
#include "ours.hpp"
#include "workloads.hpp"

#include <cstdlib>
#include <functional>
#include <iostream>
#include <map>
#include <string>
#include <vector>

namespace {

using namespace csr_matrix_mod;  // NOLINT: every line below calls one of its routines
using bench::ours::record;

constexpr double rows = 4096;

void product(const bench::matrix& of) {
  const csr_matrix a = record(of);
  csr_matrix c;
  csr_matrix_multiply(a, a, c);
}

void vector_product(void (*multiply)(const csr_matrix&, array_view<const double>,
                                     array_view<double>)) {
  const csr_matrix a = record(bench::five_point(rows));
  const std::vector<double> x(static_cast<std::size_t>(a.m), 1.0);
  std::vector<double> y(static_cast<std::size_t>(a.n));
  multiply(a, x, y);
}

void lists(bool in_order) {
  const bench::matrix a = bench::uniform_random(rows);
  bench::array<std::int32_t> row = bench::rows_of_entries(a);
  if (!in_order) row = bench::array<std::int32_t>(row.rbegin(), row.rend());
  csr_matrix made;
  coo_to_csr_format(a.n, a.nnz(), row, a.columns, a.values, made, matrix_real, a.m);
}

// The first word of a name is the routine to be counted.
const std::map<std::string, std::function<void()>> cases = {
    {"csr_matrix_multiply stencil", [] { product(bench::five_point(rows)); }},
    {"csr_matrix_multiply random", [] { product(bench::uniform_random(rows)); }},
    {"csr_matrix_multiply unknowns",
     [] { product(bench::several_unknowns(bench::five_point(rows / 3.0), 3)); }},
    {"csr_matrix_restriction aggregates",
     [] {
       const csr_matrix a = record(bench::five_point(rows));
       const csr_matrix p = record(bench::aggregates_of_square(bench::square_side(rows)));
       csr_matrix r;
       csr_matrix_transpose(p, r);
       csr_matrix mc;
       csr_matrix_restriction(a, p, r, mc);
     }},
    {"csr_matrix_sum stencil",
     [] {
       const csr_matrix a = record(bench::five_point(rows));
       csr_matrix c;
       csr_matrix_sum(a, a, c);
     }},
    {"csr_matrix_sum random",
     [] {
       const csr_matrix a = record(bench::uniform_random(rows));
       const csr_matrix b = record(bench::uniform_random(rows, 8, 2));
       csr_matrix c;
       csr_matrix_sum(a, b, c);
     }},
    {"csr_matrix_sum shuffled",
     [] {
       const csr_matrix a = record(bench::shuffled_rows(bench::five_point(rows)));
       csr_matrix c;
       csr_matrix_sum(a, a, c);
     }},
    {"csr_matrix_symmetrize stencil",
     [] {
       csr_matrix a = record(bench::five_point(rows));
       csr_matrix_symmetrize(a);
     }},
    {"csr_matrix_transpose random",
     [] {
       const csr_matrix a = record(bench::uniform_random(rows));
       csr_matrix t;
       csr_matrix_transpose(a, t);
     }},
    {"csr_matrix_sort shuffled",
     [] {
       csr_matrix a = record(bench::shuffled_rows(bench::uniform_random(rows)));
       csr_matrix_sort(a);
     }},
    {"csr_matrix_sort sorted",
     [] {
       csr_matrix a = record(bench::uniform_random(rows));
       csr_matrix_sort(a);
     }},
    {"csr_matrix_clean repeats",
     [] {
       csr_matrix a = record(bench::repeated_entries(bench::five_point(rows)));
       csr_matrix_clean(a);
     }},
    {"csr_matrix_condense random",
     [] {
       bench::matrix pattern = bench::uniform_random(rows);
       pattern.values.clear();
       csr_matrix a = record(pattern);
       std::vector<std::int32_t> weights(static_cast<std::size_t>(a.m), 1);
       csr_matrix_condense(a, weights);
     }},
    {"coo_to_csr_format ordered", [] { lists(true); }},
    {"coo_to_csr_format reversed", [] { lists(false); }},
    {"csr_matrix_multiply_rvector stencil", [] { vector_product(csr_matrix_multiply_rvector); }},
    {"csr_matrix_trans_mult_rvector stencil",
     [] { vector_product(csr_matrix_trans_mult_rvector); }},
    {"csr_matrix_dump text", [] { csr_matrix_dump("/dev/null", record(bench::five_point(rows))); }},
};

}  // namespace

int main(int count, char** arguments) {
  if (count == 2 && cases.contains(arguments[1])) {
    // What every machine runs, so that all count the same.
    detail::limit_registers(detail::registers::of_16_bytes);
    cases.at(arguments[1])();
    return EXIT_SUCCESS;
  }
  for (const auto& [name, call] : cases) std::cout << name << '\n';
  return count == 1 ? EXIT_SUCCESS : EXIT_FAILURE;
}
