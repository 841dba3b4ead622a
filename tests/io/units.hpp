// SPDX-License-Identifier: MIT
// Every unit taken, for as long as this lives.
#pragma once

#include "../support/files.hpp"
#include "gallery.hpp"

#include <csr_matrix_mod/io.hpp>

#include <cstdint>
#include <vector>

namespace tests {

class all_units_taken {
 public:
  all_units_taken() {
    csr_matrix_dump(folder_.path("pattern"), pattern(1, {{1}}), "unformatted");
    csr_matrix mat = room_for(1, 1);
    for (;;) {
      const std::int32_t unit = csr_matrix_mod::vacant_unit();
      csr_matrix_read(folder_.path("pattern"), mat, "unformatted");
      units_.push_back(unit);
      if (unit == 500) return;
    }
  }
  all_units_taken(const all_units_taken&) = delete;
  all_units_taken& operator=(const all_units_taken&) = delete;
  ~all_units_taken() {
    for (const std::int32_t unit : units_) csr_matrix_mod::close_unit(unit);
  }

  [[nodiscard]] const std::vector<std::int32_t>& units() const { return units_; }

 private:
  temporary_folder folder_;
  std::vector<std::int32_t> units_;
};

}  // namespace tests
