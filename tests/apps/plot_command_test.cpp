// SPDX-License-Identifier: MIT
#include "csrmat.hpp"

#include <csignal>
#include <filesystem>
#include <iterator>

namespace {

using tests::csrmat;
using tests::expect_quiet;
using tests::expect_refusal;
using tests::matrix_folder;
using tests::process_result;

// The same command on a machine without gnuplot.
process_result csrmat_without_gnuplot(const std::string& file, const std::string& out) {
  return tests::run_process({"env", "PATH=/nowhere", CSRMAT, "plot", file, out});
}

// The same command where a line of the shell runs under the name of gnuplot, and signals do what an
// option of env says.
process_result csrmat_with_gnuplot(const std::string& line, const std::string& file,
                                   const std::string& out,
                                   const std::string& signals = "--default-signal") {
  const tests::temporary_folder programs;
  const std::string gnuplot = programs.path("gnuplot");
  tests::write_file(gnuplot, "#!/bin/sh\n" + line + "\n");
  std::filesystem::permissions(gnuplot, std::filesystem::perms::owner_all);
  return tests::run_process(
      {"env", signals, "PATH=" + programs.path(""), CSRMAT, "plot", file, out});
}

// Three files of another plot, which are there as long as the new one is not.
class plot_of_before {
 public:
  explicit plot_of_before(const matrix_folder& folder) : folder_(folder) {
    for (const char* name : names) folder.write(name, name);
  }
  void expect_untouched() const {
    for (const char* name : names) EXPECT_EQ(folder_.read(name), name);
    EXPECT_EQ(files(), matrices_ + std::ssize(names)) << "something was left behind";
  }

 private:
  static constexpr const char* names[] = {"picture", "picture.com", "picture.png"};

  [[nodiscard]] std::ptrdiff_t files() const {
    return std::distance(std::filesystem::directory_iterator(folder_.path("")), {});
  }

  const matrix_folder& folder_;
  std::ptrdiff_t matrices_ = files();
};

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

  folder.write("picture.png", "of before");
  const auto again = csrmat({"plot", folder.path("empty.mtx"), out});
  EXPECT_NE(again.out.find("left " + out + ".png as it was: there is no entry to draw\n"),
            std::string::npos);
  EXPECT_EQ(folder.read("picture.png"), "of before");
}

TEST(Plot, NamesThePointsInTheCommandsAsTheUserDid) {
  const matrix_folder folder;
  const std::string out = folder.path("picture");
  csrmat_without_gnuplot(folder.path("wide.mtx"), out);
  const std::string first = folder.read("picture.com");
  EXPECT_NE(first.find("set out \"" + out + ".ps\"\n"), std::string::npos) << first;
  EXPECT_NE(first.find("plot \"" + out + "\" using 1:2 "), std::string::npos) << first;
  csrmat_without_gnuplot(folder.path("wide.mtx"), out);
  EXPECT_EQ(folder.read("picture.com"), first);
}

TEST(Plot, DrawsAPictureWithGnuplot) {
  if (tests::run_process({"sh", "-c", "command -v gnuplot"}).status != 0)
    GTEST_SKIP() << "gnuplot is not installed";
  const matrix_folder folder;
  const plot_of_before before(folder);
  const std::string out = folder.path("picture");
  const auto seen = csrmat({"plot", folder.path("wide.mtx"), out});
  EXPECT_EQ(seen.status, 0);
  EXPECT_EQ(seen.err, "");
  EXPECT_EQ(seen.out, "wrote " + out + " and " + out + ".com, which draws " + out + ".ps\nwrote " +
                          out + ".png\n");
  EXPECT_EQ(folder.read("picture.png").substr(0, 4), "\x89PNG");
}

TEST(Plot, DrawsNoPictureOfNothing) {
  const matrix_folder folder;
  const std::string out = folder.path("picture");
  const auto seen = csrmat({"plot", folder.path("empty.mtx"), out});
  EXPECT_EQ(seen.status, 0);
  EXPECT_NE(seen.out.find("without " + out + ".png: there is no entry to draw\n"),
            std::string::npos);
  EXPECT_FALSE(std::filesystem::exists(out + ".png"));
}

