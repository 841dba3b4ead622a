// SPDX-License-Identifier: MIT
// The columns as a hypergraph.
#include "../support/files.hpp"
#include "../support/messages.hpp"
#include "../support/observe.hpp"
#include "../support/process.hpp"
#include "../support/refusals.hpp"
#include "gallery.hpp"

#include <csr_matrix_mod/io.hpp>

#include <gtest/gtest.h>

#include <string>

namespace {

using csr_matrix_mod::csr_matrix;

std::string listed(const csr_matrix& mat) {
  const tests::temporary_folder folder;
  const tests::observed seen =
      tests::observe([&] { csr_matrix_dump_hypergraph(mat, folder.path("out")); });
  EXPECT_EQ(seen.stop, std::nullopt);
  return tests::read_file(folder.path("out"));
}

// [ 1 . ]
// [ . 2 ]
// [ 3 . ]
csr_matrix sample() { return tests::real_matrix(2, {{{1, 1.0}}, {{2, 2.0}}, {{1, 3.0}}}); }

TEST(Hypergraph, HasTheRowsOfEachColumnOnOneLine) {
  EXPECT_EQ(listed(sample()),
            "           2           3\n"
            "       1       3\n"
            "       2\n");
}

TEST(Hypergraph, HasAnEmptyLineForAnEmptyColumn) {
  EXPECT_EQ(listed(tests::pattern(3, {{2}})),
            "           3           1\n"
            "\n"
            "       1\n"
            "\n");
}

TEST(Hypergraph, OfAMatrixWithoutColumnsIsItsFirstLine) {
  EXPECT_EQ(listed(tests::real_matrix(0, {{}, {}})), "           0           2\n");
}

TEST(Hypergraph, ListsARowAsOftenAsItHoldsTheColumn) {
  EXPECT_EQ(listed(tests::pattern(2, {{2, 1, 2}})),
            "           2           1\n"
            "       1\n"
            "       1       1\n");
}

TEST(Hypergraph, IsChosenByAWordOfTheDump) {
  EXPECT_EQ(tests::dumped(sample(), "hypergraph"), listed(sample()));
}

TEST(Hypergraph, PrintsNothingOfItsOwn) {
  const tests::temporary_folder folder;
  tests::expect_silent([&] { csr_matrix_dump_hypergraph(sample(), folder.path("out")); });
}

TEST(Hypergraph, WarnsAsTheTransposeDoesWhenThereAreNoEntries) {
  const tests::temporary_folder folder;
  const csr_matrix empty = tests::pattern(2, {{}});
  EXPECT_EQ(tests::observe([&] { csr_matrix_dump_hypergraph(empty, folder.path("out")); }).output,
            tests::no_entries_warning);
}

TEST(Hypergraph, DoesNotTouchTheFileWhenTheTransposeStops) {
  const tests::temporary_folder folder;
  tests::write_file(folder.path("out"), "before");
  const csr_matrix mat = sample();
  const tests::refuse_allocation refused(0);
  EXPECT_EQ(tests::observe([&] { csr_matrix_dump_hypergraph(mat, folder.path("out")); }).stop,
            "allocation error in csr_matrix_initial");
  EXPECT_EQ(tests::read_file(folder.path("out")), "before");
}

TEST(Hypergraph, GivesTheBytesOfAFortranProgram) {
  SKIP_WITHOUT(FORTRAN_MATRIX_FILE);
  for (const tests::named_matrix& each : tests::gallery()) {
    if (each.mat.m == 2147483647) continue;  // a line a column
    const tests::temporary_folder folder;
    csr_matrix_dump(folder.path("in"), each.mat, "unformatted");
    EXPECT_EQ(tests::run_process({FORTRAN_MATRIX_FILE, folder.path("in"), "unformatted",
                                  folder.path("out"), "hypergraph"})
                  .status,
              0);
    EXPECT_EQ(listed(each.mat), tests::read_file(folder.path("out"))) << each.name;
  }
}

}  // namespace
