// SPDX-License-Identifier: MIT
#include "command.hpp"
#include "console.hpp"
#include "failure.hpp"
#include "files.hpp"
#include "replacement.hpp"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <csr_matrix_mod/csr_matrix_mod.hpp>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <sstream>

namespace csrmat {

using namespace csr_matrix_mod;

namespace {

// The name stands between double quotes in the command file, where gnuplot takes some characters
// for more than they are: a command to run, an escape, data of another place.
void require_plain_name(const std::string& name) {
  const auto special = [](unsigned char c) { return c < ' ' || c == '"' || c == '\\' || c == '`'; };
  const bool starts_special = name.find_first_of("<|+-$~") == 0;
  if (name.empty() || starts_special || std::any_of(name.begin(), name.end(), special))
    throw failure(name + ": gnuplot would not take this for the name of a file");
}

std::string contents(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// All files of a plot are replaced, which a device cannot be, and the matrix should not be.
void require_replaceable(const std::string& name, const std::string& matrix) {
  std::error_code unknown;
  if (std::filesystem::equivalent(name, matrix, unknown))
    throw failure(name + ": cannot be written: it is the matrix to plot");
  if (std::filesystem::exists(name, unknown) && !std::filesystem::is_regular_file(name, unknown))
    throw failure(name + ": cannot be written: not a regular file");
}

// The commands of the plot, drawing into a PNG file on standard output instead.
std::string png_commands(const std::string& commands) {
  std::istringstream lines(commands);
  std::string text;
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind("set out", 0) == 0) continue;
    if (line.rfind("set term", 0) == 0) line = "set term png size 900,900";
    text += line + ";";
  }
  return text;
}

enum class outcome { absent, failed, done };

// gnuplot is found by PATH; what it says is not for the reader of a matrix.
outcome run_gnuplot(std::string commands, const std::string& in, const std::string& out) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, in.c_str(), O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, out.c_str(), O_WRONLY | O_TRUNC, 0);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
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

// gnuplot does not notice that a disk is full, but a PNG file has an end of its own.
bool is_whole_picture(const std::string& path) {
  return contents(path).ends_with("IEND\xae\x42\x60\x82");
}

// Why there is no picture of the points; empty when there is.
std::string draw(const std::string& commands, const std::string& points, const std::string& png,
                 const std::string& picture) {
  const std::string from_input = with_name_asked(commands, points, "/dev/stdin");
  const outcome result = run_gnuplot(png_commands(from_input), points, picture);
  if (result == outcome::absent) return "gnuplot is not installed";
  if (result == outcome::failed || !is_whole_picture(picture))
    throw failure(png + ": gnuplot could not draw it");
  return {};
}

void write_text(const std::string& text, const std::string& path, const std::string& name) {
  std::ofstream file(path);
  file << text;
  file.close();
  if (!file) throw failure(name + ": cannot be written: " + std::strerror(errno));
}

void plot(const std::string& file, const std::string& out) {
  require_plain_name(out);
  const std::string com = out + ".com";
  const std::string png = out + ".png";
  for (const std::string& name : {out, com, png}) require_replaceable(name, file);
  const csr_matrix mat = read_matrix(file);

  replacement points(out);
  const unfinished_file draft(points.path() + ".com");  // names the points as they are named now
  replacement commands(com);
  replacement picture(png);
  try {
    csr_matrix_dump_gnuplot(mat, points.path());
  } catch (const failure& why) {
    throw failure(with_name_asked(why.what(), points.path(), out));
  }
  library_lines();  // it says what the next line says
  const std::string drafted = contents(draft.path());
  write_text(with_name_asked(drafted, points.path(), out), commands.path(), com);
  const std::string missing = csr_matrix_num_nz(mat) == 0
                                  ? "there is no entry to draw"
                                  : draw(drafted, points.path(), png, picture.path());

  points.commit();
  commands.commit();
  std::fprintf(results(), "wrote %s and %s, which draws %s.ps\n", out.c_str(), com.c_str(),
               out.c_str());
  if (!missing.empty()) {
    std::error_code unknown;
    std::fprintf(
        results(),
        std::filesystem::exists(png, unknown) ? "left %s as it was: %s\n" : "without %s: %s\n",
        png.c_str(), missing.c_str());
    return;
  }
  picture.commit();
  std::fprintf(results(), "wrote %s\n", png.c_str());
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
