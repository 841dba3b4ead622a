// SPDX-License-Identifier: MIT
#include "tool.hpp"

#include "../../src/support/quoted.hpp"
#include "command.hpp"
#include "console.hpp"
#include "failure.hpp"

#include <csr_matrix_mod/support.hpp>
#include <csr_matrix_mod/version.hpp>

#include <algorithm>
#include <array>
#include <cstdio>
#include <exception>
#include <functional>
#include <new>
#include <sstream>
#include <string>
#include <string_view>

namespace csrmat {

namespace {

struct command {
  const char* name;
  const char* purpose;
  const char* routines;
  void (*declare)(CLI::App& command);
};

// In the order of --help.
constexpr std::array commands = {
    command{"info", "What a matrix is",
            "csr_matrix_check, matrix_is_struct_symmetric, csr_matrix_condense", declare_info},
    command{"convert", "Another kind of file",
            "csr_matrix_load, _read_market, csr_matrix_dump, _write_market", declare_convert},
    command{"coarsen", "A hierarchy of coarse operators",
            "csr_matrix_restriction or csr_matrix_graph_restriction", declare_coarsen},
    command{"gallery", "A matrix to try things on", "coo_to_csr_format, csr_matrix_sort",
            declare_gallery},
    command{"plot", "The pattern as a picture", "csr_matrix_dump_gnuplot", declare_plot},
    command{"sort", "Columns in order, repeated ones added", "csr_matrix_sort", declare_sort},
    command{"clean", "Repeated columns added, order kept", "csr_matrix_clean", declare_clean},
    command{"symmetrize", "A plus its transpose",
            "csr_matrix_symmetrize or csr_matrix_symmetrize_nodiag", declare_symmetrize},
    command{"transpose", "The transpose", "csr_matrix_transpose", declare_transpose},
    command{"multiply", "A times B", "csr_matrix_multiply", declare_multiply},
    command{"sum", "A plus B", "csr_matrix_sum", declare_sum},
    command{"apply", "A times a vector", "csr_matrix_multiply_rvector", declare_apply},
};

std::string padded(std::string text, std::size_t width) {
  text.resize(std::max(width, text.size()), ' ');
  return text;
}

std::string table_of_routines() {
  std::string table = "What each command runs:\n";
  for (const command& c : commands) table += "  " + padded(c.name, 12) + c.routines + "\n";
  table +=
      "\nFiles: .mtx Matrix Market, .csr text (8 digits), .csrb binary; written only: .dump, .ij,\n"
      ".ija, .hgr. Input of another suffix is recognised by its first bytes.";
  return table;
}

void declare(CLI::App& app) {
  app.require_subcommand(1);
  app.set_version_flag("--version", std::string("csrmat ") +
                                        std::to_string(CSR_MATRIX_MOD_VERSION_MAJOR) + "." +
                                        std::to_string(CSR_MATRIX_MOD_VERSION_MINOR) + "." +
                                        std::to_string(CSR_MATRIX_MOD_VERSION_PATCH));
  app.footer(table_of_routines());
  for (const command& c : commands) {
    CLI::App& sub = *app.add_subcommand(c.name, c.purpose);
    sub.footer(std::string("Runs ") + c.routines + ".");
    c.declare(sub);
  }
}

// Would a terminal obey the byte at k rather than show it? In UTF-8 a byte from 0x80 to 0x9f is
// part of a letter, but alone, or behind 0xc2, it is a control character.
bool is_control(std::string_view text, std::size_t k) {
  const auto c = static_cast<unsigned char>(text[k]);
  const auto before = static_cast<unsigned char>(k == 0 ? ' ' : text[k - 1]);
  const bool in_letter = before >= 0x80 && before != 0xc2;
  return c < ' ' || c == 0x7f || (0x80 <= c && c < 0xa0 && !in_letter);
}

// Everything that goes wrong ends here, in one line that any terminal can show.
int complain(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
  std::string line = text.rfind(": ", 0) == 0 ? "''" : "";  // the name of a file is empty
  for (std::size_t k = 0; k < text.size(); ++k)
    line += is_control(text, k) ? csr_matrix_mod::coded(text[k]) : std::string(1, text[k]);
  std::fprintf(stderr, "csrmat: %s\n", line.c_str());
  return EXIT_FAILURE;
}

// The library has said why in a line of its own before a stop with a blank message.
std::string reason(std::string_view message) {
  if (message.find_first_not_of(' ') != message.npos) return std::string(message);
  std::string lines = library_lines();
  while (!lines.empty() && lines.back() == '\n') lines.pop_back();
  return lines.substr(lines.rfind('\n') + 1);
}

}  // namespace

int run(int argc, char** argv) {
  CLI::App app("Sparse matrices and graphs in compressed rows.", "csrmat");
  declare(app);
  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& help) {
    std::ostringstream text;
    app.exit(help, text);
    std::fputs(text.str().c_str(), results());
  } catch (const CLI::ParseError& error) {
    if (app.get_subcommands().empty() && app.remaining_size() > 0)
      return complain(app.remaining().front() + ": no such command; see csrmat --help");
    return complain(std::string(error.what()) + "; see csrmat --help");
  }
  return EXIT_SUCCESS;
}

int guarded(const std::function<int()>& body) {
  csr_matrix_mod::set_stop_handler(
      [](std::string_view message) { throw failure(reason(message)); });
  try {
    return body();
  } catch (const failure& why) {
    return complain(why.what());
  } catch (const std::bad_alloc&) {
    return complain("not enough memory");
  } catch (const std::exception& why) {
    return complain(why.what());
  }
}

}  // namespace csrmat
