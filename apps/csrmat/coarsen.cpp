// SPDX-License-Identifier: MIT
#include "command.hpp"
#include "console.hpp"
#include "failure.hpp"
#include "files.hpp"
#include "hierarchy.hpp"
#include "limits.hpp"
#include "whole_number.hpp"

#include <unistd.h>
#include <csr_matrix_mod/csr_matrix_mod.hpp>

#include <chrono>
#include <limits>
#include <memory>
#include <vector>

namespace csrmat {

using namespace csr_matrix_mod;

namespace {

// Rounding alone stays far below.
constexpr double tolerance = 1e-10;

struct coarsening {
  std::string file;
  std::int32_t levels = 20;
  std::int32_t min_rows = 50;
  bool graph = false;
  std::string prefix;

  [[nodiscard]] operator_form form() const {
    return graph ? operator_form::graph : operator_form::matrix;
  }
};

using clock = std::chrono::steady_clock;

double milliseconds_since(clock::time_point start) {
  return std::chrono::duration<double, std::milli>(clock::now() - start).count();
}

// One line on a terminal, for whoever has waited for more than a second.
class progress {
 public:
  progress() = default;
  progress(const progress&) = delete;
  progress& operator=(const progress&) = delete;
  ~progress() { clear(); }

  void show(const std::string& step) {
    if (!terminal_ || milliseconds_since(start_) < 1000.0) return;
    std::fprintf(stderr, "\r%s ...\033[K", step.c_str());
    std::fflush(stderr);
    shown_ = true;
  }

  void clear() {
    if (shown_) std::fputs("\r\033[K", stderr);
    shown_ = false;
  }

 private:
  bool terminal_ = isatty(STDERR_FILENO) == 1;
  clock::time_point start_ = clock::now();
  bool shown_ = false;
};

// Prints the levels as they come and keeps what the summary needs of them.
class report {
 public:
  explicit report(const coarsening& what) : what_(what) {}

  void begin(const csr_matrix& mat) {
    std::fprintf(results(), "%s: %d x %d, %d entries%s\n\n", what_.file.c_str(), mat.n, mat.m,
                 csr_matrix_num_nz(mat), mat.type == matrix_real ? "" : ", each counts as 1");
    std::fprintf(results(), "%5s %10s %12s %12s %7s %10s\n", "level", "rows", "entries",
                 "entries/row", "ratio", "ms");
  }

  void finest(const csr_matrix& mat) {
    print_size(mat);
    std::fprintf(results(), " %7s %10s\n", "-", "-");
    add(mat);
  }

  void coarser(const csr_matrix& mat, double milliseconds) {
    print_size(mat);
    std::fprintf(results(), " %7.2f %10.2f\n", static_cast<double>(rows_.back()) / mat.n,
                 milliseconds);
    add(mat);
  }

  void difference(double relative) { differences_.push_back(relative); }

  void end(const std::string& why) const {
    std::fprintf(results(), "\n%s\n", why.c_str());
    std::fprintf(results(), "operator complexity %.3f, grid complexity %.3f\n",
                 complexity(entries_), complexity(rows_));
    if (differences_.empty()) return;
    std::fprintf(results(),
                 "\nself-check: largest relative difference, for a random x, between\n%s\n",
                 what_.graph ? "gc*x + d*x and r*(g1*(p*x)), d being the weights inside the "
                               "aggregates, which gc leaves out"
                             : "mc*x and r*(m1*(p*x))");
    for (std::size_t level = 1; level <= differences_.size(); ++level)
      std::fprintf(results(), "  level %zu: %.2e\n", level, differences_[level - 1]);
  }

  // Not a number is too large as well.
  void require_small_differences() const {
    for (std::size_t level = 1; level <= differences_.size(); ++level)
      if (!(differences_[level - 1] <= tolerance))
        throw failure(what_.file + ": self-check failed on level " + std::to_string(level));
  }

