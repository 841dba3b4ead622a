// SPDX-License-Identifier: MIT
// Permissions count for everybody but root: while this lives, the process is somebody else.
#pragma once

#include <unistd.h>

#include <stdexcept>

namespace tests {

class without_privileges {
 public:
  without_privileges() {
    constexpr uid_t nobody = 65534;
    if (own_ == 0 && seteuid(nobody) != 0) throw std::runtime_error("root cannot step down");
  }
  without_privileges(const without_privileges&) = delete;
  without_privileges& operator=(const without_privileges&) = delete;
  ~without_privileges() {
    if (own_ == 0 && seteuid(own_) != 0) _exit(1);
  }

 private:
  const uid_t own_ = geteuid();
};

}  // namespace tests
