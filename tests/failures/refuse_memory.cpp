// SPDX-License-Identifier: MIT
// Loaded before a program, this refuses it one request for memory, the one that REFUSED_REQUEST
// names, counted from 0 on from the beginning of main; and where PHYSICAL_PAGES is set, the machine
// says that it has so many.
#include <dlfcn.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>

namespace {

bool counting = false;
long requests = 0;
long refused_request = -1;

bool refused() {
  if (!counting || requests++ != refused_request) return false;
  errno = ENOMEM;
  return true;
}

using main_function = int (*)(int, char**, char**);
main_function own_main = nullptr;

int counted_main(int argc, char** argv, char** environment) {
  const char* const number = std::getenv("REFUSED_REQUEST");
  if (number != nullptr) refused_request = std::atol(number);
  counting = number != nullptr;
  return own_main(argc, argv, environment);
}

}  // namespace

// NOLINTBEGIN(bugprone-reserved-identifier,readability-inconsistent-*): all names are those of
// others
extern "C" {

void* __libc_malloc(std::size_t bytes);
void* malloc(std::size_t bytes) { return refused() ? nullptr : __libc_malloc(bytes); }

void* __libc_calloc(std::size_t count, std::size_t bytes);
void* calloc(std::size_t count, std::size_t bytes) {
  return refused() ? nullptr : __libc_calloc(count, bytes);
}

void* __libc_realloc(void* block, std::size_t bytes);
void* realloc(void* block, std::size_t bytes) {
  return refused() ? nullptr : __libc_realloc(block, bytes);
}

long sysconf(int name) noexcept {
  const char* const pages = std::getenv("PHYSICAL_PAGES");
  if (name == _SC_PHYS_PAGES && pages != nullptr) return std::atol(pages);
  using sysconf_function = long (*)(int);
  return reinterpret_cast<sysconf_function>(dlsym(RTLD_NEXT, "sysconf"))(name);
}

int __libc_start_main(main_function program, int argc, char** argv, void (*init)(), void (*fini)(),
                      void (*loader_fini)(), void* end_of_stack) {
  using start_function = decltype(&__libc_start_main);
  own_main = program;
  const auto start = reinterpret_cast<start_function>(dlsym(RTLD_NEXT, "__libc_start_main"));
  return start(counted_main, argc, argv, init, fini, loader_fini, end_of_stack);
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier,readability-inconsistent-*)
