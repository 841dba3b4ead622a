// SPDX-License-Identifier: MIT
// Commands that make a matrix or a vector of matrices.
#include "csrmat.hpp"

#include <filesystem>

namespace {

using tests::csrmat;
using tests::expect_quiet;
using tests::expect_refusal;
using tests::matrix_folder;

const std::string real_general = "%%MatrixMarket matrix coordinate real general\n";
const std::string pattern_general = "%%MatrixMarket matrix coordinate pattern general\n";

TEST(Sort, PutsColumnsInOrderAndAddsRepeatedOnes) {
  const matrix_folder folder;
  expect_quiet({"sort", folder.path("repeated.mtx"), folder.path("out.mtx")});
  EXPECT_EQ(folder.read("out.mtx"), real_general + "2 2 3\n1 1 1\n1 2 2\n2 2 4\n");
}

TEST(Clean, AddsRepeatedColumnsAndKeepsTheirOrder) {
  const matrix_folder folder;
  expect_quiet({"clean", folder.path("repeated.mtx"), folder.path("out.mtx")});
  EXPECT_EQ(folder.read("out.mtx"), real_general + "2 2 3\n1 2 2\n1 1 1\n2 2 4\n");
}

TEST(Clean, HasNothingToDoWithoutEntries) {
  const matrix_folder folder;
  EXPECT_EQ(csrmat({"clean", folder.path("empty.mtx"), folder.path("out.mtx")}).status, 0);
  EXPECT_EQ(folder.read("out.mtx"), real_general + "2 2 0\n");
}

TEST(Symmetrize, AddsTheTranspose) {
  const matrix_folder folder;
  expect_quiet({"symmetrize", folder.path("square.mtx"), folder.path("out.mtx")});
  EXPECT_EQ(folder.read("out.mtx"), real_general +
                                        "3 3 8\n1 1 2\n1 2 2\n1 3 4\n2 3 3\n2 1 2\n3 1 4\n"
                                        "3 3 10\n3 2 3\n");
}

TEST(Symmetrize, LeavesTheDiagonalOutOnRequest) {
  const matrix_folder folder;
  expect_quiet({"symmetrize", "--no-diagonal", folder.path("square.mtx"), folder.path("out.mtx")});
  EXPECT_EQ(folder.read("out.mtx"),
            real_general + "3 3 6\n1 2 1\n1 3 1\n2 3 1\n2 1 1\n3 1 1\n3 2 1\n");
}

TEST(Symmetrize, RefusesARectangle) {
  const matrix_folder folder;
  expect_refusal(
      {"symmetrize", folder.path("wide.mtx"), folder.path("out.mtx")},
      folder.path("wide.mtx") + ": only a square matrix can be symmetrised, this one is 3 x 4");
}

TEST(Transpose, ExchangesRowsAndColumns) {
  const matrix_folder folder;
  expect_quiet({"transpose", folder.path("wide.mtx"), folder.path("out.mtx")});
  EXPECT_EQ(folder.read("out.mtx"), real_general + "4 3 4\n1 1 5\n2 2 7\n3 1 6\n4 3 8\n");
}

TEST(Transpose, SaysWhatTheLibraryWarnsOfOnStandardErrorOnly) {
  const matrix_folder folder;
  const auto seen = csrmat({"transpose", folder.path("empty.mtx"), "/dev/stdout"});
  EXPECT_EQ(seen.status, 1);  // no suffix tells the kind
  const auto written = csrmat({"transpose", folder.path("empty.mtx"), folder.path("out.mtx")});
  EXPECT_EQ(written.status, 0);
  EXPECT_EQ(written.out, "");
  EXPECT_NE(written.err.find("set to 1\n"), std::string::npos);
}

TEST(Multiply, MakesTheProduct) {
  //  [ 1  2  . ]   [ 5  .  6  . ]   [  5 14  6  . ]
  //  [ .  .  3 ] * [ .  7  .  . ] = [  .  .  . 24 ]
  //  [ 4  .  5 ]   [ .  .  .  8 ]   [ 20  . 24 40 ]
  const matrix_folder folder;
  expect_quiet(
      {"multiply", folder.path("square.mtx"), folder.path("wide.mtx"), folder.path("out.mtx")});
  EXPECT_EQ(folder.read("out.mtx"),
            real_general + "3 4 7\n1 1 5\n1 3 6\n1 2 14\n2 4 24\n3 1 20\n3 3 24\n3 4 40\n");
}

TEST(Multiply, MakesAPatternOfAPattern) {
  const matrix_folder folder;
  expect_quiet(
      {"multiply", folder.path("graph.mtx"), folder.path("square.mtx"), folder.path("out.mtx")});
  EXPECT_EQ(folder.read("out.mtx"), pattern_general + "3 3 5\n1 3\n2 1\n2 2\n2 3\n3 3\n");
}

TEST(Multiply, RefusesShapesThatDoNotMeet) {
  const matrix_folder folder;
  expect_refusal(
      {"multiply", folder.path("wide.mtx"), folder.path("square.mtx"), folder.path("out.mtx")},
      "the columns of " + folder.path("wide.mtx") + " (3 x 4) are not as many as the rows of " +
          folder.path("square.mtx") + " (3 x 3)");
  EXPECT_FALSE(std::filesystem::exists(folder.path("out.mtx")));
}

TEST(Sum, AddsTwoMatrices) {
  const matrix_folder folder;
  expect_quiet(
      {"sum", folder.path("square.mtx"), folder.path("square.mtx"), folder.path("out.mtx")});
  EXPECT_EQ(folder.read("out.mtx"), real_general + "3 3 5\n1 1 2\n1 2 4\n2 3 6\n3 1 8\n3 3 10\n");
}

TEST(Sum, RefusesDifferentSizes) {
  const matrix_folder folder;
  expect_refusal(
      {"sum", folder.path("square.mtx"), folder.path("wide.mtx"), folder.path("out.mtx")},
      folder.path("square.mtx") + " (3 x 3) and " + folder.path("wide.mtx") +
          " (3 x 4) are not of the same size");
}

TEST(Apply, PrintsTheProductWithAVector) {
  const matrix_folder folder;
  folder.write("x.txt", "1 +2\n\n 0.1\t-1e2\r\n");
  const auto seen = csrmat({"apply", folder.path("wide.mtx"), folder.path("x.txt")});
  EXPECT_EQ(seen.status, 0);
  EXPECT_EQ(seen.out, "5.6\n14\n-800\n");
  EXPECT_EQ(seen.err, "");
}

TEST(Apply, WritesTheProductIntoAFile) {
  const matrix_folder folder;
  folder.write("x.txt", "1\n1\n1\n1\n");
  expect_quiet({"apply", folder.path("wide.mtx"), folder.path("x.txt"), folder.path("y.txt")});
  EXPECT_EQ(folder.read("y.txt"), "11\n7\n8\n");
  expect_refusal({"apply", folder.path("wide.mtx"), folder.path("x.txt"), "/dev/full"},
                 "/dev/full: cannot be written: No space left on device");
}

TEST(Apply, CountsTheEntriesOfAPatternAsOnes) {
  const matrix_folder folder;
  folder.write("x.txt", "1 10 100");
  EXPECT_EQ(csrmat({"apply", folder.path("graph.mtx"), folder.path("x.txt")}).out, "10\n101\n10\n");
}

TEST(Apply, RefusesAVectorOfAnotherLength) {
  const matrix_folder folder;
  for (const auto& [text, count] : {std::pair<std::string, std::string>{"1 2 3", "3"}, {"", "0"}}) {
    folder.write("x.txt", text);
    expect_refusal({"apply", folder.path("wide.mtx"), folder.path("x.txt")},
                   folder.path("x.txt") +
                       ": expected 4 numbers, one for each column of the matrix, not " + count);
  }
}

TEST(Apply, StopsAtTheFirstNumberTooMany) {
  const matrix_folder folder;
  folder.write("x.txt", "1\n2 3 4\n\n5 what comes then is not read");
  expect_refusal({"apply", folder.path("wide.mtx"), folder.path("x.txt")},
                 folder.path("x.txt") +
                     ", line 4: expected 4 numbers, one for each column of the matrix, not more");
}

TEST(Apply, ReadsNumbersAsMatrixMarketDoes) {
  const matrix_folder folder;
  folder.write("row.mtx",
               "%%MatrixMarket matrix coordinate real general\n1 4 4\n1 1 1e-400\n1 2 -1e-400\n"
               "1 3 +.5\n1 4 -5.\n");
  folder.write(
      "ones.mtx",
      "%%MatrixMarket matrix coordinate real general\n4 4 4\n1 1 1\n2 2 1\n3 3 1\n4 4 1\n");
  folder.write("x.txt", "1e-400 -1e-400 +.5 -5.");
  expect_quiet({"convert", folder.path("row.mtx"), folder.path("again.mtx")});
  const std::string entries = folder.read("again.mtx");
  EXPECT_NE(entries.find("\n1 1 0\n1 2 -0\n1 3 0.5\n1 4 -5\n"), std::string::npos) << entries;
  EXPECT_EQ(csrmat({"apply", folder.path("ones.mtx"), folder.path("x.txt")}).out,
            "0\n0\n0.5\n-5\n");
}

TEST(Apply, TakesAnErrorForNoEndOfTheFile) {
  const std::string unmapped = "/proc/self/mem";  // a regular file whose beginning is not readable
  if (!std::filesystem::exists(unmapped)) GTEST_SKIP() << "there is no such file here";
  const matrix_folder folder;
  expect_refusal({"apply", folder.path("wide.mtx"), unmapped},
                 unmapped + ": cannot be read: Input/output error");
}

TEST(Apply, NamesTheLineOfAWordThatIsNoNumber) {
  const matrix_folder folder;
  const auto refused = [&](const std::string& text, const std::string& reason) {
    folder.write("x.txt", text);
    expect_refusal({"apply", folder.path("wide.mtx"), folder.path("x.txt")},
                   folder.path("x.txt") + ", line 2: " + reason);
  };
  refused("1\n2 three 4\n", "expected a number, not 'three'");
  refused("1\n2x 3 4\n", "expected a number, not '2x'");
  refused("1\n+-2 3 4\n", "expected a number, not '+-2'");
  refused("1\n1e999 3 4\n", "'1e999' does not fit a double");
  refused(std::string("1\n\0\x1b[31m 3 4\n", 13), "expected a number, not '\\x00\\x1b[31m'");
  refused("1\n2," + std::string(60, '3'),
          "expected a number, not '2," + std::string(38, '3') + "'...");
  refused("1\n" + std::string(1999, '9'),
          "'" + std::string(40, '9') + "'... does not fit a double");
  refused("1\n" + std::string(3050, '9'),
          "expected a number of at most 2000 characters, not '" + std::string(40, '9') + "'...");
}

}  // namespace
