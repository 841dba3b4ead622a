// SPDX-License-Identifier: MIT
// Several threads at once, each with records and files of its own, through all chapters. What comes
// out is what comes out of one thread alone. Under -fsanitize=thread (preset tsan) this is also
// what shows that nothing is shared without a lock.
#include "../support/files.hpp"
#include "../support/matrices.hpp"
#include "../support/observe.hpp"

#include <csr_matrix_mod/csr_matrix_mod.hpp>

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <iterator>
#include <random>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace csr_matrix_mod;  // NOLINT: every line below names one of its routines

constexpr unsigned thread_count = 4;
constexpr int rounds = 5;
constexpr std::int32_t n = 40;
constexpr std::int32_t first_unit = 10;

// What one thread has made so far, to the bit.
class account {
 public:
  void add(const csr_matrix& mat) {
    text_ << mat.n << ' ' << mat.m << ' ' << mat.type << '\n';
    for (std::int64_t i = 1; i <= std::int64_t{mat.n} + 1; ++i) text_ << mat.ia(i) << ' ';
    for (std::int64_t k = 1; k <= csr_matrix_num_nz(mat); ++k) {
      text_ << mat.ja(k) << ' ';
      if (mat.type == matrix_real) text_ << mat.a(k) << ' ';
    }
    text_ << '\n';
  }
  template <class T>
  void add(const std::vector<T>& values) {
    for (const T value : values) text_ << value << ' ';
    text_ << '\n';
  }
  void add(const std::string& bytes) { text_ << bytes << '\n'; }

  [[nodiscard]] std::string text() const { return text_.str(); }

 private:
  std::ostringstream text_ = [] {
    std::ostringstream hexadecimal;
    hexadecimal << std::hexfloat;
    return hexadecimal;
  }();
};

// Unsorted rows with repeated columns, a diagonal among them.
csr_matrix any_matrix(std::mt19937& random) {
  std::vector<std::int32_t> rows;
  std::vector<std::int32_t> columns;
  std::vector<double> values;
  for (std::int32_t k = 0; k < 6 * n; ++k) {
    rows.push_back(k < n ? k + 1 : static_cast<std::int32_t>(random() % n) + 1);
    columns.push_back(k < n ? k + 1 : static_cast<std::int32_t>(random() % n) + 1);
    values.push_back(static_cast<double>(random() % 1000) / 7.0);
  }
  csr_matrix mat;
  coo_to_csr_format(n, 6 * n, rows, columns, values, mat, matrix_real, n);
  return mat;
}

csr_matrix graph_of(const csr_matrix& mat) {
  csr_matrix graph;
  csr_to_csr_matrix(mat.n, mat.m, graph, mat.ia, mat.ja);
  return graph;
}

// Every fourth row belongs to the same column.
csr_matrix aggregates() {
  tests::entry_rows rows(n);
  for (std::int32_t i = 0; i < n; ++i) rows[static_cast<std::size_t>(i)] = {{i / 4 + 1, 1.0}};
  return tests::real_matrix(n / 4, rows);
}

void change_rows(const csr_matrix& mat, account& made) {
  csr_matrix copy;
  csr_matrix_assign(copy, mat);
  csr_matrix_clean(copy);
  made.add(copy);
  csr_matrix_movediag(copy);
  made.add(copy);
  csr_matrix_sort(copy);
  made.add(copy);
  csr_matrix_remove_diag(copy);
  made.add(copy);
  csr_matrix graph = graph_of(copy);
  std::vector<std::int32_t> weights(n, 1);
  csr_matrix_condense(graph, weights);
  made.add(graph);
  made.add(weights);
  csr_matrix second;
  csr_matrix_transfer(second, copy);
  csr_matrix_setval(second, 2.0);
  made.add(copy);
}

void combine(const csr_matrix& mat, account& made) {
  csr_matrix transposed;
  csr_matrix_transpose(mat, transposed);
  made.add(transposed);
  csr_matrix result;
  csr_matrix_sum(mat, transposed, result);
  made.add(result);
  csr_matrix_symmetrize_nodiag(result);
  made.add(result);
  made.add(std::to_string(matrix_is_struct_symmetric(result)));
  csr_matrix_multiply(mat, transposed, result);
  made.add(result);
  csr_matrix_multiply_graph(mat, transposed, result);
  made.add(result);
  const csr_matrix p = aggregates();
  csr_matrix r;
  csr_matrix_transpose(p, r);
  csr_matrix_restriction(mat, p, r, result);
  made.add(result);
  csr_matrix_graph_restriction(mat, p, r, result);
  made.add(result);
  std::vector<double> y(n);
  csr_matrix_multiply_rvector(mat, std::vector<double>(n, 0.1), y);
  made.add(y);
  csr_matrix_trans_mult_rvector(mat, std::vector<double>(n, 0.1), y);
  made.add(y);
}

// Four files are left open, as the routines promise: two that were read, and two that a
// pattern was written to.
constexpr int left_open = 4;

