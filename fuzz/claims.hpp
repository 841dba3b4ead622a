// SPDX-License-Identifier: MIT
// What a target claims of every input, and what it sees of a call.
#pragma once

#include "../src/support/memory.hpp"

#include <csr_matrix_mod/csr_matrix_mod.hpp>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

namespace fuzz {

using csr_matrix_mod::csr_matrix;

// A claim that does not hold ends the process, which is what a fuzzer looks for.
inline void claim(bool holds, std::string_view what, std::string_view seen = {}) {
  if (holds) return;
  const std::string line = "not so: " + std::string(what) + ": " + std::string(seen) + "\n";
  std::fputs(line.c_str(), stderr);
  std::abort();
}

struct stopped {
  std::string message;
};

// No input gets more than so much storage at a time: a reader that asks for what a header invents
// is refused, and does not slow the others down.
inline constexpr std::size_t most_bytes = std::size_t{1} << 16;

// The buffer of a file that is granted; the library's own is larger than that.
inline constexpr std::size_t granted_buffer = 4096;

// Stops throw, lines are dropped.
inline void prepare_library() {
  if (std::freopen("/dev/null", "w", stdout) == nullptr) std::abort();
  csr_matrix_mod::set_stop_handler(
      [](std::string_view message) { throw stopped{std::string(message)}; });
  csr_matrix_mod::detail::set_refusal(
      [](std::size_t requested) noexcept { return requested > most_bytes; });
}

// The stop message, if the call stopped.
template <class Call>
std::optional<std::string> stop_of(const Call& call) {
  try {
    call();
  } catch (const stopped& stop) {
    return stop.message;
  }
  return {};
}

template <class T>
bool same_bytes(const T* left, const T* right, std::int64_t count) {
  return count <= 0 || std::memcmp(left, right, static_cast<std::size_t>(count) * sizeof(T)) == 0;
}

// Sizes, kind and entries; capacity plays no part.
inline bool same_bits(const csr_matrix& left, const csr_matrix& right) {
  if (left.n != right.n || left.m != right.m || left.type != right.type) return false;
  if (!same_bytes(left.ia.data(), right.ia.data(), std::int64_t{left.n} + 1)) return false;
  const std::int64_t nnz = csr_matrix_num_nz(left);
  return same_bytes(left.ja.data(), right.ja.data(), nnz) &&
         (left.type == csr_matrix_mod::matrix_structure_only ||
          same_bytes(left.a.data(), right.a.data(), nnz));
}

inline void claim_well_formed(const csr_matrix& mat, std::string_view what) {
  const std::optional<std::string> defect = csr_matrix_check(mat);
  claim(!defect, what, defect.value_or(""));
}

// One line that a terminal can show.
inline void claim_clear(const std::string& message) {
  bool clear = !message.empty() && message.size() < 4000;
  for (const char c : message) clear = clear && ' ' <= c && c <= '~';
  claim(clear, "a stop is one clear line", message);
}

}  // namespace fuzz
