// SPDX-License-Identifier: MIT
// The tool end to end: the first two bytes choose a command line and the kind of its files, the
// others are the matrix; what follows a form feed is the second operand.
#include "../src/io/stream.hpp"
#include "claims.hpp"
#include "scratch_file.hpp"
#include "target.hpp"
#include "tool.hpp"

#include <algorithm>
#include <array>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace fuzz {

namespace {

using words = std::vector<std::string>;

constexpr std::array suffixes = {".mtx", ".csr", ".csrb", ".any"};
constexpr std::array listings = {".mtx", ".csr", ".csrb", ".dump", ".ij", ".ija", ".hgr"};

class tool_target {
 public:
  tool_target() {
    prepare_library();
    csr_matrix_mod::set_buffer_size(granted_buffer);
    for (const char* suffix : suffixes) {
      left_.emplace_back(std::make_unique<scratch_file>(folder_.path("a") + suffix));
      right_.emplace_back(std::make_unique<scratch_file>(folder_.path("b") + suffix));
    }
    constexpr std::string_view sound = "%%MatrixMarket matrix coordinate real general\n1 1 0\n";
    left_.front()->fill({reinterpret_cast<const std::uint8_t*>(sound.data()), sound.size()});
    claim(status_of({"info", left_.front()->path()}) == EXIT_SUCCESS, "a sound file is read");
  }

  void run(bytes contents) {
    if (contents.size() < 2) return;
    const std::size_t command = contents[0];
    const std::size_t kind = contents[1];
    contents = contents.subspan(2);
    const auto end = std::find(contents.begin(), contents.end(), std::uint8_t{'\f'});
    const auto length = static_cast<std::size_t>(end - contents.begin());
    scratch_file& a = *left_[kind % suffixes.size()];
    scratch_file& b = *right_[kind % suffixes.size()];
    a.fill(contents.first(length));
    b.fill(contents.subspan(std::min(length + 1, contents.size())));
    const std::string out = folder_.path("out") + listings.at(kind / 4 % listings.size());

    const bool done = status_of(command_line(command, a.path(), b.path(), out)) == EXIT_SUCCESS;
    std::error_code ignored;
    if (done && std::filesystem::exists(out))
      claim(status_of({"convert", out, folder_.path("again.csrb")}) == EXIT_SUCCESS ||
                kind / 4 % listings.size() > 2,
            "what was written can be read", out);
    claim(done || !std::filesystem::exists(out), "a command that fails writes nothing", out);
    std::filesystem::remove(out, ignored);
  }

 private:
  static words command_line(std::size_t command, const std::string& a, const std::string& b,
                            const std::string& out) {
    switch (command % 12) {
      case 0:
        return {"info", a};
      case 1:
        return {"convert", a, out};
      case 2:
        return {"coarsen", a, "--min-rows", "1"};
      case 3:
        return {"coarsen", a, "--graph", "--min-rows", "2", "--levels", "3"};
      case 4:
        return {"sort", a, out};
      case 5:
        return {"clean", a, out};
      case 6:
        return {"symmetrize", a, out};
      case 7:
        return {"symmetrize", "--no-diagonal", a, out};
      case 8:
        return {"transpose", a, out};
      case 9:
        return {"multiply", a, b, out};
      case 10:
        return {"sum", a, b, out};
      default:
        return {"apply", a, b};
    }
  }

  static int status_of(words arguments) {
    arguments.insert(arguments.begin(), "csrmat");
    std::vector<char*> argv;
    for (std::string& word : arguments) argv.push_back(word.data());
    argv.push_back(nullptr);
    return csrmat::guarded(
        [&] { return csrmat::run(static_cast<int>(arguments.size()), argv.data()); });
  }

  scratch_folder folder_;
  std::vector<std::unique_ptr<scratch_file>> left_;
  std::vector<std::unique_ptr<scratch_file>> right_;
};

}  // namespace

void run(bytes contents) {
  static tool_target target;
  target.run(contents);
}

}  // namespace fuzz
