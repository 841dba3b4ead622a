// SPDX-License-Identifier: MIT
// Commands that make one matrix of one.
#include "command.hpp"
#include "failure.hpp"
#include "files.hpp"
#include "limits.hpp"

#include <csr_matrix_mod/csr_matrix_mod.hpp>

#include <functional>
#include <memory>

namespace csrmat {

using namespace csr_matrix_mod;

namespace {

struct in_and_out {
  std::string in;
  std::string out;
};

// `work` changes the matrix of IN into that of OUT.
void declare_work(CLI::App& command, const std::function<void(csr_matrix& mat)>& work) {
  const auto names = std::make_shared<in_and_out>();
  command.add_option("IN", names->in, "The matrix")->required();
  command.add_option("OUT", names->out, "The file to write")->required();
  command.callback([names, work] {
    const file_kind kind = output_kind(names->out);
    csr_matrix mat = read_matrix(names->in);
    require_memory_for_columns(mat.m, 2, names->in + ": work on its columns");
    try {
      work(mat);
    } catch (const failure& why) {
      throw failure(names->in + ": " + why.what());
    }
    write_matrix(names->out, kind, mat);
  });
}

void require_square(const csr_matrix& mat) {
  if (mat.n != mat.m)
    throw failure("only a square matrix can be symmetrised, this one is " + std::to_string(mat.n) +
                  " x " + std::to_string(mat.m));
}

}  // namespace

void declare_sort(CLI::App& command) { declare_work(command, csr_matrix_sort); }

void declare_clean(CLI::App& command) {
  declare_work(command, [](csr_matrix& mat) {
    if (csr_matrix_num_nz(mat) > 0) csr_matrix_clean(mat);  // which stops when nothing is left
  });
}

void declare_symmetrize(CLI::App& command) {
  const auto no_diagonal = std::make_shared<bool>(false);
  command.add_flag("--no-diagonal", *no_diagonal,
                   "Leave the diagonal out and make every value 1: an undirected graph");
  declare_work(command, [no_diagonal](csr_matrix& mat) {
    require_square(mat);
    if (*no_diagonal)
      csr_matrix_symmetrize_nodiag(mat);
    else
      csr_matrix_symmetrize(mat);
  });
}

void declare_transpose(CLI::App& command) {
  declare_work(command, [](csr_matrix& mat) {
    csr_matrix transposed;
    csr_matrix_transpose(mat, transposed);
    mat = std::move(transposed);
  });
}

}  // namespace csrmat
