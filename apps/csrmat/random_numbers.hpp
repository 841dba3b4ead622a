// SPDX-License-Identifier: MIT
// Random numbers that are the same on every machine: the engine of the standard library is fixed
// bit for bit, its distributions are not.
#pragma once

#include <cmath>
#include <cstdint>
#include <random>

namespace csrmat {

class random_numbers {
 public:
  explicit random_numbers(std::uint64_t seed) : engine_(seed) {}

  // One of 0, 1, ..., bound - 1, each as likely as the others; bound is not 0.
  [[nodiscard]] std::uint64_t below(std::uint64_t bound) {
    const std::uint64_t tail = (std::mt19937_64::max() % bound + 1) % bound;
    std::uint64_t drawn = engine_();
    while (drawn > std::mt19937_64::max() - tail) drawn = engine_();
    return drawn % bound;
  }

  // In [-1, 1).
  [[nodiscard]] double symmetric() {
    return std::ldexp(static_cast<double>(engine_() >> 11), -52) - 1.0;
  }

 private:
  std::mt19937_64 engine_;
};

}  // namespace csrmat
