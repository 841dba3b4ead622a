// SPDX-License-Identifier: MIT
#include "process.hpp"

#include "files.hpp"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>

namespace tests {

process_result run_process(const std::vector<std::string>& argv) {
  const temporary_folder folder;
  const std::string out = folder.path("out");
  const std::string err = folder.path("err");

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  constexpr int write_new = O_WRONLY | O_CREAT | O_TRUNC;
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, out.c_str(), write_new, 0600);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, err.c_str(), write_new, 0600);

  std::vector<std::string> words = argv;
  std::vector<char*> pointers;
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  pid_t child = 0;
  const int failed =
      posix_spawnp(&child, pointers.front(), &actions, nullptr, pointers.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (failed != 0) throw std::runtime_error("cannot run " + argv.front());

  int status = 0;
  waitpid(child, &status, 0);
  return {WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status), read_file(out),
          read_file(err)};
}

}  // namespace tests
