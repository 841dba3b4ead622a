// SPDX-License-Identifier: MIT
// The tool where memory or the disk runs out: one line and a status that says so, and the file of
// before, whole, unless there is a new one, whole.
#include "../apps/csrmat.hpp"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

using tests::csrmat;
using tests::matrix_folder;
using tests::process_result;

std::ptrdiff_t files_in(const matrix_folder& folder) {
  return std::distance(std::filesystem::directory_iterator(folder.path("")), {});
}

void expect_one_line(const process_result& seen) {
  EXPECT_EQ(seen.status, 1);
  EXPECT_EQ(seen.out, "");
  EXPECT_EQ(seen.err.rfind("csrmat: ", 0), 0U) << seen.err;
  EXPECT_EQ(std::count(seen.err.begin(), seen.err.end(), '\n'), 1) << seen.err;
  const std::string reason = seen.err.substr(seen.err.rfind(": ") + 1);
  EXPECT_NE(reason.find_first_not_of(" \n"), reason.npos) << seen.err;
}

// The command line, with what is loaded before the program set so.
process_result csrmat_with(const std::string& setting, const std::vector<std::string>& arguments) {
  std::vector<std::string> words = {"env", "LD_PRELOAD=" REFUSE_MEMORY, setting, CSRMAT};
  words.insert(words.end(), arguments.begin(), arguments.end());
  return tests::run_process(words);
}

// How many requests a command was refused that did not do without.
int refused_requests(const std::string& command) {
  const matrix_folder folder;
  const std::string source = folder.path("repeated.mtx");
  const std::string target = folder.path("new.csr");
  tests::expect_quiet({command, source, target});
  const std::string expected = tests::read_file(target);
  const std::string before = "the file of before";

  int refused = 0;
  for (int k = 0, successes = 0; successes < 100; ++k) {  // a success may be a refusal ignored
    SCOPED_TRACE(testing::Message() << command << ", request " << k);
    std::filesystem::remove(target);
    tests::write_file(target, before);
    const auto files = files_in(folder);
    const process_result seen =
        csrmat_with("REFUSED_REQUEST=" + std::to_string(k), {command, source, target});
    EXPECT_EQ(files_in(folder), files);
    if (seen.status == 0) {
      ++successes;
      EXPECT_EQ(tests::read_file(target), expected);
      continue;
    }
    successes = 0;
    ++refused;
    expect_one_line(seen);
    EXPECT_EQ(tests::read_file(target), before);
    if (testing::Test::HasFailure()) break;
  }
  return refused;
}

TEST(CsrmatWithoutMemory, SaysSoInOneLineAndReplacesTheFileWholeOrNotAtAll) {
  if (std::string_view(REFUSE_MEMORY).empty())
    GTEST_SKIP() << "a sanitizer or a counter has the memory of this build";
  for (const char* command : {"sort", "clean", "symmetrize", "transpose"}) {
    const int refused = refused_requests(command);
    EXPECT_GT(refused, 20);
    RecordProperty(command, refused);
  }
}

// A header of a few bytes may name rows and columns for which a machine of 10 pages has no memory.
TEST(CsrmatOnASmallMachine, RefusesWhatItHasNoMemoryFor) {
  if (std::string_view(REFUSE_MEMORY).empty())
    GTEST_SKIP() << "a sanitizer or a counter has the memory of this build";
  const matrix_folder folder;
  const std::string matrix = folder.path("large.mtx");
  const std::string other = folder.path("other.mtx");
  const std::string x = folder.path("x.txt");
  folder.write("large.mtx", "%%MatrixMarket matrix coordinate real general\n90000 90000 0\n");
  folder.write("other.mtx", "%%MatrixMarket matrix coordinate real general\n90000 1 0\n");
  folder.write("x.txt", "1\n");
  const std::string columns = ": work on its columns";
  const std::vector<std::pair<std::vector<std::string>, std::string>> commands = {
      {{"info", matrix}, matrix + ": condensing its columns"},
      {{"convert", matrix, folder.path("new.hgr")},
       folder.path("new.hgr") + ": a line for each column"},
      {{"coarsen", matrix}, matrix + ": gathering its rows"},
      {{"sort", matrix, folder.path("new.mtx")}, matrix + columns},
      {{"multiply", matrix, matrix, folder.path("new.mtx")}, matrix + columns},
      {{"apply", other, x}, other + ": an element for each row"}};
  const auto files = files_in(folder);
  for (const auto& [arguments, what] : commands) {
    const process_result seen = csrmat_with("PHYSICAL_PAGES=10", arguments);
    expect_one_line(seen);
    EXPECT_EQ(seen.err.rfind("csrmat: " + what + " needs ", 0), 0U) << seen.err;
    EXPECT_EQ(files_in(folder), files);
    EXPECT_EQ(csrmat(arguments).status, 0) << what;
    std::filesystem::remove(folder.path("new.hgr"));
    std::filesystem::remove(folder.path("new.mtx"));
  }
}

// Nothing that is started grows a file beyond so many bytes while this lives.
class largest_file {
 public:
  explicit largest_file(rlim_t bytes) {
    getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit now{bytes, before_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &now);
  }
  largest_file(const largest_file&) = delete;
  largest_file& operator=(const largest_file&) = delete;
  ~largest_file() { setrlimit(RLIMIT_FSIZE, &before_); }

 private:
  rlimit before_{};
};

TEST(CsrmatOnAFullDisk, SaysSoInOneLineAndLeavesTheFileOfBefore) {
  const matrix_folder folder;
  const std::string matrix = folder.path("poisson.mtx");
  tests::expect_quiet({"gallery", "poisson2d", matrix, "--size", "8"});
  const std::string before = "the file of before";
  for (const char* const name :
       {"a b.csr", "a b.csrb", "a b.mtx", "a b.dump", "a b.ija", "a b.hgr"}) {
    const std::string target = folder.path(name);
    tests::expect_quiet({"convert", matrix, target});
    const auto size = static_cast<rlim_t>(tests::read_file(target).size());
    // Room for the line on standard error, which is a file here, is left in any case.
    for (rlim_t room = 300; room <= size; room += size / 8) {
      tests::write_file(target, before);
      const auto files = files_in(folder);
      process_result seen;
      {
        const largest_file full(std::min(room, size - 1));
        seen = csrmat({"convert", matrix, target});
      }
      expect_one_line(seen);
      EXPECT_EQ(seen.err, "csrmat: " + target + ": cannot write: File too large\n");
      EXPECT_EQ(tests::read_file(target), before);
      EXPECT_EQ(files_in(folder), files);
    }
  }
}

}  // namespace