void pass_through_files(const csr_matrix& mat, const std::string& prefix, account& made) {
  const csr_matrix graph = graph_of(mat);
  const std::string file = prefix + ".file";
  csr_matrix back = tests::real_matrix(n, tests::entry_rows(n), 6 * n);
  for (const char* word : {"", "unformatted"}) {
    csr_matrix_dump(file, mat, word);
    made.add(tests::read_file(file));
    if (*word == '\0')
      csr_matrix_read(file, back);
    else
      csr_matrix_read(file, back, word);
    made.add(back);
    csr_matrix_load(file, back, *word == '\0' ? std::optional<std::string_view>() : word);
    made.add(back);
  }
  for (const char* word : {"ij", "ija", "hypergraph", "dump"}) {
    csr_matrix_dump(file, mat, word);
    made.add(tests::read_file(file));
  }
  for (const char* word : {"", "dump"}) {
    csr_matrix_dump(file, graph, word);
    made.add(tests::read_file(file));
  }
  csr_matrix_dump_gnuplot(mat, file);
  made.add(tests::read_file(file));
  csr_matrix_write_market(file, mat);
  csr_matrix_read_market(file, back);
  made.add(back);
}

// Runs `work` in all threads at the same time.
void together(const std::function<void(unsigned thread)>& work) {
  std::atomic<unsigned> ready{0};
  std::vector<std::thread> threads;
  for (unsigned t = 0; t < thread_count; ++t)
    threads.emplace_back([&, t] {
      for (++ready; ready < thread_count;) std::this_thread::yield();
      work(t);
    });
  for (std::thread& thread : threads) thread.join();
}

struct stopped : std::runtime_error {
  using std::runtime_error::runtime_error;
};

void stop_and_go_on(const csr_matrix& mat, account& made) {
  try {
    static_cast<void>(csr_matrix_getrow(mat, n + 1));
  } catch (const stopped& stop) {
    made.add(std::string("stopped:") + stop.what());
  }
}

std::string worked(unsigned thread, const std::string& prefix) {
  account made;
  std::mt19937 random(thread);
  for (int round = 0; round < rounds; ++round) {
    const csr_matrix mat = any_matrix(random);
    made.add(mat);
    change_rows(mat, made);
    combine(mat, made);
    pass_through_files(mat, prefix, made);
    stop_and_go_on(mat, made);
  }
  return made.text();
}

void close_all_units() {
  for (std::int32_t unit = first_unit; unit <= 500; ++unit) close_unit(unit);
}

std::multiset<std::string> lines_of(const std::string& output) {
  std::multiset<std::string> lines;
  std::istringstream in(output);
  for (std::string line; std::getline(in, line);) lines.insert(line);
  return lines;
}

void with_throwing_handler(const std::function<void()>& call) {
  const stop_handler before =
      set_stop_handler([](std::string_view message) { throw stopped(std::string(message)); });
  call();
  set_stop_handler(before);
}

// Names of files are the same length each time: they go into a line.
std::string prefix_of(const tests::temporary_folder& folder, unsigned thread) {
  return folder.path("of_thread_" + std::to_string(thread));
}

std::ptrdiff_t open_files() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

TEST(DifferentRecordsInDifferentThreads, GiveWhatOneThreadGives) {
  const tests::temporary_folder folder;
  std::vector<std::string> alone(thread_count);
  const tests::observed before = tests::observe([&] {
    with_throwing_handler([&] {
      for (unsigned t = 0; t < thread_count; ++t) alone[t] = worked(t, prefix_of(folder, t));
    });
  });
  EXPECT_EQ(vacant_unit(),
            first_unit + static_cast<std::int32_t>(thread_count) * rounds * left_open);
  close_all_units();

  const std::ptrdiff_t files = open_files();
  std::vector<std::string> at_once(thread_count);
  const tests::observed after = tests::observe([&] {
    with_throwing_handler(
        [&] { together([&](unsigned t) { at_once[t] = worked(t, prefix_of(folder, t)); }); });
  });
  EXPECT_EQ(at_once, alone);
  EXPECT_EQ(lines_of(after.output), lines_of(before.output));
  // Which units are open depends on who closed one when another was opened; how many does not.
  EXPECT_EQ(open_files(), files + std::ptrdiff_t{thread_count} * rounds * left_open);
  close_all_units();
  EXPECT_EQ(open_files(), files);
}

TEST(LinesOfDifferentThreads, AreNotMixed) {
  constexpr int lines = 20000;
  const tests::observed seen = tests::observe([] {
    together([](unsigned) {
      for (int k = 0; k < lines; ++k) {
        csr_matrix nothing;
        nothing.type = matrix_structure_only;
        csr_matrix_deallocate(nothing);
      }
    });
  });
  const std::multiset<std::string> found = lines_of(seen.output);
  constexpr std::size_t each = std::size_t{thread_count} * lines;
  EXPECT_EQ(found.size(), 2 * each);
  EXPECT_EQ(found.count("deallocation error in csr_matrix_deallocate1"), each);
  EXPECT_EQ(found.count("deallocation error in csr_matrix_deallocate3"), each);
}

TEST(AHandlerThatIsSet, IsSeenByAThreadAtWork) {
  std::atomic<int> seen{0};
  with_throwing_handler([&seen] {
    together([&seen](unsigned) {
      csr_matrix graph;
      graph.type = matrix_structure_only;
      for (int k = 0; k < 200; ++k) {
        set_stop_handler([](std::string_view message) { throw stopped(std::string(message)); });
        try {
          csr_matrix_setval(graph, 1.0);
        } catch (const stopped&) {
          ++seen;
        }
      }
    });
  });
  EXPECT_EQ(seen, static_cast<int>(thread_count) * 200);
}

}  // namespace
