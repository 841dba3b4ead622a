// SPDX-License-Identifier: MIT
// For the preset that counts lines alone. A stop leaves the process at once, and so does an
// assertion: what such a process has run would not be counted. Here both write the counters first;
// the linker leads calls of either to its wrapper (tests/CMakeLists.txt).

// NOLINTBEGIN(bugprone-reserved-identifier): the names are those of others
extern "C" {

void __gcov_dump();

[[noreturn]] void __real__Exit(int status);
[[noreturn]] void __wrap__Exit(int status);
[[noreturn]] void __real___assert_fail(const char* assertion, const char* file, unsigned line,
                                       const char* function);
[[noreturn]] void __wrap___assert_fail(const char* assertion, const char* file, unsigned line,
                                       const char* function);

void __wrap__Exit(int status) {
  __gcov_dump();
  __real__Exit(status);
}

void __wrap___assert_fail(const char* assertion, const char* file, unsigned line,
                          const char* function) {
  __gcov_dump();
  __real___assert_fail(assertion, file, line, function);
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier)
