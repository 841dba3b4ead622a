// SPDX-License-Identifier: MIT
// Storage that is not to be had, of either kind: blocks that the library asks the system for, and
// what operator new gives to its strings, counts and readers. One number counts both.
#pragma once

#include <functional>
#include <optional>
#include <string>

namespace tests {

enum class duration { once, lasting };  // request k alone, or all from k on

struct under_shortage {
  bool reached;                     // was there a request number k?
  bool threw;                       // did std::bad_alloc come out of the call?
  std::optional<std::string> stop;  // the stop message
  std::string output;               // standard output
};

// Runs `call` while request k, counted from 0, is refused. The shortage ends with the call, or with
// the stop: a handler finds storage again.
under_shortage with_shortage(int k, duration how_long, const std::function<void()>& call);

// The same in times of plenty.
under_shortage without_shortage(const std::function<void()>& call);

}  // namespace tests
