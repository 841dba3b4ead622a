// SPDX-License-Identifier: MIT
#include "csrmat.hpp"

#include <cstdlib>

namespace {

using tests::csrmat;
using tests::expect_refusal;
using tests::expect_refusal_about;
using tests::matrix_folder;

TEST(Usage, HelpTellsWhichRoutineEachCommandRuns) {
  const auto seen = csrmat({"--help"});
  EXPECT_EQ(seen.status, 0);
  EXPECT_EQ(seen.err, "");
  for (const char* line :
       {"info        csr_matrix_check, matrix_is_struct_symmetric", "convert     csr_matrix_load",
        "coarsen     csr_matrix_restriction or", "gallery     coo_to_csr_format",
        "plot        csr_matrix_dump_gnuplot", "sort        csr_matrix_sort",
        "clean       csr_matrix_clean", "symmetrize  csr_matrix_symmetrize",
        "transpose   csr_matrix_transpose", "multiply    csr_matrix_multiply",
        "sum         csr_matrix_sum", "apply       csr_matrix_multiply_rvector"})
    EXPECT_NE(seen.out.find(line), std::string::npos) << line;
}

TEST(Usage, HelpOfACommandNamesItsOptions) {
  const auto seen = csrmat({"coarsen", "--help"});
  EXPECT_EQ(seen.status, 0);
  EXPECT_EQ(seen.err, "");
  for (const char* option : {"--levels", "--min-rows", "--graph", "--out"})
    EXPECT_NE(seen.out.find(option), std::string::npos) << option;
}

TEST(Usage, VersionIsOneLine) {
  const auto seen = csrmat({"--version"});
  EXPECT_EQ(seen.status, 0);
  EXPECT_EQ(seen.out.rfind("csrmat ", 0), 0U);
  EXPECT_EQ(std::count(seen.out.begin(), seen.out.end(), '\n'), 1);
}

TEST(Usage, WithoutACommandEndsInOneLine) {
  expect_refusal({}, "A subcommand is required; see csrmat --help");
}

TEST(Usage, AnUnknownCommandIsNamed) {
  expect_refusal({"inform"}, "inform: no such command; see csrmat --help");
  expect_refusal({"inform", "x.mtx"}, "inform: no such command; see csrmat --help");
  expect_refusal({""}, "'': no such command; see csrmat --help");
}

TEST(Usage, AnUnknownOptionEndsInOneLine) {
  expect_refusal_about({"coarsen", "x.mtx", "--level", "3"}, "--level");
}

TEST(Usage, AMissingArgumentEndsInOneLine) {
  expect_refusal({"multiply", "a.mtx", "b.mtx"}, "OUT is required; see csrmat --help");
}

TEST(Usage, ANumberOutOfRangeEndsInOneLine) {
  for (const char* number : {"0", "-3", "2147483648", "99999999999999999999", "many", "1.5", "0x2"})
    for (const char* option : {"--levels", "--min-rows"})
      expect_refusal({"coarsen", "x.mtx", option, number},
                     std::string(option) +
                         ": expected a whole number from 1 to 2147483647, found '" + number +
                         "'; see csrmat --help");
  expect_refusal_about({"gallery", "fem", "x.mtx", "--size", "0"}, "--size");
  expect_refusal_about({"gallery", "fem", "x.mtx", "--seed", "-1"}, "--seed");
}

TEST(Usage, AWordThatIsNoKindOfFileEndsInOneLine) {
  expect_refusal_about({"convert", "x.mtx", "y.mtx", "--to", "png"}, "png");
  expect_refusal_about({"convert", "x.mtx", "y.mtx", "--from", "dump"}, "dump");
}

TEST(Usage, TheNameOfAFileMayBeThatOfACommand) {
  const matrix_folder folder;
  const std::string copy = folder.path("sum");
  tests::write_file(copy, folder.read("square.mtx"));
  EXPECT_EQ(csrmat({"info", copy}).status, 0);
}

TEST(Usage, AMissingFileIsNamed) {
  const std::string reason = "/nowhere/a.mtx: cannot be read: No such file or directory";
  for (const char* command : {"info", "coarsen"})
    expect_refusal({command, "/nowhere/a.mtx"}, reason);
  for (const char* command : {"convert", "plot", "sort", "clean", "symmetrize", "transpose"})
    expect_refusal({command, "/nowhere/a.mtx", "/nowhere/b.mtx"}, reason);
  for (const char* command : {"multiply", "sum"})
    expect_refusal({command, "/nowhere/a.mtx", "/nowhere/b.mtx", "/nowhere/c.mtx"}, reason);
  expect_refusal({"apply", "/nowhere/a.mtx", "/nowhere/x.txt"}, reason);
}

TEST(Usage, AnEmptyNameIsSeen) {
  const matrix_folder folder;
  expect_refusal({"info", ""}, "'': cannot be read: No such file or directory");
  expect_refusal_about({"convert", folder.path("wide.mtx"), ""},
                       "csrmat: '': no kind of file known by this suffix");
}

TEST(Usage, WhatWouldUpsetATerminalIsShownAsACode) {
  const std::string reason = ": cannot be read: No such file or directory";
  expect_refusal({"info", "no\x1b[31mx\n\x7f"}, "no\\x1b[31mx\\x0a\\x7f" + reason);
  expect_refusal({"bo\x1bgus"}, "bo\\x1bgus: no such command; see csrmat --help");
  // The same control character as a byte of its own and in UTF-8, and letters that share bytes.
  expect_refusal({"info",
                  "\x9b"
                  "31m\xc2\x9b"
                  "31m"},
                 "\\x9b31m\xc2\\x9b31m" + reason);
  expect_refusal({"info",
                  "gr\xc3\xb6\xc3\x9f"
                  "e\xe2\x82\xac"},
                 "gr\xc3\xb6\xc3\x9f"
                 "e\xe2\x82\xac" +
                     reason);
}

TEST(Usage, AFolderIsNoMatrix) {
  const matrix_folder folder;
  expect_refusal({"info", folder.path(".")},
                 folder.path(".") + ": cannot be read: not a regular file");
}

TEST(Usage, ABadFileIsNamedInOneLine) {
  const matrix_folder folder;
  folder.write("column.mtx", "%%MatrixMarket matrix coordinate real general\n2 2 1\n1 3 1\n");
  folder.write("cut.mtx", "%%MatrixMarket matrix coordinate real general\n2 2 2\n1 1 1\n");
  folder.write("field.csr", " F\n         1         1\n         x\n");
  folder.write("short.csrb", std::string("\4\0\0\0\0\0\0\0\4\0\0\0", 12));
  folder.write("nothing", "");
  for (const char* name : {"column.mtx", "cut.mtx", "field.csr", "short.csrb", "nothing"})
    for (const char* command : {"info", "coarsen"})
      expect_refusal_about({command, folder.path(name)}, folder.path(name));
}

TEST(Usage, AFullDiskUnderTheResultIsAFailure) {
  const matrix_folder folder;
  const std::string command =
      std::string(CSRMAT) + " info '" + folder.path("square.mtx") + "' > /dev/full";
  const auto seen = tests::run_process({"sh", "-c", command});
  EXPECT_EQ(seen.status, 1);
  EXPECT_EQ(seen.err, "csrmat: standard output: No space left on device\n");
}

}  // namespace
