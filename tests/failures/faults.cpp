// SPDX-License-Identifier: MIT
#include "faults.hpp"

#include <cerrno>
#include <cstddef>
#include <cstdio>

namespace {

constexpr int none = -1;
int calls = 0;
int failing = none;
bool failed = false;

// Is this the call that fails? `error` is why.
bool fails(int error) {
  if (failing == none || calls++ != failing) return false;
  failed = true;
  errno = error;
  return true;
}

}  // namespace

// NOLINTBEGIN(bugprone-reserved-identifier): the names are those of others
extern "C" {

std::FILE* __real_fopen(const char* name, const char* mode);
std::FILE* __wrap_fopen(const char* name, const char* mode) {
  return fails(EMFILE) ? nullptr : __real_fopen(name, mode);
}

std::size_t __real_fread(void* to, std::size_t size, std::size_t count, std::FILE* file);
std::size_t __wrap_fread(void* to, std::size_t size, std::size_t count, std::FILE* file) {
  if (!fails(EIO)) return __real_fread(to, size, count, file);
  const std::size_t got = __real_fread(to, size, count / 2, file);
  errno = EIO;
  return got;
}

int __real_ferror(std::FILE* file);
int __wrap_ferror(std::FILE* file) { return failed ? 1 : __real_ferror(file); }

std::size_t __real_fwrite(const void* from, std::size_t size, std::size_t count, std::FILE* file);
std::size_t __wrap_fwrite(const void* from, std::size_t size, std::size_t count, std::FILE* file) {
  if (!fails(ENOSPC)) return __real_fwrite(from, size, count, file);
  const std::size_t put = __real_fwrite(from, size, count / 2, file);
  errno = ENOSPC;
  return put;
}

int __real_fseek(std::FILE* file, long offset, int whence);
int __wrap_fseek(std::FILE* file, long offset, int whence) {
  return fails(EIO) ? -1 : __real_fseek(file, offset, whence);
}

long __real_ftell(std::FILE* file);
long __wrap_ftell(std::FILE* file) { return fails(EIO) ? -1 : __real_ftell(file); }

int __real_fclose(std::FILE* file);
int __wrap_fclose(std::FILE* file) {
  const int answer = __real_fclose(file);
  return fails(ENOSPC) ? EOF : answer;
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier)

namespace tests {

void fail_file_call(int k) {
  calls = 0;
  failing = k;
  failed = false;
}

bool file_call_failed() {
  failing = none;
  const bool there_was = failed;
  failed = false;
  return there_was;
}

}  // namespace tests
