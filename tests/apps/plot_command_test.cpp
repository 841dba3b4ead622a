// SPDX-License-Identifier: MIT
#include "csrmat.hpp"

#include <filesystem>

namespace {

using tests::csrmat;
using tests::expect_refusal;
using tests::matrix_folder;

// The same command on a machine without gnuplot.
tests::process_result csrmat_without_gnuplot(const std::string& file, const std::string& out) {
  return tests::run_process({"env", "PATH=/nowhere", CSRMAT, "plot", file, out});
}

TEST(Plot, WritesTheFilesOfTheLibrary) {
  const matrix_folder folder;
  const std::string out = folder.path("picture");
  const auto seen = csrmat_without_gnuplot(folder.path("wide.mtx"), out);
  EXPECT_EQ(seen.status, 0);
  EXPECT_EQ(seen.out, "wrote " + out + " and " + out + ".com, which draws " + out +
                          ".ps\nwithout " + out + ".png: gnuplot is not installed\n");
  EXPECT_EQ(seen.err, "");
  EXPECT_EQ(
      folder.read("picture"),
      "         1         3\n         3         3\n         2         2\n         4         1\n");
  EXPECT_EQ(folder.read("picture.com").rfind("set xrange [0:           5]\n", 0), 0U);
  EXPECT_FALSE(std::filesystem::exists(out + ".png"));
}

TEST(Plot, DrawsAPictureWithGnuplot) {
  if (tests::run_process({"sh", "-c", "command -v gnuplot"}).status != 0)
    GTEST_SKIP() << "gnuplot is not installed";
  const matrix_folder folder;
  const std::string out = folder.path("picture");
  const auto seen = csrmat({"plot", folder.path("wide.mtx"), out});
  EXPECT_EQ(seen.status, 0);
  EXPECT_EQ(seen.err, "");
  EXPECT_NE(seen.out.find("wrote " + out + ".png\n"), std::string::npos);
  EXPECT_EQ(folder.read("picture.png").substr(0, 4), "\x89PNG");
}

TEST(Plot, DrawsNoPictureOfNothing) {
  const matrix_folder folder;
  const std::string out = folder.path("picture");
  const auto seen = csrmat({"plot", folder.path("empty.mtx"), out});
  EXPECT_EQ(seen.status, 0);
  EXPECT_NE(seen.out.find("without " + out + ".png: there is no entry to draw\n"),
            std::string::npos);
}

TEST(Plot, RefusesANameThatGnuplotWouldRun) {
  const matrix_folder folder;
  for (const char* name : {"<touch x", "|touch x", "a`touch x`", "a\"b", "a\\b", "-", ""})
    expect_refusal({"plot", folder.path("wide.mtx"), "--", name},
                   std::string(name) + ": gnuplot would not take this for the name of a file");
}

}  // namespace
