// SPDX-License-Identifier: MIT
// Permissions count for everybody but root: while this lives, the process is somebody else.
#pragma once

#include <unistd.h>

#include <stdexcept>

namespace tests {

class without_privileges {
 public:
  // Some containers have no user but root.
  [[nodiscard]] static bool possible() {
    return geteuid() != 0 || (seteuid(nobody) == 0 && seteuid(0) == 0);
  }

  without_privileges() {
    if (own_ == 0 && seteuid(nobody) != 0) throw std::runtime_error("root cannot step down");
  }
  without_privileges(const without_privileges&) = delete;
  without_privileges& operator=(const without_privileges&) = delete;
  ~without_privileges() {
    if (own_ == 0 && seteuid(own_) != 0) _exit(1);
  }

 private:
  static constexpr uid_t nobody = 65534;
  const uid_t own_ = geteuid();
};

}  // namespace tests
