// SPDX-License-Identifier: MIT
#include "unit_table.hpp"

#include "file_error.hpp"

#include <csr_matrix_mod/io.hpp>

#include <array>
#include <cstddef>
#include <mutex>
#include <new>
#include <utility>

namespace csr_matrix_mod {

namespace {

constexpr std::int32_t first_unit = 10;
constexpr std::int32_t last_unit = 500;
constexpr std::int32_t none = 0;

// Which file is open on which unit. Finding a vacant unit and taking it is one step, so that two
// threads never take the same one. Nobody stops with the lock held.
class unit_table {
 public:
  [[nodiscard]] std::int32_t vacant() {
    const std::lock_guard lock(mutex_);
    return lowest_vacant();
  }

  // Returns the unit, or `none` and leaves `file` alone.
  [[nodiscard]] std::int32_t connect(stream& file) {
    const std::lock_guard lock(mutex_);
    const std::int32_t unit = lowest_vacant();
    if (unit != none) slot(unit) = std::move(file);
    return unit;
  }

  [[nodiscard]] stream disconnect(std::int32_t unit) {
    if (unit < first_unit || unit > last_unit) return {};
    const std::lock_guard lock(mutex_);
    return std::exchange(slot(unit), {});
  }

 private:
  [[nodiscard]] stream& slot(std::int32_t unit) {
    return files_[static_cast<std::size_t>(unit - first_unit)];
  }

  [[nodiscard]] std::int32_t lowest_vacant() {
    for (std::int32_t unit = first_unit; unit <= last_unit; ++unit)
      if (!slot(unit)) return unit;
    return none;
  }

  std::mutex mutex_;
  std::array<stream, last_unit - first_unit + 1> files_;
};

// Never destroyed: whoever writes a matrix from a destructor at the end of the program still can.
// Open files hold nothing back, so the system may close them.
unit_table& units() {
  alignas(unit_table) static std::byte place[sizeof(unit_table)];
  static auto* const table = new (place) unit_table;
  return *table;
}

constexpr std::string_view no_unit = "no vacant unit exists!";

}  // namespace

connected_unit::connected_unit(std::string_view name, direction to) : unit_(vacant_unit()) {
  stream file = open_stream(name, to);
  file_ = file.get();
  unit_ = units().connect(file);
  if (unit_ == none) stop(no_unit);  // another thread took the last one meanwhile
}

connected_unit::~connected_unit() {
  if (!left_open_) close_unit(unit_);
}

void connected_unit::close_written(std::string_view name) {
  left_open_ = true;  // no longer this one's to close
  csr_matrix_mod::close_written(units().disconnect(unit_), name);
}

std::int32_t vacant_unit() {
  const std::int32_t unit = units().vacant();
  if (unit == none) stop(no_unit);
  return unit;
}

void close_unit(std::int32_t unit) { units().disconnect(unit).reset(); }

}  // namespace csr_matrix_mod