 private:
  void print_size(const csr_matrix& mat) const {
    const std::int32_t nnz = csr_matrix_num_nz(mat);
    std::fprintf(results(), "%5zu %10d %12d %12.2f", rows_.size(), mat.n, nnz,
                 mat.n == 0 ? 0.0 : static_cast<double>(nnz) / mat.n);
  }

  void add(const csr_matrix& mat) {
    rows_.push_back(mat.n);
    entries_.push_back(csr_matrix_num_nz(mat));
    std::fflush(results());
  }

  const coarsening& what_;
  std::vector<std::int64_t> rows_;
  std::vector<std::int64_t> entries_;
  std::vector<double> differences_;
};

class builder {
 public:
  explicit builder(const coarsening& what) : what_(what), report_(what) {}

  void run() {
    progress_.show("reading " + what_.file);
    {
      const csr_matrix mat = read_matrix(what_.file);
      require_square(mat);
      report_.begin(mat);
      current_ = finest_level(mat, what_.form());
    }
    report_.finest(current_);
    write();
    std::string why;
    while ((why = reason_to_stop()).empty()) {
      if (!next_level()) {
        why = "stops here: the rows hardly grow fewer";
        break;
      }
    }
    progress_.clear();
    report_.end(why);
    report_.require_small_differences();
  }

 private:
  void require_square(const csr_matrix& mat) const {
    if (mat.n != mat.m)
      throw failure(what_.file + ": only a square matrix can be coarsened, this one is " +
                    std::to_string(mat.n) + " x " + std::to_string(mat.m));
    fitting_product(1, mat.n, what_.file + ": the entries of p");
    require_memory_for_columns(mat.m, 4, what_.file + ": gathering its rows");
  }

  [[nodiscard]] std::string reason_to_stop() const {
    if (current_.n <= what_.min_rows)
      return "stops here: no more rows than --min-rows " + std::to_string(what_.min_rows);
    if (level_ + 1 >= what_.levels)
      return "stops here: as many levels as --levels " + std::to_string(what_.levels);
    return {};
  }

  // False, and nothing changes, when a coarser level would hardly be smaller.
  bool next_level() {
    const std::string name = "level " + std::to_string(level_ + 1) + ": ";
    const clock::time_point start = clock::now();
    progress_.show(name + "aggregation");
    const std::optional<transfer> via = gather(current_);
    if (!via) return false;
    progress_.show(name + "coarse operator");
    csr_matrix coarse = coarse_level(current_, *via, what_.form());
    const double milliseconds = milliseconds_since(start);

    progress_.show(name + "self-check");
    report_.difference(largest_difference(current_, *via, coarse, what_.form()));
    progress_.clear();
    report_.coarser(coarse, milliseconds);
    current_ = std::move(coarse);
    ++level_;
    write();
    return true;
  }

  void write() {
    if (what_.prefix.empty()) return;
    write_matrix(what_.prefix + "." + std::to_string(level_) + ".mtx", file_kind::market, current_);
  }

  const coarsening& what_;
  report report_;
  progress progress_;
  csr_matrix current_;
  std::int32_t level_ = 0;
};

}  // namespace

void declare_coarsen(CLI::App& command) {
  const auto what = std::make_shared<coarsening>();
  const CLI::Validator positive = whole_number(1, std::numeric_limits<std::int32_t>::max());
  command.add_option("FILE", what->file, "The matrix, square")->required();
  command.add_option("--levels", what->levels, "Levels at most, the finest included")
      ->transform(positive)
      ->capture_default_str();
  command.add_option("--min-rows", what->min_rows, "A level of no more rows is the last one")
      ->transform(positive)
      ->capture_default_str();
  command.add_flag("--graph", what->graph, "Coarsen the weighted graph: off-diagonal entries only");
  command.add_option("--out", what->prefix, "Write each level as PREFIX.<level>.mtx")
      ->type_name("PREFIX");
  command.callback([what] { builder(*what).run(); });
}

}  // namespace csrmat
