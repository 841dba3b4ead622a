// SPDX-License-Identifier: MIT
#include "stop.hpp"

#include <csr_matrix_mod/support.hpp>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <iostream>

namespace csr_matrix_mod {

namespace {

std::atomic<stop_handler> current_handler{nullptr};

// A line and its end go out together, whichever other thread writes to the stream too.
class whole_line {
 public:
  explicit whole_line(std::FILE* stream) noexcept : stream_(stream) {
#if defined(__unix__) || defined(__APPLE__)
    ::flockfile(stream_);
#endif
  }
  whole_line(const whole_line&) = delete;
  whole_line& operator=(const whole_line&) = delete;
  ~whole_line() {
#if defined(__unix__) || defined(__APPLE__)
    ::funlockfile(stream_);
#endif
  }

 private:
  std::FILE* stream_;
};

// Nothing is allocated here: the message may be about memory.
void write_line(std::FILE* stream, std::string_view text) {
  const whole_line line(stream);
  std::fwrite(text.data(), 1, text.size(), stream);
  std::fputc('\n', stream);
}

// The host may have untied std::cout from stdout, and may let it throw.
void flush_standard_output() noexcept {
  try {
    std::cout.flush();
  } catch (...) {  // NOLINT(bugprone-empty-catch): the stop message matters more
  }
  std::fflush(stdout);
}

}  // namespace

stop_handler set_stop_handler(stop_handler handler) noexcept {
  return current_handler.exchange(handler);
}

// Units hold nothing back between calls (see the unit table), so flushing standard output leaves
// nothing unwritten. No destructor runs on the way out: one that fails would hide the message.
void stop(std::string_view message) {
  if (const stop_handler handler = current_handler.load(); handler != nullptr) handler(message);
  flush_standard_output();
  write_line(stderr, message);
  std::fflush(stderr);
  std::_Exit(EXIT_FAILURE);
}

void stop_without_storage(std::string_view routine) {
  stop(short_text().append("allocation error in ").append(routine).view());
}

void print_line(std::string_view line) { write_line(stdout, line); }

}  // namespace csr_matrix_mod
