// SPDX-License-Identifier: MIT
// What a caller can observe of a call: the lines on standard output and the stop message.
#pragma once

#include <functional>
#include <optional>
#include <string>

namespace tests {

struct observed {
  std::string output;               // standard output, byte for byte
  std::optional<std::string> stop;  // the stop message; nothing when the call returned
};

// Runs `call` with a stop handler that throws, and standard output captured.
observed observe(const std::function<void()>& call);

// For calls that are expected to return in silence; anything else fails the test.
void expect_silent(const std::function<void()>& call);

}  // namespace tests
