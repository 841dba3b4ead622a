// SPDX-License-Identifier: MIT
// Numbered units, 10 to 500: the files that readers and writers leave open between calls.
#pragma once

#include "stream.hpp"

#include <cstdint>
#include <string_view>

namespace csr_matrix_mod {

// A file on the lowest vacant unit for the length of one call. It is closed when this goes, unless
// it is left open by name: then the unit stays taken until `close_unit` or the end of the program.
class connected_unit {
 public:
  // Stops with "no vacant unit exists!", or as `open_stream` does.
  connected_unit(std::string_view name, direction to);
  connected_unit(const connected_unit&) = delete;
  connected_unit& operator=(const connected_unit&) = delete;
  ~connected_unit();

  [[nodiscard]] std::FILE* file() const noexcept { return file_; }
  void leave_open() noexcept { left_open_ = true; }

  // Closes a file that was written, as `close_written` does, and releases the unit.
  void close_written(std::string_view name);

 private:
  std::int32_t unit_;
  std::FILE* file_;
  bool left_open_ = false;
};

}  // namespace csr_matrix_mod
