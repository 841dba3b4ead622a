// SPDX-License-Identifier: MIT
#include "observe.hpp"

#include <csr_matrix_mod/support.hpp>

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <stdexcept>

namespace tests {

namespace {

struct stopped : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// Standard output goes to a nameless file for as long as this lives.
class captured_output {
 public:
  captured_output() : saved_(dup(STDOUT_FILENO)), file_(std::tmpfile()) {
    std::fflush(stdout);
    if (file_ == nullptr || dup2(fileno(file_), STDOUT_FILENO) < 0)
      throw std::runtime_error("cannot capture standard output");
  }
  captured_output(const captured_output&) = delete;
  captured_output& operator=(const captured_output&) = delete;
  ~captured_output() {
    restore();
    std::fclose(file_);
  }

  std::string take() {
    restore();
    std::rewind(file_);
    std::string text;
    char block[4096];
    for (std::size_t got = 0; (got = std::fread(block, 1, sizeof block, file_)) > 0;)
      text.append(block, got);
    return text;
  }

 private:
  void restore() {
    if (saved_ < 0) return;
    std::fflush(stdout);
    dup2(saved_, STDOUT_FILENO);
    close(saved_);
    saved_ = -1;
  }

  int saved_;
  std::FILE* file_;
};

class throwing_handler {
 public:
  throwing_handler()
      : before_(csr_matrix_mod::set_stop_handler(
            [](std::string_view message) { throw stopped(std::string(message)); })) {}
  throwing_handler(const throwing_handler&) = delete;
  throwing_handler& operator=(const throwing_handler&) = delete;
  ~throwing_handler() { csr_matrix_mod::set_stop_handler(before_); }

 private:
  csr_matrix_mod::stop_handler before_;
};

}  // namespace

observed observe(const std::function<void()>& call) {
  observed seen;
  const throwing_handler handler;
  captured_output output;
  try {
    call();
  } catch (const stopped& stop) {
    seen.stop = stop.what();
  }
  seen.output = output.take();
  return seen;
}

void expect_silent(const std::function<void()>& call) {
  const observed seen = observe(call);
  EXPECT_EQ(seen.output, "");
  EXPECT_EQ(seen.stop, std::nullopt);
}

}  // namespace tests
