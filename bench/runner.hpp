// SPDX-License-Identifier: MIT
// A contestant in a process of its own, told when to run: nobody inherits another's heap, another's
// huge pages or another's crash, and the memory that a call needs is that of its process.
#pragma once

#include "compare.hpp"
#include "contestant.hpp"

#include <sys/types.h>

#include <optional>
#include <string>

namespace bench {

// Where memory comes from. The two are never mixed: what pays in one need not pay in the other.
enum class regime {
  fresh,    // every large block comes untouched from the system and goes back there
  recycled  // blocks come from a heap that keeps what it once got
};
const char* name(regime memory);

// The process that everybody is forked from has to be fresh: what its heap had free, its children
// would fill instead of asking the system.
void set_for_this_process(regime memory);

// Set in the environment of the programs that contestants start.
void set_for_children(regime memory);

// What the first call came to, and how long it took with everything cold.
struct first_look {
  verdict found = verdict::refused;
  duration took;
};

class runner {
 public:
  // `expected` is what the result is compared with; null for a reference, which has no result.
  runner(const maker& make, const problem& of, const answer* expected, regime memory);
  runner(const runner&) = delete;
  runner& operator=(const runner&) = delete;
  ~runner();

  // One call, looked at. Refused too when the contestant threw or its process died.
  first_look check();
  // The mean of so many calls; nothing when its process died.
  std::optional<duration> run(int calls);
  // Bytes beyond what was there before the call, at the worst moment of it.
  std::optional<double> memory();

 private:
  bool ask(char command, int calls);
  template <class T>
  std::optional<T> answered();

  pid_t child_ = -1;
  int to_child_ = -1;
  int from_child_ = -1;
};

}  // namespace bench
