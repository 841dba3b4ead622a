// SPDX-License-Identifier: MIT
// The tool apart from the streams of its process, so that it can be run more than once in one.
#pragma once

#include <functional>

namespace csrmat {

// Runs the command that the arguments name; returns the exit status.
int run(int argc, char** argv);

// The exit status of `body`. Whatever goes wrong in it ends in one line on standard error.
int guarded(const std::function<int()>& body);

}  // namespace csrmat
