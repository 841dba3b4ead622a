// SPDX-License-Identifier: MIT
// The pattern as a picture, proved by gnuplot itself.
#include "../support/files.hpp"
#include "../support/observe.hpp"
#include "../support/process.hpp"
#include "gallery.hpp"
#include "units.hpp"

#include <csr_matrix_mod/io.hpp>

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <limits>
#include <string>
#include <vector>

namespace {

using csr_matrix_mod::csr_matrix;

struct plot {
  std::string output;
  std::string points;
  std::string commands;
};

// Plots into a file of the name "plot"; `draw` is given the name.
template <class Draw>
plot plotted(const Draw& draw) {
  const tests::temporary_folder folder;
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(folder.path("."));
  const tests::observed seen = tests::observe([&] { draw("plot"); });
  std::filesystem::current_path(before);
  EXPECT_EQ(seen.stop, std::nullopt);
  return {seen.output, tests::read_file(folder.path("plot")),
          tests::read_file(folder.path("plot.com"))};
}

plot plotted(const csr_matrix& mat) {
  return plotted([&](const char* name) { csr_matrix_dump_gnuplot(mat, name); });
}

plot plotted(const csr_matrix& mat, const std::vector<std::int32_t>& rows,
             const std::vector<std::int32_t>& columns) {
  return plotted(
      [&](const char* name) { csr_matrix_dump_gnuplot_ordered(mat, name, rows, columns); });
}

// [ . . 3 ]
// [ 1 . . ]
csr_matrix sample() { return tests::real_matrix(3, {{{3, 3.0}}, {{1, 1.0}}}); }

TEST(Gnuplot, DrawsRow1AtTheTop) {
  EXPECT_EQ(plotted(sample()).points,
            "         3         2\n"
            "         1         1\n");
}

TEST(Gnuplot, SaysWhatItWrites) {
  EXPECT_EQ(plotted(sample()).output, " writing gnuplot formatted matrix in plot and plot.com\n");
}

TEST(Gnuplot, WritesTenCommands) {
  EXPECT_EQ(plotted(sample()).commands,
            "set xrange [0:           4]\n"
            "set yrange [0:           3]\n"
            "set ytics (\"1\"            2, \"           2\"  1 )\n"
            "set noxtics\n"
            "set x2tics (\"1\" 1, \"3\"            3 )\n"
            "set nolabel \n"
            "set term post portrait \n"
            "set out \"plot.ps\"\n"
            "set size  square\n"
            "plot \"plot\" using 1:2 notitle w p ps 0.3\n");
}

TEST(Gnuplot, LabelsTheLastColumnWithAsManyDigitsAsItHas) {
  csr_matrix mat = sample();
  mat.m = 1000000000;
  EXPECT_NE(plotted(mat).commands.find("set x2tics (\"1\" 1, \"1000000000\"   1000000000 )\n"),
            std::string::npos);
}

TEST(Gnuplot, WrapsARangeBeyondTheLargestInteger) {
  csr_matrix mat = sample();
  mat.m = std::numeric_limits<std::int32_t>::max();
  EXPECT_EQ(plotted(mat).commands.substr(0, 28), "set xrange [0: -2147483648]\n");
}

TEST(Gnuplot, WritesAnEmptyLineForAnEmptyRow) {
  EXPECT_EQ(plotted(tests::pattern(2, {{}, {2, 1, 2}, {}})).points,
            "\n"
            "         2         2\n"
            "         1         2\n"
            "         2         2\n"
            "\n");
}

TEST(Gnuplot, WritesNoPointsAndAllCommandsOfAMatrixWithoutRows) {
  const plot empty = plotted(tests::real_matrix(3, {}));
  EXPECT_EQ(empty.points, "");
  EXPECT_EQ(empty.commands.substr(0, 56),
            "set xrange [0:           4]\nset yrange [0:           1]\n");
  EXPECT_EQ(std::count(empty.commands.begin(), empty.commands.end(), '\n'), 10);
}

TEST(Gnuplot, DrawsTheSameInTheOrderOfTheMatrix) {
  const plot natural = plotted(sample());
  const plot ordered = plotted(sample(), {1, 2}, {1, 2, 3});
  EXPECT_EQ(ordered.points, natural.points);
  EXPECT_EQ(ordered.commands, natural.commands);
  EXPECT_EQ(ordered.output, natural.output);
}

TEST(Gnuplot, MovesRowsAndColumnsToTheirPositions) {
  EXPECT_EQ(plotted(sample(), {2, 1}, {3, 1, 2}).points,
            "         2         1\n"
            "         3         2\n");
}

TEST(Gnuplot, DrawsAPositionOutsideOfThePictureAsItIs) {
  EXPECT_EQ(plotted(sample(), {5, -2147483647}, {-7, 1, 99}).points,
            "        99        -2\n"
            "        -7**********\n");
}

TEST(Gnuplot, IsChosenByAWordOfTheDump) {
  const std::vector<std::int32_t> rows = {2, 1};
  const std::vector<std::int32_t> columns = {3, 1, 2};
  EXPECT_EQ(plotted([](const char* name) { csr_matrix_dump(name, sample(), "gnuplot "); }).points,
            plotted(sample()).points);
  EXPECT_EQ(plotted([&](const char* name) {
              csr_matrix_dump(name, sample(), "gnuplot_ordered", rows, columns);
            }).points,
            plotted(sample(), rows, columns).points);
}

TEST(Gnuplot, ClosesBothUnits) {
  const std::int32_t unit = csr_matrix_mod::vacant_unit();
  plotted(sample());
  plotted(tests::pattern(2, {{1}}));
  EXPECT_EQ(csr_matrix_mod::vacant_unit(), unit);
}

TEST(Gnuplot, NeedsTwoUnits) {
  const tests::temporary_folder folder;
  const tests::all_units_taken taken;
  csr_matrix_mod::close_unit(77);
  EXPECT_EQ(tests::observe([&] { csr_matrix_dump_gnuplot(sample(), folder.path("plot")); }).stop,
            "no vacant unit exists!");
  EXPECT_EQ(csr_matrix_mod::vacant_unit(), 77);
}

TEST(Gnuplot, StopsWhereAFileCannotBeWritten) {
  const tests::temporary_folder folder;
  const std::string missing = folder.path("no/plot");
  EXPECT_EQ(tests::observe([&] { csr_matrix_dump_gnuplot(sample(), missing); }).stop,
            missing + ": cannot open for writing: No such file or directory");
}

TEST(Gnuplot, GivesTheBytesOfAFortranProgram) {
  SKIP_WITHOUT(FORTRAN_MATRIX_FILE);
  for (const tests::named_matrix& each : tests::gallery()) {
    if (each.mat.m == 2147483647) continue;  // m+1 is the processor's affair there
    const tests::temporary_folder folder;
    csr_matrix_dump(folder.path("in"), each.mat, "unformatted");
    for (const char* const layout : {"gnuplot", "commands"})
      EXPECT_EQ(tests::run_process({FORTRAN_MATRIX_FILE, folder.path("in"), "unformatted",
                                    folder.path(layout), layout})
                    .status,
                0);
    const plot mine = plotted(each.mat);
    EXPECT_EQ(mine.points, tests::read_file(folder.path("gnuplot"))) << each.name;
    EXPECT_EQ(mine.commands, tests::read_file(folder.path("commands"))) << each.name;
  }
}

TEST(Gnuplot, AcceptsTheCommandsWithoutAWordAndDrawsAPage) {
  SKIP_WITHOUT(GNUPLOT);
  const tests::temporary_folder folder;
  const std::string name = folder.path("plot");
  tests::observe([&] { csr_matrix_dump_gnuplot(sample(), name); });
  const tests::process_result run = tests::run_process({GNUPLOT, name + ".com"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err, "");
  const std::string picture = tests::read_file(name + ".ps");
  EXPECT_EQ(picture.substr(0, 4), "%!PS");
  EXPECT_NE(picture.find("%%Pages: 1\n"), std::string::npos);
}

}  // namespace
