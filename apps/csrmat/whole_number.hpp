// SPDX-License-Identifier: MIT
// Options that take a whole number.
#pragma once

#include "../../src/support/quoted.hpp"
#include "../../src/support/read_number.hpp"

#include <CLI/CLI.hpp>

#include <string>
#include <system_error>

namespace csrmat {

// Takes a whole number from `least` to `most`, in decimal digits. CLI11 by itself takes 010 for 8,
// and cuts what is too large.
template <class Number>
CLI::Validator whole_number(Number least, Number most) {
  const auto made_decimal = [least, most](std::string& text) -> std::string {
    Number number = 0;
    if (csr_matrix_mod::read_number(text, number) != std::errc() || number < least || number > most)
      return "expected a whole number from " + std::to_string(least) + " to " +
             std::to_string(most) + ", found " + csr_matrix_mod::quoted(text);
    text = std::to_string(number);
    return {};
  };
  return {made_decimal, ""};
}

}  // namespace csrmat
