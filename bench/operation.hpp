// SPDX-License-Identifier: MIT
// An operation: the workloads it is measured on, the library's call and the plain one.
#pragma once

#include "contestant.hpp"
#include "workloads.hpp"

#include <functional>
#include <string>
#include <vector>

namespace bench {

struct workload {
  std::string name;
  std::function<problem(const sizes&)> generate;
  // How far ahead of the fastest peer the library is meant to be; 0 where nothing was set.
  double goal = 0;
};

// A workload on one matrix of about so many rows; `more` adds what else the operation needs.
using matrix_maker = std::function<matrix(double rows)>;
workload on(std::string name, matrix_maker make, double rows, double goal,
            std::function<void(problem&)> more = {});

// Matrices by the names that the reports use.
matrix_maker five_point_rows();
matrix_maker triangle_rows();
matrix_maker seven_point_rows();
matrix_maker twenty_seven_point_rows();
matrix_maker random_rows();
matrix_maker uneven_rows();
matrix_maker renumbered_rows();    // of 7 points, among 64
matrix_maker random_order_rows();  // of 27 points
matrix_maker tridiagonal_rows();
matrix_maker band_rows();                  // 101 diagonals
matrix_maker seven_point_rows_of_three();  // unknowns
matrix_maker rmat_rows();

// The scalar multiplications of a b.
double scalar_products(const matrix& a, const matrix& b);

// What is timed beside the contestants without being one: the bytes moved and nothing else.
struct reference {
  std::string name;
  maker make;
};

// The arrays of A copied into new ones: what takes each entry in and puts it out once takes as long
// at least.
reference copied();

struct operation {
  std::string name;
  std::string formula;
  std::vector<workload> workloads;
  maker ours;
  maker plain;
  std::vector<reference> references;
  // For the curve of cost against size; absent where there is none. A problem of so many rows:
  std::function<problem(double rows)> of_size;
  // Scalar products, or entries, in a problem: what the curve is divided by.
  std::function<double(const problem&)> work;
};

// One a file in operations/.
operation multiply();
operation restriction();
operation sum();
operation symmetrize();
operation transpose();
operation sort();
operation coordinates();
operation product_with_vector();
operation product_with_vector_transposed();
operation write_text();
operation read_text();
operation write_binary();
operation read_binary();
operation graph_product();
operation integer_vector();
operation integer_vector_transposed();
operation condense();
operation structural_symmetry();
operation clean();

std::vector<operation> operations();

}  // namespace bench
