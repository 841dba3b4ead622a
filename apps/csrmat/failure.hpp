// SPDX-License-Identifier: MIT
// Why a command cannot go on: the text of the one line on standard error.
#pragma once

#include <stdexcept>

namespace csrmat {

struct failure : std::runtime_error {
  using std::runtime_error::runtime_error;
};

}  // namespace csrmat
