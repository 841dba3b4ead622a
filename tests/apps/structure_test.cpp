// SPDX-License-Identifier: MIT
#include "structure.hpp"

#include "../support/generators.hpp"
#include "../support/matrices.hpp"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <set>
#include <utility>

namespace {

using csrmat::unpaired_entry;
using csrmat::with_values;
using tests::entries_of;
using tests::entry_rows;
using tests::pattern;
using tests::real_matrix;
using entry_place = std::pair<std::int32_t, std::int32_t>;

TEST(UnpairedEntry, IsNothingWhenThePatternIsSymmetric) {
  EXPECT_EQ(unpaired_entry(pattern(3, {{2, 1}, {3, 1}, {2}})), std::nullopt);
}

TEST(UnpairedEntry, IsNotTheRepetitionOfAColumn) {
  EXPECT_EQ(unpaired_entry(pattern(2, {{2, 1, 2}, {1}})), std::nullopt);
}

TEST(UnpairedEntry, NamesTheEntryThatIsStored) {
  //  [ x  x ]
  //  [ .  x ]
  EXPECT_EQ(unpaired_entry(pattern(2, {{1, 2}, {2}})), entry_place(1, 2));
  //  [ x  . ]
  //  [ x  x ]
  EXPECT_EQ(unpaired_entry(pattern(2, {{1}, {1, 2}})), entry_place(2, 1));
}

TEST(UnpairedEntry, SeesTheDifferenceThatEqualCountsHide) {
  // Every row and every column has one entry: 1 -> 2 -> 3 -> 1.
  EXPECT_TRUE(unpaired_entry(pattern(3, {{2}, {3}, {1}})));
}

RC_GTEST_PROP(UnpairedEntry, AgreesWithTheSetOfPlaces, ()) {
  const std::int32_t n = *tests::any_size();
  const auto rows = *tests::any_rows(n, n);
  std::set<entry_place> places;
  for (std::size_t i = 0; i < rows.size(); ++i)
    for (const tests::entry& e : rows[i])
      places.insert({static_cast<std::int32_t>(i) + 1, e.column});
  const auto is_unpaired = [&](entry_place place) {
    return places.count(place) == 1 && places.count({place.second, place.first}) == 0;
  };
  bool any = false;
  for (const entry_place& place : places) any = any || is_unpaired(place);

  const auto found = unpaired_entry(real_matrix(n, rows));
  RC_ASSERT(found.has_value() == any);
  if (found) RC_ASSERT(is_unpaired(*found));
}

TEST(WithValues, GivesEveryEntryOfAPatternTheValueOne) {
  EXPECT_EQ(entries_of(with_values(pattern(2, {{2, 1}, {}}))),
            (entry_rows{{{2, 1.0}, {1, 1.0}}, {}}));
}

TEST(WithValues, KeepsTheValuesThatAreThere) {
  const entry_rows rows = {{{2, 5.0}}, {{1, -0.0}}};
  EXPECT_EQ(entries_of(with_values(real_matrix(2, rows))), rows);
}

}  // namespace
