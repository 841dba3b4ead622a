// SPDX-License-Identifier: MIT
#include "unfinished_file.hpp"

#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace csrmat {

namespace {

std::atomic<const unfinished_file*> last = nullptr;

// Runs at any moment: it follows pointers and asks the system, no more. The signal is raised for
// the second time when this returns, and nothing handles it then.
extern "C" void remove_and_end(int signal) {
  unfinished_file::remove_all();
  raise(signal);
}

}  // namespace

// Known before it is there, so that no signal finds a file that is not known.
unfinished_file::unfinished_file(std::string path) : path_(std::move(path)), before_(last) {
  last = this;
}

unfinished_file::~unfinished_file() {
  unlink(path_.c_str());
  last = before_;
}

bool unfinished_file::create(mode_t mode) {
  const int file = mkstemp(path_.data());
  if (file < 0) {
    path_.clear();  // whose file it is now nobody knows
    return false;
  }
  fchmod(file, mode);
  close(file);
  return true;
}

bool unfinished_file::become(const std::string& target) {
  if (std::rename(path_.c_str(), target.c_str()) != 0) return false;
  path_.clear();
  return true;
}

void unfinished_file::remove_all() noexcept {
  for (const unfinished_file* file = last; file != nullptr; file = file->before_)
    unlink(file->path_.c_str());
}

void remove_unfinished_files_on_signals() {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE, SIGXCPU}) {
    struct sigaction present {};
    sigaction(signal, nullptr, &present);
    if (present.sa_handler == SIG_IGN) continue;  // as nohup wants it
    struct sigaction removal {};
    removal.sa_handler = remove_and_end;
    removal.sa_flags = static_cast<int>(SA_RESETHAND);
    sigaction(signal, &removal, nullptr);
  }
}

}  // namespace csrmat
