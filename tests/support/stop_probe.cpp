// SPDX-License-Identifier: MIT
// Stops in the way that its argument names; stop_test.cpp looks at what it leaves behind.
#include <csr_matrix_mod/csr_matrix.hpp>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <map>
#include <string>

namespace {

using namespace csr_matrix_mod;

void stop_with_a_message() {
  csr_matrix graph;
  graph.type = matrix_structure_only;
  csr_matrix_setval(graph, 1.0);
}

void stop_after_a_line() {
  csr_matrix mat;
  csr_matrix_initial(2, mat, 2);
  (void)csr_matrix_getrow(mat, 3);
}

void write_unfinished_lines_then_stop() {
  std::ios::sync_with_stdio(false);
  std::cin.tie(nullptr);
  std::cout << "from std::cout, ";
  std::cout.flush();
  std::printf("from stdio, ");
  std::fflush(stdout);
  std::cout << "held back";
  stop_with_a_message();
}

// A full disk, say.
struct failing_buffer : std::streambuf {
  int sync() override { throw std::ios_base::failure("cannot flush"); }
};

void stop_while_std_cout_throws() {
  static failing_buffer buffer;
  std::cout.rdbuf(&buffer);
  std::cout.exceptions(std::ios::badbit);
  std::printf("from stdio");
  stop_with_a_message();
}

struct last_words {
  last_words() = default;
  last_words(const last_words&) = delete;
  last_words& operator=(const last_words&) = delete;
  ~last_words() { std::fputs("a destructor ran\n", stderr); }
};

void stop_before_destructors_and_exit_functions() {
  static const last_words at_the_end;
  const last_words of_this_scope;
  std::atexit([] { std::fputs("an exit function ran\n", stderr); });
  stop_with_a_message();
}

void stop_although_the_handler_returns() {
  set_stop_handler([](std::string_view message) {
    std::printf("handled: %.*s", static_cast<int>(message.size()), message.data());
  });
  stop_with_a_message();
}

void leave_from_the_handler() {
  set_stop_handler([](std::string_view) { std::exit(7); });
  stop_with_a_message();
}

void stop_without_the_handler_that_was_removed() {
  set_stop_handler([](std::string_view) { std::exit(7); });
  set_stop_handler(nullptr);
  stop_with_a_message();
}

}  // namespace

int main(int argc, char** argv) {
  const std::map<std::string, std::function<void()>> ways = {
      {"message", stop_with_a_message},
      {"blank", stop_after_a_line},
      {"unfinished-lines", write_unfinished_lines_then_stop},
      {"throwing-stream", stop_while_std_cout_throws},
      {"destructors", stop_before_destructors_and_exit_functions},
      {"handler-returns", stop_although_the_handler_returns},
      {"handler-leaves", leave_from_the_handler},
      {"handler-removed", stop_without_the_handler_that_was_removed},
  };
  if (argc == 2) ways.at(argv[1])();
  std::puts("not stopped");
}
