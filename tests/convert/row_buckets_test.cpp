// SPDX-License-Identifier: MIT
// Entries put into rows by way of buckets stand where entries put there one by one do.
#include "../../src/convert/row_buckets.hpp"
#include "../support/refusals.hpp"

#include <csr_matrix_mod/convert.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

namespace {

using namespace csr_matrix_mod;

using integers = std::vector<std::int32_t>;

struct lists {
  std::int32_t n;
  integers rows;
  integers columns;
  std::vector<double> values;

  [[nodiscard]] std::int32_t nnz() const { return static_cast<std::int32_t>(rows.size()); }
};

constexpr std::int32_t enough = entries_in_cache + 29;

// Rows as `row` chooses them from a random number, columns from all up to `most`.
lists any_lists(std::int32_t n, std::int32_t most,
                const std::function<std::int64_t(std::int64_t random)>& row) {
  lists of{n, {}, {}, {}};
  std::uint64_t state = 1;
  const auto random = [&state] {
    state = state * 6364136223846793005U + 1442695040888963407U;
    return static_cast<std::int64_t>(state >> 33U);
  };
  for (std::int32_t k = 0; k < enough; ++k) {
    of.rows.push_back(static_cast<std::int32_t>(row(random())) + 1);
    of.columns.push_back(static_cast<std::int32_t>(random() % most) + 1);
    of.values.push_back(k);
  }
  of.columns[enough / 2] = most;
  return of;
}

// A row is as likely as another.
lists even_lists(std::int32_t n, std::int32_t most) {
  return any_lists(n, most, [n](std::int64_t random) { return random % n; });
}

// One entry in five is of one of `some` rows.
lists crowded_lists(std::int32_t n, std::int32_t some) {
  return any_lists(n, n, [=](std::int64_t random) {
    return random % 5 == 0 ? n / 2 + random / 5 % some : random / 5 % n;
  });
}

std::uint32_t bits_of(const integers& columns) {
  std::uint32_t bits = 0;
  for (const std::int32_t column : columns) bits |= static_cast<std::uint32_t>(column - 1);
  return bits;
}

csr_matrix room_for(const lists& of, matrix_type type) {
  csr_matrix mat;
  csr_matrix_initial(of.n, mat, of.n, type);
  csr_matrix_allocate(mat, of.nnz());
  return mat;
}

// One by one: a counting sort.
void expect_rows(const csr_matrix& mat, const lists& of) {
  integers starts(static_cast<std::size_t>(of.n) + 1, 1);
  for (const std::int32_t row : of.rows) ++starts[static_cast<std::size_t>(row)];
  for (std::size_t i = 1; i < starts.size(); ++i) starts[i] += starts[i - 1] - 1;
  integers next = starts;
  integers columns(of.rows.size());
  std::vector<double> values(of.rows.size());
  for (std::size_t k = 0; k < of.rows.size(); ++k) {
    const auto at = static_cast<std::size_t>(next[static_cast<std::size_t>(of.rows[k] - 1)]++ - 1);
    columns[at] = of.columns[k];
    values[at] = of.values[k];
  }
  EXPECT_TRUE(std::equal(mat.ia.begin(), mat.ia.end(), starts.begin(), starts.end()));
  EXPECT_TRUE(std::equal(mat.ja.begin(), mat.ja.end(), columns.begin(), columns.end()));
  if (mat.type == matrix_real) {
    EXPECT_TRUE(std::equal(mat.a.begin(), mat.a.end(), values.begin(), values.end()));
  }
}

enum class way { buckets, another };

void expect_way(way expected, const lists& of) {
  for (const matrix_type type : {matrix_real, matrix_structure_only}) {
    csr_matrix mat = room_for(of, type);
    ASSERT_TRUE(row_buckets::are_worth_it(of.rows.data(), of.nnz()));
    row_buckets buckets(mat, of.rows.data(), of.nnz(), bits_of(of.columns));
    ASSERT_EQ(buckets.count(), expected == way::buckets);
    if (expected == way::buckets) {
      buckets.fill_rows(type == matrix_real ? of.values.data() : nullptr, [&](const auto& put) {
        for (std::int32_t k = 1; k <= of.nnz(); ++k)
          put(k, of.columns[static_cast<std::size_t>(k - 1)]);
      });
      expect_rows(mat, of);
    }
    csr_matrix again;
    coo_to_csr_format(of.n, of.nnz(), of.rows, of.columns, of.values, again, type);
    expect_rows(again, of);
  }
}

TEST(RowBuckets, HoldAnyRows) {
  for (const std::int32_t n : {5000, 1 << 16, (1 << 17) + 3, 3000017})
    expect_way(way::buckets, even_lists(n, n));
}

// Rows that lack entries: two in three, and all behind the first third.
TEST(RowBuckets, LeaveRowsEmpty) {
  constexpr std::int32_t n = 90001;
  expect_way(way::buckets, any_lists(n, n, [](std::int64_t random) { return random % (n / 3); }));
  expect_way(way::buckets,
             any_lists(n, n, [](std::int64_t random) { return random % (n / 3) * 3 + 1; }));
}

// The fewer bits columns leave, the fewer rows has a bucket, and there are too many in the end.
TEST(RowBuckets, TellRowsApartInTheBitsThatColumnsLeave) {
  constexpr std::int32_t n = (1 << 17) + 3;
  for (const int bits : {0, 1, 20, 22, 27})
    expect_way(way::buckets, even_lists(n, std::int32_t{1} << bits));
  for (const int bits : {28, 29, 30})
    expect_way(way::another, even_lists(n, std::int32_t{1} << bits));
  expect_way(way::another, even_lists(n, 2147483647));
  lists of = even_lists(n, n);
  of.columns[77] = 0;  // which nobody promised to take, and which is kept
  expect_way(way::another, of);
}

TEST(RowBuckets, AreSmallerWhereRowsAreCrowded) {
  expect_way(way::buckets, crowded_lists(1 << 17, 3000));
  expect_way(way::another, crowded_lists(1 << 17, 1));
}

TEST(RowBuckets, AreNotWorthItForRowsNearEachOther) {
  const lists few = even_lists(5000, 10);
  EXPECT_FALSE(row_buckets::are_worth_it(few.rows.data(), entries_in_cache - 1));
  const lists near = even_lists(100, 10);
  EXPECT_FALSE(row_buckets::are_worth_it(near.rows.data(), near.nnz()));
}

TEST(RowBuckets, AreLeftWithoutATraceWhereThereIsNoRoom) {
  const lists of = even_lists(1 << 16, 1 << 16);
  for (const auto& [type, requests] :
       {std::pair{matrix_real, std::size_t{3}}, {matrix_structure_only, 2}}) {
    csr_matrix mat = room_for(of, type);
    for (std::size_t k = 0; k <= requests; ++k) {
      row_buckets buckets(mat, of.rows.data(), of.nnz(), bits_of(of.columns));
      const tests::refuse_allocation refused(static_cast<int>(k));
      EXPECT_EQ(buckets.count(), k == requests) << "request " << k;
    }
  }
  const auto stops = tests::stops_by_request(
      [] { return csr_matrix(); },
      [&](csr_matrix& mat) {
        coo_to_csr_format(of.n, of.nnz(), of.rows, of.columns, of.values, mat);
        expect_rows(mat, of);
      },
      [](csr_matrix& mat) { tests::expect_releasable(mat); });
  EXPECT_EQ(std::count(stops.begin(), stops.end(), tests::no_stop), 3);
}

// Rows of 0 to 15 entries, of which the rows of the transpose are the columns.
TEST(RowBuckets, HoldTransposes) {
  constexpr std::int32_t n = (1 << 17) + 3;
  for (const lists& of : {even_lists(n, n), crowded_lists(n, 3000), crowded_lists(n, 1)}) {
    integers starts(1, 1);
    for (std::int32_t i = 0; starts.back() <= of.nnz(); ++i)
      starts.push_back(std::min(starts.back() + i * 7 % 16, of.nnz() + 1));
    lists turned{n + 10, of.rows, {}, of.values};
    for (std::size_t i = 1; i < starts.size(); ++i)
      turned.columns.resize(static_cast<std::size_t>(starts[i] - 1), static_cast<std::int32_t>(i));
    const auto rows = static_cast<std::int32_t>(starts.size() - 1);
    csr_matrix mat;
    csr_matrix mat_t;
    csr_to_csr_matrix(rows, n, mat, starts, of.rows, of.values);
    csr_matrix_transpose(mat, mat_t, turned.n);
    expect_rows(mat_t, turned);
    csr_to_csr_matrix(rows, n, mat, starts, of.rows);
    csr_matrix_transpose(mat, mat_t, turned.n);
    expect_rows(mat_t, turned);
  }
}

// Of rows that share entries some are transposed more than once, of rows that begin later some
// entries are in no row.
TEST(RowBuckets, HoldNoRowsThatDoNotFollow) {
  constexpr std::int32_t n = (1 << 17) + 3;
  const lists of = even_lists(n, n);
  integers starts(static_cast<std::size_t>(n) + 1);
  for (std::size_t i = 0; i < starts.size(); ++i)
    starts[i] = static_cast<std::int32_t>(std::min(i * 7 + 1, of.rows.size() + 1));
  for (const bool shared : {true, false}) {
    integers changed = starts;
    if (shared)
      changed[n / 2] = 4;
    else
      changed[0] = 3;
    lists turned{n, {}, {}, {}};
    for (std::size_t i = 1; i < changed.size(); ++i)
      for (std::int32_t k = changed[i - 1]; k < changed[i]; ++k) {
        turned.rows.push_back(of.rows[static_cast<std::size_t>(k - 1)]);
        turned.columns.push_back(static_cast<std::int32_t>(i));
        turned.values.push_back(of.values[static_cast<std::size_t>(k - 1)]);
      }
    csr_matrix mat;
    csr_matrix mat_t;
    csr_to_csr_matrix(n, n, mat, changed, of.rows, of.values);
    csr_matrix_transpose(mat, mat_t);
    expect_rows(mat_t, turned);
  }
}

}  // namespace
