// SPDX-License-Identifier: MIT
#include "csrmat.hpp"

#include <filesystem>

namespace {

using tests::csrmat;
using tests::expect_quiet;
using tests::expect_refusal;
using tests::expect_refusal_about;
using tests::matrix_folder;

TEST(GalleryCommand, MakesEveryMatrixInEveryKindOfFile) {
  const matrix_folder folder;
  for (const char* name : {"poisson2d", "poisson3d", "fem", "random"})
    for (const char* file : {"x.mtx", "x.csr", "x.csrb"}) {
      expect_quiet({"gallery", name, folder.path(file), "--size", "6"});
      const auto seen = csrmat({"info", folder.path(file)});
      EXPECT_EQ(seen.status, 0);
      EXPECT_NE(seen.out.find("structurally symmetric        yes\n"), std::string::npos);
    }
}

TEST(GalleryCommand, IsRepeatedByItsSeed) {
  const matrix_folder folder;
  for (const char* name : {"fem", "random"}) {
    expect_quiet({"gallery", name, folder.path("a.mtx"), "--size", "9", "--seed", "7"});
    expect_quiet({"gallery", name, folder.path("b.mtx"), "--size", "9", "--seed", "007"});
    expect_quiet({"gallery", name, folder.path("c.mtx"), "--size", "9", "--seed", "8"});
    expect_quiet({"gallery", name, folder.path("d.mtx"), "--size", "9", "--seed", "08"});
    EXPECT_EQ(folder.read("a.mtx"), folder.read("b.mtx"));
    EXPECT_EQ(folder.read("c.mtx"), folder.read("d.mtx"));
    EXPECT_NE(folder.read("a.mtx"), folder.read("c.mtx"));
  }
}

TEST(GalleryCommand, RefusesASeedWhereNothingIsRandom) {
  const matrix_folder folder;
  expect_refusal({"gallery", "poisson2d", folder.path("x.mtx"), "--seed", "1"},
                 "poisson2d: nothing is random here, so there is no --seed");
}

TEST(GalleryCommand, RefusesWhatIsNoSeed) {
  const matrix_folder folder;
  for (const char* seed : {"18446744073709551616", "-3", "5 ", "1e3"})
    expect_refusal({"gallery", "fem", folder.path("x.mtx"), "--seed", seed},
                   std::string("--seed: expected a whole number from 0 to 18446744073709551615, "
                               "found '") +
                       seed + "'; see csrmat --help");
  expect_quiet(
      {"gallery", "fem", folder.path("x.mtx"), "--size", "3", "--seed", "18446744073709551615"});
}

TEST(GalleryCommand, TakesASizeInDecimalDigits) {
  const matrix_folder folder;
  expect_quiet({"gallery", "poisson2d", folder.path("a.mtx"), "--size", "10"});
  expect_quiet({"gallery", "poisson2d", folder.path("b.mtx"), "--size", "010"});
  EXPECT_EQ(folder.read("a.mtx"), folder.read("b.mtx"));
  expect_refusal({"gallery", "poisson2d", folder.path("x.mtx"), "--size", "0x10"},
                 "--size: expected a whole number from 1 to 2147483646, found '0x10'; "
                 "see csrmat --help");
}

TEST(GalleryCommand, RefusesASizeThatDoesNotFit) {
  const matrix_folder folder;
  expect_refusal({"gallery", "poisson3d", folder.path("x.mtx"), "--size", "2000"},
                 "poisson3d of size 2000: its rows do not fit, at most 2147483646");
  EXPECT_FALSE(std::filesystem::exists(folder.path("x.mtx")));
}

TEST(GalleryCommand, RefusesANameItDoesNotKnow) {
  const matrix_folder folder;
  expect_refusal_about({"gallery", "poisson4d", folder.path("x.mtx")}, "poisson4d");
}

}  // namespace
