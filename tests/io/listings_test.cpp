// SPDX-License-Identifier: MIT
// The listings "dump", "ij" and "ija".
#include "gallery.hpp"

#include <gtest/gtest.h>

namespace {

using csr_matrix_mod::csr_matrix;
using tests::dumped;

// [ 1.5   .   -2e-5 ]
// [  .    .     .   ]
// [  .  1e300   .   ]
csr_matrix sample() { return tests::real_matrix(3, {{{3, -2e-5}, {1, 1.5}}, {}, {{2, 1e300}}}); }
csr_matrix sample_pattern() { return tests::pattern(3, {{3, 1}, {}, {2}}); }

TEST(RowListing, HasTheColumnsOfAllRowsAndThenTheirValues) {
  EXPECT_EQ(dumped(sample(), "dump"),
            " row            1  =            3           1\n"
            " row            2  = \n"
            " row            3  =            2\n"
            " row            1  =   -2.0000000000000002E-005   1.5000000000000000     \n"
            " row            2  = \n"
            " row            3  =    1.0000000000000001E+300\n");
}

TEST(RowListing, HasNoValuesOfAStructureOnlyMatrix) {
  EXPECT_EQ(dumped(sample_pattern(), "dump"),
            " row            1  =            3           1\n"
            " row            2  = \n"
            " row            3  =            2\n");
}

TEST(EntryListing, HasALineForEveryEntryInStoredOrder) {
  EXPECT_EQ(dumped(sample(), "ij"),
            "         1         3\n"
            "         1         1\n"
            "\n"
            "         3         2\n");
}

TEST(EntryListing, HasTheValueBehindTheColumn) {
  EXPECT_EQ(dumped(sample(), "ija"),
            "         1         3 -0.2000E-04\n"
            "         1         1   1.500    \n"
            "\n"
            "         3         2  0.1000+301\n");
}

TEST(EntryListing, HasTwoColumnsForAStructureOnlyMatrix) {
  EXPECT_EQ(dumped(sample_pattern(), "ija"), dumped(sample_pattern(), "ij"));
  EXPECT_EQ(dumped(sample_pattern(), "ij"), dumped(sample(), "ij"));
}

TEST(Listings, OfAMatrixWithoutRowsAreEmpty) {
  for (const char* const word : {"dump", "ij", "ija"})
    EXPECT_EQ(dumped(tests::real_matrix(4, {}), word), "") << word;
}

}  // namespace
