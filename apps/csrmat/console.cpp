// SPDX-License-Identifier: MIT
#include "console.hpp"

#include "failure.hpp"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace csrmat {

namespace {

std::FILE* result_stream = stdout;
std::FILE* held_lines = nullptr;  // what the library says
long lines_taken = 0;             // so much of it has been handed out

// Where the disk is full, the library still has something to say. Null where there is none.
std::FILE* file_in_memory() {
#if defined(MFD_CLOEXEC)
  const int file = memfd_create("lines of the library", MFD_CLOEXEC);
  return file < 0 ? nullptr : fdopen(file, "w+");
#else
  return nullptr;
#endif
}

bool is_open_as(const struct stat& file, int descriptor) {
  struct stat open {};
  return fstat(descriptor, &open) == 0 && open.st_dev == file.st_dev && open.st_ino == file.st_ino;
}

}  // namespace

// A closed standard output is no reason to fail; what is written to it is lost, as its owner wants.
console::console() {
  for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor)
    if (fcntl(descriptor, F_GETFD) < 0 && open("/dev/null", O_RDWR) < 0) return;
  held_lines = file_in_memory();
  if (held_lines == nullptr) held_lines = std::tmpfile();
  const int own = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  std::FILE* const stream = own < 0 ? nullptr : fdopen(own, "w");
  if (stream == nullptr) return;
  result_stream = stream;
  dup2(held_lines == nullptr ? STDERR_FILENO : fileno(held_lines), STDOUT_FILENO);
}

console::~console() { std::fflush(result_stream); }

void console::finish() {
  std::fputs(library_lines().c_str(), stderr);
  if (std::fflush(result_stream) != 0 || std::ferror(result_stream) != 0)
    throw failure(std::string("standard output: ") + std::strerror(errno));
}

std::FILE* results() { return result_stream; }

std::string library_lines() {
  std::string lines;
  std::fflush(stdout);
  if (held_lines == nullptr) return lines;
  char block[4096];
  const int file = fileno(held_lines);
  for (ssize_t got = 0; (got = pread(file, block, sizeof block, lines_taken)) > 0;) {
    lines.append(block, static_cast<std::size_t>(got));
    lines_taken += got;
  }
  return lines;
}

// Through fd 1 a name like /dev/stdout, or a link to it, leads to the lines that are held back.
std::string standard_output_as_file(const std::string& path) {
  const int own = fileno(result_stream);
  struct stat file {};
  if (stat(path.c_str(), &file) != 0) return {};
  const bool same =
      is_open_as(file, own) || (held_lines != nullptr && is_open_as(file, fileno(held_lines)));
  return same ? "/dev/fd/" + std::to_string(own) : std::string();
}

}  // namespace csrmat
