// SPDX-License-Identifier: MIT
#include "csrmat.hpp"

#include <filesystem>

namespace {

using tests::csrmat;
using tests::expect_quiet;
using tests::expect_refusal;
using tests::expect_refusal_about;
using tests::matrix_folder;

TEST(Convert, GoesThroughEveryKindOfFileAndBack) {
  const matrix_folder folder;
  for (const char* name : {"square", "wide", "graph"}) {
    const std::string start = std::string(name) + ".mtx";
    expect_quiet({"convert", folder.path(start), folder.path("a.csr")});
    expect_quiet({"convert", folder.path("a.csr"), folder.path("b.csrb")});
    expect_quiet({"convert", folder.path("b.csrb"), folder.path("c.mtx")});
    expect_quiet({"convert", folder.path(start), folder.path("d.mtx")});
    EXPECT_EQ(folder.read("c.mtx"), folder.read("d.mtx")) << name;
  }
}

TEST(Convert, WritesTheTextOfTheLibrary) {
  const matrix_folder folder;
  expect_quiet({"convert", folder.path("graph.mtx"), folder.path("graph.csr")});
  EXPECT_EQ(folder.read("graph.csr"),
            " T\n         3         3\n         1\n         2\n         4\n         5\n"
            "         2\n         1\n         3\n         2\n");
}

TEST(Convert, KeepsEveryDigitInBinaryAndMatrixMarket) {
  const matrix_folder folder;
  folder.write("digits.mtx",
               "%%MatrixMarket matrix coordinate real general\n1 1 1\n1 1 0.1234567890123456\n");
  expect_quiet({"convert", folder.path("digits.mtx"), folder.path("digits.csrb")});
  expect_quiet({"convert", folder.path("digits.csrb"), folder.path("again.mtx")});
  EXPECT_NE(folder.read("again.mtx").find("0.1234567890123456\n"), std::string::npos);
}

TEST(Convert, WritesListings) {
  const matrix_folder folder;
  expect_quiet({"convert", folder.path("wide.mtx"), folder.path("wide.ij")});
  EXPECT_EQ(
      folder.read("wide.ij"),
      "         1         1\n         1         3\n         2         2\n         3         4\n");
  expect_quiet({"convert", folder.path("wide.mtx"), folder.path("wide.ija")});
  EXPECT_EQ(folder.read("wide.ija").substr(0, 33), "         1         1   5.000    \n");
  expect_quiet({"convert", folder.path("wide.mtx"), folder.path("wide.hgr")});
  EXPECT_EQ(folder.read("wide.hgr"),
            "           4           3\n       1\n       2\n       1\n       3\n");
  expect_quiet({"convert", folder.path("graph.mtx"), folder.path("graph.dump")});
  EXPECT_EQ(folder.read("graph.dump").rfind(" row ", 0), 0U);
}

TEST(Convert, KnowsAFileWithoutSuffixByItsFirstBytes) {
  const matrix_folder folder;
  for (const char* kind : {"text", "binary", "market"}) {
    expect_quiet({"convert", folder.path("square.mtx"), folder.path("plain"), "--to", kind});
    expect_quiet({"convert", folder.path("plain"), folder.path("again.mtx")});
    expect_quiet({"convert", folder.path("square.mtx"), folder.path("direct.mtx")});
    EXPECT_EQ(folder.read("again.mtx"), folder.read("direct.mtx")) << kind;
  }
}

TEST(Convert, KnowsTheMarketByItsFirstWordInEitherCase) {
  const matrix_folder folder;
  folder.write("plain", "%%matrixMARKET matrix coordinate real general\n1 1 1\n1 1 5\n");
  expect_quiet({"convert", folder.path("plain"), folder.path("out.mtx")});
  EXPECT_EQ(folder.read("out.mtx"),
            "%%MatrixMarket matrix coordinate real general\n1 1 1\n1 1 5\n");
}

TEST(Convert, KnowsABinaryFileOfTheOtherByteOrder) {
  const matrix_folder folder;
  expect_quiet({"convert", folder.path("graph.mtx"), folder.path("plain"), "--to", "binary"});
  std::string bytes = folder.read("plain");
  std::reverse(bytes.begin(), bytes.begin() + 4);
  folder.write("plain", bytes);
  expect_refusal(
      {"info", folder.path("plain")},
      folder.path("plain") + ": record 1: expected 4 bytes, found them in the other byte order");
}

TEST(Convert, TakesTheWordOfTheUserBeforeTheSuffix) {
  const matrix_folder folder;
  expect_quiet({"convert", folder.path("square.mtx"), folder.path("text.mtx"), "--to", "text"});
  EXPECT_EQ(folder.read("text.mtx").rfind(" F\n", 0), 0U);
  expect_refusal_about({"info", folder.path("text.mtx")}, folder.path("text.mtx"));
  expect_quiet({"convert", folder.path("text.mtx"), folder.path("a.csr"), "--from", "text"});
  EXPECT_EQ(folder.read("a.csr"), folder.read("text.mtx"));
}

TEST(Convert, AsksForTheKindWhenNoSuffixTells) {
  const matrix_folder folder;
  expect_refusal({"convert", folder.path("square.mtx"), folder.path("square.png")},
                 folder.path("square.png") +
                     ": no kind of file known by this suffix: use .mtx (Matrix Market), .csr "
                     "(text), .csrb (binary), .dump, .ij, .ija or .hgr (listings)");
  EXPECT_FALSE(std::filesystem::exists(folder.path("square.png")));
}

TEST(Convert, ReadsNoListing) {
  const matrix_folder folder;
  expect_quiet({"convert", folder.path("wide.mtx"), folder.path("wide.ij")});
  expect_refusal({"convert", folder.path("wide.ij"), folder.path("x.mtx")},
                 folder.path("wide.ij") + ": listings are written only, not read");
}

TEST(Convert, MayWriteOverItsInput) {
  const matrix_folder folder;
  expect_quiet({"convert", folder.path("square.mtx"), folder.path("square.mtx"), "--to", "text"});
  EXPECT_EQ(folder.read("square.mtx").rfind(" F\n", 0), 0U);
}

TEST(Convert, LeavesTheOldFileWhenItFails) {
  const matrix_folder folder;
  folder.write("cut.mtx", "%%MatrixMarket matrix coordinate real general\n2 2 2\n1 1 1\n");
  folder.write("old.csr", "old contents");
  expect_refusal_about({"convert", folder.path("cut.mtx"), folder.path("old.csr")}, "cut.mtx");
  EXPECT_EQ(folder.read("old.csr"), "old contents");
}

TEST(Convert, LeavesNothingElseBehind) {
  const matrix_folder folder;
  const auto files = [&] {
    return std::distance(std::filesystem::directory_iterator(folder.path("")), {});
  };
  const auto before = files();
  expect_quiet({"convert", folder.path("square.mtx"), folder.path("new.csr")});
  EXPECT_EQ(files(), before + 1);
}

TEST(Convert, KeepsThePermissionsOfTheFileItReplaces) {
  using std::filesystem::perms;
  const matrix_folder folder;
  folder.write("old.csr", "");
  std::filesystem::permissions(folder.path("old.csr"), perms{0640});
  expect_quiet({"convert", folder.path("square.mtx"), folder.path("old.csr")});
  EXPECT_EQ(std::filesystem::status(folder.path("old.csr")).permissions(), perms{0640});
}

TEST(Convert, FollowsALinkToTheFileItReplaces) {
  const matrix_folder folder;
  folder.write("old.csr", "");
  std::filesystem::create_symlink(folder.path("old.csr"), folder.path("link.csr"));
  expect_quiet({"convert", folder.path("square.mtx"), folder.path("link.csr")});
  EXPECT_TRUE(std::filesystem::is_symlink(folder.path("link.csr")));
  EXPECT_EQ(folder.read("old.csr").rfind(" F\n", 0), 0U);
}

TEST(Convert, MakesTheFileThatALinkToNothingNames) {
  const matrix_folder folder;
  std::filesystem::create_directory(folder.path("below"));
  std::filesystem::create_symlink("below/second.csr", folder.path("first.csr"));
  std::filesystem::create_symlink("new.csr", folder.path("below/second.csr"));
  expect_quiet({"convert", folder.path("square.mtx"), folder.path("first.csr")});
  EXPECT_TRUE(std::filesystem::is_symlink(folder.path("first.csr")));
  EXPECT_TRUE(std::filesystem::is_symlink(folder.path("below/second.csr")));
  EXPECT_EQ(folder.read("below/new.csr").rfind(" F\n", 0), 0U);

  const std::string nowhere = folder.path("nowhere.csr");
  std::filesystem::create_symlink("missing/new.csr", nowhere);
  expect_refusal({"convert", folder.path("square.mtx"), nowhere},
                 nowhere + ": cannot be written: No such file or directory");
}

TEST(Convert, TakesNamesAsLongAsTheSystemDoes) {
  const matrix_folder folder;
  const std::string name = std::string(251, 'a') + ".csr";
  expect_quiet({"convert", folder.path("square.mtx"), folder.path(name)});
  EXPECT_EQ(folder.read(name).rfind(" F\n", 0), 0U);
}

TEST(Convert, CanWriteToStandardOutput) {
  const matrix_folder folder;
  const auto seen = csrmat({"convert", folder.path("graph.mtx"), "/dev/stdout", "--to", "text"});
  expect_quiet({"convert", folder.path("graph.mtx"), folder.path("graph.csr")});
  EXPECT_EQ(seen.status, 0);
  EXPECT_EQ(seen.out, folder.read("graph.csr"));
  EXPECT_EQ(seen.err, "");
}

TEST(Convert, KnowsStandardOutputByAnyName) {
  const matrix_folder folder;
  const std::string link = folder.path("link.csr");
  std::filesystem::create_symlink("/dev/stdout", link);
  expect_quiet({"convert", folder.path("graph.mtx"), folder.path("graph.csr")});
  for (const std::string& name : {link, std::string("/dev/fd/1"), std::string("/proc/self/fd/1")}) {
    const auto seen = csrmat({"convert", folder.path("graph.mtx"), name, "--to", "text"});
    EXPECT_EQ(seen.status, 0) << name;
    EXPECT_EQ(seen.out, folder.read("graph.csr")) << name;
    EXPECT_EQ(seen.err, "") << name;
  }
  EXPECT_TRUE(std::filesystem::is_symlink(link));
}

TEST(Convert, WritesThroughAnOpenFileThatHasNoName) {
  const matrix_folder folder;
  expect_quiet({"convert", folder.path("graph.mtx"), folder.path("graph.csr")});
  const std::string file = folder.path("gone");
  const std::string command = "exec 3<>'" + file + "' && rm '" + file +
                              "' && " CSRMAT " convert '" + folder.path("graph.mtx") +
                              "' /dev/fd/3 --to text && cat /dev/fd/3";
  const auto seen = tests::run_process({"sh", "-c", command});
  EXPECT_EQ(seen.out, folder.read("graph.csr"));
  EXPECT_EQ(seen.err, "");
}

TEST(Convert, CanWriteToAPipeWithoutTheWarningsOfTheLibrary) {
  const matrix_folder folder;
  const std::string command = std::string(CSRMAT) + " convert '" + folder.path("empty.mtx") +
                              "' /dev/stdout --to hypergraph | cat";
  const auto seen = tests::run_process({"sh", "-c", command});
  EXPECT_EQ(seen.out, "           2           2\n\n\n");
}

TEST(Convert, NamesAFileThatCannotBeWritten) {
  const matrix_folder folder;
  expect_refusal({"convert", folder.path("square.mtx"), "/nowhere/b.csr"},
                 "/nowhere/b.csr: cannot be written: No such file or directory");
  std::filesystem::create_directory(folder.path("folder.csr"));
  expect_refusal({"convert", folder.path("square.mtx"), folder.path("folder.csr")},
                 folder.path("folder.csr") + ": cannot be written: Is a directory");
  expect_refusal_about({"convert", folder.path("square.mtx"), "/dev/full", "--to", "text"},
                       "/dev/full");
}

TEST(Convert, NamesStandardOutputAsTheUserDidWhenItIsFull) {
  const matrix_folder folder;
  const std::string command = std::string(CSRMAT) + " convert '" + folder.path("square.mtx") +
                              "' /dev/stdout --to text > /dev/full";
  const auto seen = tests::run_process({"sh", "-c", command});
  EXPECT_EQ(seen.status, 1);
  EXPECT_EQ(seen.err.rfind("csrmat: /dev/stdout: ", 0), 0U) << seen.err;
}

}  // namespace
