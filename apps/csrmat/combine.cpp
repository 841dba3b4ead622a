// SPDX-License-Identifier: MIT
// Commands that make one matrix of two.
#include "command.hpp"
#include "failure.hpp"
#include "files.hpp"
#include "limits.hpp"

#include <csr_matrix_mod/csr_matrix_mod.hpp>

#include <memory>

namespace csrmat {

using namespace csr_matrix_mod;

namespace {

struct operands {
  std::string a;
  std::string b;
  std::string out;
};

using combination = csr_matrix (*)(const csr_matrix& a, const csr_matrix& b, const operands& names);

void declare_combination(CLI::App& command, combination combine) {
  const auto names = std::make_shared<operands>();
  command.add_option("A", names->a, "The left matrix")->required();
  command.add_option("B", names->b, "The right matrix")->required();
  command
      .add_option("OUT", names->out,
                  "The file to write; structure only when A or B is structure only")
      ->required();
  command.callback([names, combine] {
    const file_kind kind = output_kind(names->out);
    const csr_matrix a = read_matrix(names->a);
    const csr_matrix b = read_matrix(names->b);
    require_memory_for_columns(b.m, 2, names->b + ": work on its columns");
    write_matrix(names->out, kind, combine(a, b, *names));
  });
}

std::string described(const std::string& file, const csr_matrix& mat) {
  return file + " (" + std::to_string(mat.n) + " x " + std::to_string(mat.m) + ")";
}

csr_matrix product(const csr_matrix& a, const csr_matrix& b, const operands& names) {
  if (a.m != b.n)
    throw failure("the columns of " + described(names.a, a) + " are not as many as the rows of " +
                  described(names.b, b));
  csr_matrix result;
  csr_matrix_multiply(a, b, result);
  return result;
}

csr_matrix sum(const csr_matrix& a, const csr_matrix& b, const operands& names) {
  if (a.n != b.n || a.m != b.m)
    throw failure(described(names.a, a) + " and " + described(names.b, b) +
                  " are not of the same size");
  csr_matrix result;
  csr_matrix_sum(a, b, result);
  return result;
}

}  // namespace

void declare_multiply(CLI::App& command) { declare_combination(command, product); }

void declare_sum(CLI::App& command) { declare_combination(command, sum); }

}  // namespace csrmat
