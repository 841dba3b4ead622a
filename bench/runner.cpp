// SPDX-License-Identifier: MIT
#include "runner.hpp"

#include <fcntl.h>
#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <iostream>
#include <stdexcept>

namespace bench {

namespace {

constexpr int large_block = 128 << 10;

struct command {
  char what;
  int calls;
};

template <class T>
bool write_item(int pipe, const T& item) {
  return ::write(pipe, &item, sizeof item) == static_cast<ssize_t>(sizeof item);
}

template <class T>
bool read_item(int pipe, T& item) {
  return ::read(pipe, &item, sizeof item) == static_cast<ssize_t>(sizeof item);
}

double status_bytes(pid_t process, const std::string& field) {
  std::ifstream status("/proc/" + std::to_string(process) + "/status");
  for (std::string line; std::getline(status, line);)
    if (line.starts_with(field + ":")) return 1024 * std::stod(line.substr(field.size() + 1));
  return 0;
}

// The largest resident set is counted anew from here.
bool forget_peak(pid_t process) {
  std::ofstream clear("/proc/" + std::to_string(process) + "/clear_refs");
  clear << 5 << std::flush;
  return static_cast<bool>(clear);
}

duration mean_of(contestant& who, int calls) {
  duration total;
  if (calls > 1) {  // not the first: its operands and its code are not in the cache yet
    who.prepare();
    who.run();
  }
  for (int call = 0; call < calls; ++call) {
    who.prepare();
    const duration once = who.run();
    total.wall += once.wall;
    total.cpu += once.cpu;
  }
  return {total.wall / calls, total.cpu / calls};
}

double memory_of(contestant& who) {
  who.prepare();
  ::malloc_trim(0);
  const double before = status_bytes(who.process(), "VmRSS");
  if (!forget_peak(who.process())) return 0;
  who.run();
  return status_bytes(who.process(), "VmHWM") - before;
}

first_look check_of(contestant& who, const answer* expected) {
  first_look seen;
  who.prepare();
  seen.took = who.run();
  seen.found = expected == nullptr ? verdict::same_bits : compare(*expected, who.take());
  return seen;
}

void serve(const maker& make, const problem& of, const answer* expected, int in, int out) {
  const std::unique_ptr<contestant> who = make(of);
  for (command next{}; read_item(in, next) && next.what != 'q';) {
    if (next.what == 'c') write_item(out, check_of(*who, expected));
    if (next.what == 'r') write_item(out, mean_of(*who, next.calls));
    if (next.what == 'm') write_item(out, memory_of(*who));
  }
}

}  // namespace

const char* name(regime memory) { return memory == regime::fresh ? "fresh" : "recycled"; }

namespace {

// What the regime promises, seen: a large block is one of the system's.
void require_fresh_blocks() {
  const std::size_t before = ::mallinfo2().hblks;
  void* const volatile block = std::malloc(4 * large_block);  // not to be optimised away
  const bool fresh = ::mallinfo2().hblks == before + 1;
  std::free(block);
  if (!fresh) throw std::runtime_error("memory does not come fresh");
}

}  // namespace

void set_for_this_process(regime memory) {
  if (memory == regime::fresh) {
    ::mallopt(M_MMAP_MAX, 1 << 16);  // a library may have set it to 0 as it was loaded
    ::mallopt(M_MMAP_THRESHOLD, large_block);
    ::mallopt(M_TRIM_THRESHOLD, large_block);
    ::mallopt(M_TOP_PAD, 0);
    require_fresh_blocks();
  } else {
    ::mallopt(M_MMAP_MAX, 0);
    ::mallopt(M_TRIM_THRESHOLD, -1);
  }
}

void set_for_children(regime memory) {
  const bool fresh = memory == regime::fresh;
  const std::string block = std::to_string(large_block);
  ::unsetenv("MALLOC_MMAP_MAX_");
  ::unsetenv("MALLOC_MMAP_THRESHOLD_");
  if (fresh)
    ::setenv("MALLOC_MMAP_THRESHOLD_", block.c_str(), 1);
  else
    ::setenv("MALLOC_MMAP_MAX_", "0", 1);
  ::setenv("MALLOC_TRIM_THRESHOLD_", fresh ? block.c_str() : "-1", 1);
}

runner::runner(const maker& make, const problem& of, const answer* expected, regime memory) {
  std::signal(SIGPIPE, SIG_IGN);
  int down[2];
  int up[2];
  if (::pipe2(down, O_CLOEXEC) != 0 || ::pipe2(up, O_CLOEXEC) != 0)
    throw std::runtime_error("pipe");
  std::cout.flush();
  std::fflush(nullptr);
  child_ = ::fork();
  if (child_ < 0) throw std::runtime_error("fork");
  if (child_ != 0) {
    ::close(down[0]);
    ::close(up[1]);
    to_child_ = down[1];
    from_child_ = up[0];
    return;
  }
  ::close(down[1]);
  ::close(up[0]);
  int status = EXIT_SUCCESS;
  try {
    set_for_this_process(memory);
    serve(make, of, expected, down[0], up[1]);
  } catch (const std::exception& problem) {
    std::cerr << problem.what() << std::endl;
    status = EXIT_FAILURE;
  }
  std::fflush(nullptr);
  ::_exit(status);
}

runner::~runner() {
  ask('q', 0);  // closing the pipe is not enough: later children have it too
  ::close(to_child_);
  ::waitpid(child_, nullptr, 0);
  ::close(from_child_);
}

bool runner::ask(char what, int calls) { return write_item(to_child_, command{what, calls}); }

template <class T>
std::optional<T> runner::answered() {
  T item{};
  if (!read_item(from_child_, item)) return std::nullopt;
  return item;
}

first_look runner::check() {
  return ask('c', 1) ? answered<first_look>().value_or(first_look{}) : first_look{};
}

std::optional<duration> runner::run(int calls) {
  return ask('r', calls) ? answered<duration>() : std::nullopt;
}

std::optional<double> runner::memory() { return ask('m', 1) ? answered<double>() : std::nullopt; }

}  // namespace bench
