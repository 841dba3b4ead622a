// SPDX-License-Identifier: MIT
// A Python process that is handed the same matrices as files, and times itself.
#include "peers.hpp"
#include "zero_based.hpp"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <stdexcept>

extern char** environ;

namespace bench {

namespace {

template <class T>
void write_array(const std::string& file, const array<T>& elements) {
  std::ofstream out(file, std::ios::binary);
  out.write(reinterpret_cast<const char*>(elements.data()),
            static_cast<std::streamsize>(elements.size() * sizeof(T)));
  out.close();
  if (!out) throw std::runtime_error("cannot write " + file);
}

template <class T>
array<T> read_array(const std::string& file) {
  std::ifstream in(file, std::ios::binary | std::ios::ate);
  array<T> elements(static_cast<std::size_t>(in.tellg()) / sizeof(T));
  in.seekg(0);
  in.read(reinterpret_cast<char*>(elements.data()),
          static_cast<std::streamsize>(elements.size() * sizeof(T)));
  in.close();
  std::remove(file.c_str());
  return elements;
}

void write_matrix(const std::string& stem, const matrix& of) {
  if (of.starts.empty()) return;
  const zero_based<std::int32_t> arrays(of);
  write_array(stem + ".shape", array<std::int32_t>{of.n, of.m});
  write_array(stem + ".starts", arrays.starts);
  write_array(stem + ".columns", arrays.columns);
  write_array(stem + ".values", arrays.values);
}

struct closer {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using stream = std::unique_ptr<std::FILE, closer>;

class python final : public contestant {
 public:
  python(const problem& p, const std::string& operation) : stem_(p.file) {
    write_matrix(stem_ + ".a", p.a);
    write_matrix(stem_ + ".b", p.b);
    write_matrix(stem_ + ".r", p.r);
    if (!p.x.empty()) write_array(stem_ + ".x", p.x);
    if (!p.rows.empty()) {
      write_array(stem_ + ".rows", p.rows);
      write_array(stem_ + ".listed", p.listed.columns);
      write_array(stem_ + ".listed_values", p.listed.values);
    }
    launch(operation);
    expect("ready");
  }
  ~python() override {
    commands_.reset();
    ::waitpid(child_, nullptr, 0);
  }

  void prepare() override {
    tell("prepare");
    expect("prepared");
  }
  duration run() override {
    tell("run");
    duration time;
    if (std::sscanf(heard().c_str(), "%lf %lf", &time.wall, &time.cpu) != 2)
      throw std::runtime_error("SciPy did not tell its time");
    return time;
  }
  answer take() override {
    tell("take");
    const std::string kind = heard();
    if (kind == "vector") {
      answer found;
      found.values = read_array<double>(stem_ + ".y");
      return found;
    }
    const auto shape = read_array<std::int32_t>(stem_ + ".c.shape");
    const auto starts = read_array<std::int32_t>(stem_ + ".c.starts");
    const auto columns = read_array<std::int32_t>(stem_ + ".c.columns");
    const auto values = read_array<double>(stem_ + ".c.values");
    return matrix_answer(
        from_zero_based(shape[0], shape[1], starts.data(), columns.data(), values.data()));
  }
  [[nodiscard]] pid_t process() const override { return child_; }

 private:
  void launch(const std::string& operation) {
    int down[2];
    int up[2];
    if (::pipe(down) != 0 || ::pipe(up) != 0) throw std::runtime_error("pipe");
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, down[0], STDIN_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, up[1], STDOUT_FILENO);
    for (const int pipe : {down[0], down[1], up[0], up[1]})
      ::posix_spawn_file_actions_addclose(&actions, pipe);
    std::string words[] = {BENCH_PYTHON, BENCH_SCIPY_PROGRAM, stem_, operation};
    char* arguments[] = {words[0].data(), words[1].data(), words[2].data(), words[3].data(),
                         nullptr};
    const int failed = ::posix_spawn(&child_, BENCH_PYTHON, &actions, nullptr, arguments, environ);
    ::posix_spawn_file_actions_destroy(&actions);
    ::close(down[0]);
    ::close(up[1]);
    if (failed != 0) throw std::runtime_error("cannot start Python");
    commands_.reset(::fdopen(down[1], "w"));
    replies_.reset(::fdopen(up[0], "r"));
  }

  void tell(const char* command) {
    std::fprintf(commands_.get(), "%s\n", command);
    std::fflush(commands_.get());
  }
  std::string heard() {
    char line[256];
    if (std::fgets(line, sizeof line, replies_.get()) == nullptr)
      throw std::runtime_error("SciPy left");
    std::string reply = line;
    if (reply.ends_with('\n')) reply.pop_back();
    return reply;
  }
  void expect(const std::string& reply) {
    if (heard() != reply) throw std::runtime_error("SciPy did not say " + reply);
  }

  std::string stem_;
  pid_t child_ = -1;
  stream commands_;
  stream replies_;
};

contribution does(const std::string& operation) {
  return {operation, [operation](const problem& p) -> std::unique_ptr<contestant> {
            return std::make_unique<python>(p, operation);
          }};
}

}  // namespace

peer scipy() {
  return {
      "SciPy",
      {does("multiply"), does("restriction"), does("sum"), does("symmetrize"), does("transpose"),
       does("sort"), does("coordinates"), does("A x"), does("A' x"), does("clean")}};
}

}  // namespace bench
