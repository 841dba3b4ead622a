// SPDX-License-Identifier: MIT
#include "contestant.hpp"

#include <unistd.h>

#include <ctime>

namespace bench {

namespace {

double now(clockid_t clock) {
  timespec time{};
  ::clock_gettime(clock, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

}  // namespace

duration timed(const std::function<void()>& call) {
  const double cpu = now(CLOCK_PROCESS_CPUTIME_ID);
  const double wall = now(CLOCK_MONOTONIC);
  call();
  const double wall_end = now(CLOCK_MONOTONIC);
  return {wall_end - wall, now(CLOCK_PROCESS_CPUTIME_ID) - cpu};
}

pid_t contestant::process() const { return ::getpid(); }

}  // namespace bench
