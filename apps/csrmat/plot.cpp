// SPDX-License-Identifier: MIT
#include "command.hpp"
#include "console.hpp"
#include "failure.hpp"
#include "files.hpp"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <csr_matrix_mod/csr_matrix_mod.hpp>

#include <algorithm>
#include <array>
#include <fstream>
#include <memory>

namespace csrmat {

using namespace csr_matrix_mod;

namespace {

// The name stands between double quotes in the command file, where gnuplot takes some characters
// for more than they are: a command to run, an escape, data of another place.
void require_plain_name(const std::string& name) {
  const auto special = [](unsigned char c) { return c < ' ' || c == '"' || c == '\\' || c == '`'; };
  const bool starts_special = name.find_first_of("<|+-$") == 0;
  if (name.empty() || starts_special || std::any_of(name.begin(), name.end(), special))
    throw failure(name + ": gnuplot would not take this for the name of a file");
}

// The command file of the plot, drawing into a PNG file instead.
std::string png_commands(const std::string& plot) {
  std::ifstream file(plot + ".com");
  std::string commands;
  for (std::string line; std::getline(file, line);) {
    if (line.rfind("set term", 0) == 0) line = "set term png size 900,900";
    if (line.rfind("set out", 0) == 0) line = "set out \"" + plot + ".png\"";
    commands += line + ";";
  }
  return commands;
}

enum class outcome { absent, failed, done };

// gnuplot is found by PATH; what it says is not for the reader of a matrix.
outcome run_gnuplot(std::string commands) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    posix_spawn_file_actions_addopen(&actions, stream, "/dev/null", O_RDWR, 0);
  std::string program = "gnuplot";
  std::string option = "-e";
  std::array<char*, 4> argv = {program.data(), option.data(), commands.data(), nullptr};
  pid_t child = 0;
  const int error = posix_spawnp(&child, program.c_str(), &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) return outcome::absent;
  int status = 0;
  waitpid(child, &status, 0);
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
    return WIFEXITED(status) && WEXITSTATUS(status) == 127 ? outcome::absent : outcome::failed;
  return outcome::done;
}

void draw(const std::string& out) {
  const std::string png = out + ".png";
  switch (run_gnuplot(png_commands(out))) {
    case outcome::absent:
      std::fprintf(results(), "without %s: gnuplot is not installed\n", png.c_str());
      return;
    case outcome::failed:
      throw failure(png + ": gnuplot could not draw it");
    case outcome::done:
      std::fprintf(results(), "wrote %s\n", png.c_str());
  }
}

void plot(const std::string& file, const std::string& out) {
  require_plain_name(out);
  const csr_matrix mat = read_matrix(file);
  csr_matrix_dump_gnuplot(mat, out);
  library_lines();  // it says what the next line says
  std::fprintf(results(), "wrote %s and %s.com, which draws %s.ps\n", out.c_str(), out.c_str(),
               out.c_str());
  if (csr_matrix_num_nz(mat) == 0)
    std::fprintf(results(), "without %s.png: there is no entry to draw\n", out.c_str());
  else
    draw(out);
}

}  // namespace

void declare_plot(CLI::App& command) {
  const auto file = std::make_shared<std::string>();
  const auto out = std::make_shared<std::string>();
  command.add_option("FILE", *file, "The matrix")->required();
  command
      .add_option("OUT", *out,
                  "Data file; OUT.com gets the commands for gnuplot, and OUT.png the picture "
                  "where gnuplot is installed")
      ->required();
  command.callback([file, out] { plot(*file, *out); });
}

}  // namespace csrmat
