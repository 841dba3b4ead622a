// SPDX-License-Identifier: MIT
#include "csrmat.hpp"

#include <filesystem>
#include <regex>

namespace {

using tests::csrmat;
using tests::expect_quiet;
using tests::expect_refusal;
using tests::matrix_folder;

// A number of milliseconds is nobody's to know.
std::string without_times(const std::string& text) {
  return std::regex_replace(text, std::regex(" +[0-9]+\\.[0-9]{2}\n"), " MS\n");
}

// The lines of a Matrix Market file with one number twice at their beginning.
bool has_diagonal(const std::string& file) {
  const std::size_t entries = file.find('\n', file.find('\n') + 1);
  return std::regex_search(file.substr(entries), std::regex("\n([0-9]+) \\1 "));
}

TEST(Coarsen, PrintsTheHierarchyOfAGridOfPoints) {
  const matrix_folder folder;
  const std::string file = folder.path("p.mtx");
  expect_quiet({"gallery", "poisson2d", file, "--size", "30"});
  const auto seen = csrmat({"coarsen", file, "--min-rows", "20"});
  EXPECT_EQ(seen.status, 0);
  EXPECT_EQ(seen.err, "");
  EXPECT_EQ(seen.out.rfind(file + ": 900 x 900, 4380 entries\n\n"
                                  "level       rows      entries  entries/row   ratio         ms\n"
                                  "    0        900         4380         4.87       -          -\n"
                                  "    1        ",
                           0),
            0U)
      << seen.out;
  EXPECT_NE(seen.out.find("stops here: no more rows than --min-rows 20\n"), std::string::npos);
  EXPECT_TRUE(std::regex_search(
      seen.out, std::regex("operator complexity 1\\.[0-9]{3}, grid complexity 1\\.[0-9]{3}\n")));
  EXPECT_TRUE(std::regex_search(seen.out, std::regex("level 1: [0-9]\\.[0-9]{2}e-1[5-9]\n")));
}

TEST(Coarsen, PrintsNumbersThatCanBeCheckedByHand) {
  // The chain of 4 points: 4 rows and 10 entries, then 2 rows and 4 entries.
  const matrix_folder folder;
  const std::string file = folder.path("chain.mtx");
  folder.write("chain.mtx",
               "%%MatrixMarket matrix coordinate real symmetric\n4 4 7\n1 1 2\n2 2 2\n3 3 2\n"
               "4 4 2\n2 1 -1\n3 2 -1\n4 3 -1\n");
  const auto seen = csrmat({"coarsen", file, "--min-rows", "2", "--out", folder.path("level")});
  EXPECT_EQ(seen.status, 0);
  EXPECT_EQ(without_times(seen.out),
            file +
                ": 4 x 4, 10 entries\n\n"
                "level       rows      entries  entries/row   ratio         ms\n"
                "    0          4           10         2.50       -          -\n"
                "    1          2            4         2.00    2.00 MS\n"
                "\nstops here: no more rows than --min-rows 2\n"
                "operator complexity 1.400, grid complexity 1.500\n"
                "\nself-check: largest relative difference, for a random x, between\n"
                "mc*x and r*(m1*(p*x))\n"
                "  level 1: 0.00e+00\n");
  EXPECT_EQ(folder.read("level.1.mtx"),
            "%%MatrixMarket matrix coordinate real general\n"
            "2 2 4\n1 1 2\n1 2 -1\n2 2 2\n2 1 -1\n");
}

TEST(Coarsen, StopsAtTheNumberOfLevels) {
  const matrix_folder folder;
  const std::string file = folder.path("p.mtx");
  expect_quiet({"gallery", "poisson2d", file, "--size", "30"});
  const auto seen = csrmat({"coarsen", file, "--levels", "2", "--out", folder.path("level")});
  EXPECT_EQ(seen.status, 0);
  EXPECT_NE(seen.out.find("stops here: as many levels as --levels 2\n"), std::string::npos);
  EXPECT_TRUE(std::filesystem::exists(folder.path("level.0.mtx")));
  EXPECT_TRUE(std::filesystem::exists(folder.path("level.1.mtx")));
  EXPECT_FALSE(std::filesystem::exists(folder.path("level.2.mtx")));
  EXPECT_EQ(csrmat({"coarsen", folder.path("level.1.mtx")}).status, 0);
}

TEST(Coarsen, StopsWhenTheRowsHardlyGrowFewer) {
  const matrix_folder folder;
  const auto seen = csrmat({"coarsen", folder.path("empty.mtx"), "--min-rows", "1"});
  EXPECT_EQ(seen.status, 0);
  EXPECT_NE(seen.out.find("stops here: the rows hardly grow fewer\n"), std::string::npos);
  EXPECT_EQ(seen.out.find("allocating"), std::string::npos);
}

TEST(Coarsen, DropsTheDiagonalOfAGraphOnEveryLevel) {
  const matrix_folder folder;
  expect_quiet({"gallery", "poisson2d", folder.path("p.mtx"), "--size", "10"});
  const auto seen = csrmat({"coarsen", folder.path("p.mtx"), "--graph", "--levels", "3",
                            "--min-rows", "1", "--out", folder.path("level")});
  EXPECT_EQ(seen.status, 0);
  EXPECT_NE(seen.out.find("gc*x + d*x and r*(g1*(p*x))"), std::string::npos);
  EXPECT_NE(seen.out.find("    0        100          360 "), std::string::npos) << seen.out;
  for (const char* name : {"level.0.mtx", "level.1.mtx", "level.2.mtx"})
    EXPECT_FALSE(has_diagonal(folder.read(name))) << name;
  EXPECT_TRUE(has_diagonal(folder.read("p.mtx")));
}

TEST(Coarsen, CountsEveryEntryOfAPatternAsOne) {
  const matrix_folder folder;
  expect_quiet({"gallery", "random", folder.path("g.mtx"), "--size", "100"});
  for (const std::vector<std::string>& more : {std::vector<std::string>{}, {"--graph"}}) {
    std::vector<std::string> words = {"coarsen", folder.path("g.mtx"), "--min-rows", "2"};
    words.insert(words.end(), more.begin(), more.end());
    const auto seen = csrmat(words);
    EXPECT_EQ(seen.status, 0);
    EXPECT_NE(seen.out.find(" entries, each counts as 1\n"), std::string::npos);
  }
}

TEST(Coarsen, AggregatesAnUnsymmetricMatrixByItsSymmetrisedGraph) {
  const matrix_folder folder;
  const auto seen = csrmat({"coarsen", folder.path("square.mtx"), "--min-rows", "1"});
  EXPECT_EQ(seen.status, 0);
  EXPECT_NE(seen.out.find("    1          1            1 "), std::string::npos) << seen.out;
}

TEST(Coarsen, RefusesARectangle) {
  const matrix_folder folder;
  expect_refusal(
      {"coarsen", folder.path("wide.mtx")},
      folder.path("wide.mtx") + ": only a square matrix can be coarsened, this one is 3 x 4");
}

TEST(Coarsen, FailsWhenTheSelfCheckDoes) {
  const matrix_folder folder;
  folder.write("huge.mtx",
               "%%MatrixMarket matrix coordinate real general\n2 2 4\n"
               "1 1 1e308\n1 2 1e308\n2 1 1e308\n2 2 1e308\n");
  const auto seen = csrmat({"coarsen", folder.path("huge.mtx"), "--min-rows", "1"});
  EXPECT_EQ(seen.status, 1);
  EXPECT_EQ(seen.err, "csrmat: " + folder.path("huge.mtx") + ": self-check failed on level 1\n");
}

}  // namespace
