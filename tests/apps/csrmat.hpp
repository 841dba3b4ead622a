// SPDX-License-Identifier: MIT
// The tool as its user sees it.
#pragma once

#include "../support/files.hpp"
#include "../support/process.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace tests {

inline process_result csrmat(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), CSRMAT);
  return run_process(arguments);
}

// Success without a word.
inline void expect_quiet(const std::vector<std::string>& arguments) {
  const process_result seen = csrmat(arguments);
  EXPECT_EQ(seen.status, 0);
  EXPECT_EQ(seen.out, "");
  EXPECT_EQ(seen.err, "");
}

// Nothing but one line on standard error, and a status that says so.
inline void expect_refusal(const std::vector<std::string>& arguments, const std::string& line) {
  const process_result seen = csrmat(arguments);
  EXPECT_EQ(seen.status, 1);
  EXPECT_EQ(seen.out, "");
  EXPECT_EQ(seen.err, "csrmat: " + line + "\n");
}

// As `expect_refusal`, where the words are those of somebody else.
inline void expect_refusal_about(const std::vector<std::string>& arguments,
                                 const std::string& word) {
  const process_result seen = csrmat(arguments);
  EXPECT_EQ(seen.status, 1);
  EXPECT_EQ(seen.out, "");
  EXPECT_NE(seen.err.find(word), std::string::npos) << seen.err;
  EXPECT_EQ(std::count(seen.err.begin(), seen.err.end(), '\n'), 1) << seen.err;
}

// A folder with a few small matrices.
class matrix_folder {
 public:
  matrix_folder() {
    //  square [ 1  2  . ]    wide [ 5  .  6  . ]    graph [ .  x  . ]
    //         [ .  .  3 ]         [ .  7  .  . ]          [ x  .  x ]
    //         [ 4  .  5 ]         [ .  .  .  8 ]          [ .  x  . ]
    write("square.mtx",
          "%%MatrixMarket matrix coordinate real general\n"
          "3 3 5\n1 1 1\n1 2 2\n2 3 3\n3 1 4\n3 3 5\n");
    write("wide.mtx",
          "%%MatrixMarket matrix coordinate real general\n"
          "3 4 4\n1 1 5\n1 3 6\n2 2 7\n3 4 8\n");
    write("graph.mtx",
          "%%MatrixMarket matrix coordinate pattern general\n"
          "3 3 4\n1 2\n2 1\n2 3\n3 2\n");
    write("empty.mtx", "%%MatrixMarket matrix coordinate real general\n2 2 0\n");
    //  [ 1  2 ]  with row 1 out of order and column 1 given twice in it
    //  [ .  4 ]
    write("repeated.mtx",
          "%%MatrixMarket matrix coordinate real general\n2 2 4\n1 2 2\n1 1 3\n1 1 -2\n2 2 4\n");
  }

  void write(const std::string& name, const std::string& bytes) const {
    write_file(path(name), bytes);
  }
  [[nodiscard]] std::string path(const std::string& name) const { return folder_.path(name); }
  [[nodiscard]] std::string read(const std::string& name) const { return read_file(path(name)); }

 private:
  temporary_folder folder_;
};

}  // namespace tests