TEST(Plot, RefusesANameThatGnuplotWouldRun) {
  const matrix_folder folder;
  const std::string reason = ": gnuplot would not take this for the name of a file";
  for (const char* name : {"<touch x", "|touch x", "a`touch x`", "a\"b", "a\\b", "-", "~/x"})
    expect_refusal({"plot", folder.path("wide.mtx"), "--", name}, name + reason);
  expect_refusal({"plot", folder.path("wide.mtx"), "--", ""}, "''" + reason);
}

TEST(Plot, RefusesToReplaceTheMatrix) {
  const matrix_folder folder;
  const std::string matrix = folder.read("wide.mtx");
  for (const char* name : {"p", "p.com", "p.png"}) {
    folder.write(name, matrix);
    expect_refusal({"plot", folder.path(name), folder.path("p")},
                   folder.path(name) + ": cannot be written: it is the matrix to plot");
    EXPECT_EQ(folder.read(name), matrix);
    std::filesystem::remove(folder.path(name));
  }
}

TEST(Plot, RefusesWhatIsNoFileBeforeItReplacesAny) {
  const matrix_folder folder;
  const plot_of_before before(folder);
  const std::string out = folder.path("picture");
  for (const char* suffix : {"", ".com", ".png"}) {
    const std::string name = "picture" + std::string(suffix);
    std::filesystem::rename(folder.path(name), folder.path("aside"));
    std::filesystem::create_directory(folder.path(name));
    expect_refusal({"plot", folder.path("wide.mtx"), out},
                   folder.path(name) + ": cannot be written: not a regular file");
    std::filesystem::remove(folder.path(name));
    std::filesystem::rename(folder.path("aside"), folder.path(name));
    before.expect_untouched();
  }
}

TEST(Plot, LeavesTheFilesOfBeforeOnAFullDisk) {
  const matrix_folder folder;
  const plot_of_before before(folder);
  const std::string large = folder.path("wide.mtx");
  expect_quiet({"gallery", "poisson2d", large, "--size", "20"});
  const std::string out = folder.path("picture");
  const auto seen = tests::run_process(
      {"sh", "-c", "ulimit -f 20; exec \"$@\"", "sh", CSRMAT, "plot", large, out});
  EXPECT_EQ(seen.status, 1);
  EXPECT_EQ(seen.out, "");
  EXPECT_EQ(seen.err, "csrmat: " + out + ": cannot write: File too large\n");
  before.expect_untouched();
}

TEST(Plot, LeavesTheFilesOfBeforeWhenGnuplotDrawsNoWholePicture) {
  const matrix_folder folder;
  const plot_of_before before(folder);
  const std::string out = folder.path("picture");
  for (const char* line : {"exit 1", "printf '\\211PNG, and then the disk was full'"}) {
    const auto seen = csrmat_with_gnuplot(line, folder.path("wide.mtx"), out);
    EXPECT_EQ(seen.status, 1);
    EXPECT_EQ(seen.out, "");
    EXPECT_EQ(seen.err, "csrmat: " + out + ".png: gnuplot could not draw it\n");
    before.expect_untouched();
  }
}

TEST(Plot, LeavesTheFilesOfBeforeAndNothingElseWhenASignalEndsIt) {
  const matrix_folder folder;
  const plot_of_before before(folder);
  for (const auto& [name, number] :
       {std::pair("INT", SIGINT), std::pair("TERM", SIGTERM), std::pair("HUP", SIGHUP)}) {
    const auto seen = csrmat_with_gnuplot("kill -s " + std::string(name) + " $PPID",
                                          folder.path("wide.mtx"), folder.path("picture"));
    EXPECT_EQ(seen.status, 128 + number);
    EXPECT_EQ(seen.err, "");
    before.expect_untouched();
  }
}

TEST(Plot, GoesOnAfterASignalThatItsCallerIgnores) {
  const matrix_folder folder;
  const std::string out = folder.path("picture");
  const auto seen = csrmat_with_gnuplot("kill -s HUP $PPID; exit 127", folder.path("wide.mtx"), out,
                                        "--ignore-signal=HUP");
  EXPECT_EQ(seen.status, 0);
  EXPECT_NE(seen.out.find("wrote " + out + " and "), std::string::npos) << seen.out;
}

}  // namespace
