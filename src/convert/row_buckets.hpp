// SPDX-License-Identifier: MIT
// Entries put into their rows in two steps: into buckets, each of some rows that follow each other,
// and from there into the rows, a bucket at a time, which the cache holds. Entries that go to rows
// all over a large matrix would wait for memory one by one if they were put there at once, even if
// it were asked for ahead: shuffled lists become rows 1.5 to 1.9 times as fast, random columns are
// transposed 1.5 to 1.7 times as fast, those of R-MAT 0.9 to 1.3 times (2 million entries) and 1.7
// times (8 million).
#pragma once

#include "../csr_matrix/row_starts.hpp"
#include "../support/prefetch.hpp"
#include "../support/scratch.hpp"

#include <csr_matrix_mod/csr_matrix.hpp>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <numeric>
#include <type_traits>
#include <utility>

namespace csr_matrix_mod {

// Each bucket lies where the entries of its rows will stand. The last bits of the row of an entry
// wait there in the bits that its column leaves free, so that beside the matrix there need be room
// for the entries of one bucket only.
class row_buckets {
 public:
  // Do so many entries, of the rows rows[k-1], go to rows far apart, and to more memory than the
  // cache holds?
  [[nodiscard]] static bool are_worth_it(const std::int32_t* rows, std::int32_t nnz) {
    return scatters(rows, nnz, entries_in_cache);
  }

  // For entries that are worth it, of a matrix with room for them. Their columns, counted from 0,
  // have no bit above the highest of `bits`.
  row_buckets(csr_matrix& mat, const std::int32_t* rows, std::int32_t nnz, std::uint32_t bits)
      : mat_(mat), rows_(rows), nnz_(nnz), column_bits_(static_cast<int>(std::bit_width(bits))) {}

  // Counts the entries of each bucket. False, with nothing decided, where columns leave too few
  // bits, where one bucket has much of the matrix, small as it is, and where there is no room.
  //
  // Small buckets are counted, and joined where none gets too large; there are matrices of which
  // most entries are in a few of the rows.
  [[nodiscard]] bool count() {
    // The cache beside the processor holds two buckets of so many entries, and where they go to.
    constexpr int entries_bits = 14;
    constexpr std::int64_t together = 8;
    constexpr std::int32_t largest_part = 8;
    if (column_bits_ == 32) return false;
    const std::int64_t rows = std::min(std::int64_t{mat_.n / (nnz_ >> entries_bits)},
                                       std::int64_t{1} << (32 - column_bits_));
    const std::int32_t most = nnz_ / largest_part;
    if (!count_small(std::max((rows / together - 1) | 1, std::int64_t{1}))) return false;
    if (rows >= together && largest(together) <= most) join(together);
    const std::int32_t room = largest(1);
    return room <= most && columns_.allocate(room, contents::undefined) &&
           (mat_.type != matrix_real || values_.allocate(room, contents::undefined));
  }

  // Makes the rows, once buckets are counted. `for_each_entry` calls back with each k, from 1 on,
  // and the column of that entry; `values` is null where there are none.
  template <class ForEachEntry>
  void fill_rows(const double* values, const ForEachEntry& for_each_entry) {
    if (values != nullptr)
      fill_rows_with(values, for_each_entry);
    else
      fill_rows_with(nullptr, for_each_entry);
    row_starts_from_cursors(mat_);
  }

 private:
  // Which bucket has a row, counted from 0. Where each had 2^k rows, and rows had as many entries,
  // buckets would begin at addresses that fall into the same few sets of the cache, which costs a
  // quarter.
  struct division {
    std::uint64_t scale;
    int shift = 32;

    // So many rows a bucket at most.
    explicit division(std::int64_t rows)
        : scale(((std::uint64_t{1} << 32) - 1) / static_cast<std::uint64_t>(rows) + 1) {}

    [[nodiscard]] std::uint64_t bucket(std::int32_t row) const {
      return (static_cast<std::uint32_t>(row) * scale) >> shift;
    }
    [[nodiscard]] std::int64_t first_row(std::int64_t bucket) const {
      return static_cast<std::int64_t>(((static_cast<std::uint64_t>(bucket) << shift) + scale - 1) /
                                       scale);
    }
  };

  // Counts the entries of buckets of so many rows.
  [[nodiscard]] bool count_small(std::int64_t rows) {
    constexpr std::int32_t fewest_entries = 16;
    const division of(rows);
    buckets_ = static_cast<std::int64_t>(of.bucket(mat_.n - 1)) + 1;
    of_ = of;
    if (buckets_ > nnz_ / fewest_entries) return false;
    if (!cursor_.allocate(buckets_, contents::filled_with_zero)) return false;
    std::int32_t* const counts = cursor_.data();
    const std::int32_t* const list = rows_;
    for (std::int32_t k = 1; k <= nnz_; ++k) ++counts[of.bucket(list[k - 1] - 1)];
    return true;
  }

  // The entries of so many buckets, from one on.
  [[nodiscard]] std::int32_t entries(std::int64_t bucket, std::int64_t number) const {
    const std::int32_t* const counts = cursor_.data();
    return std::accumulate(counts + bucket, counts + std::min(bucket + number, buckets_), 0);
  }

  // The entries of the largest bucket, if so many were one.
  [[nodiscard]] std::int32_t largest(std::int64_t together) const {
    std::int32_t most = 0;
    for (std::int64_t bucket = 0; bucket < buckets_; bucket += together)
      most = std::max(most, entries(bucket, together));
    return most;
  }

  // Makes one of so many, a power of 2.
  void join(std::int64_t together) {
    std::int64_t joined = 0;
    for (std::int64_t bucket = 0; bucket < buckets_; bucket += together)
      cursor_.data()[joined++] = entries(bucket, together);
    buckets_ = joined;
    of_.shift += std::countr_zero(static_cast<std::uint64_t>(together));
  }

  // `Values` is a null pointer by its type where there are none.
  template <class Values, class ForEachEntry>
  void fill_rows_with(Values values, const ForEachEntry& for_each_entry) {
    std::int32_t next = 0;
    for (std::int64_t bucket = 0; bucket < buckets_; ++bucket)
      next += std::exchange(cursor_.data()[bucket], next);
    fill_buckets(values, for_each_entry);
    std::int32_t first = 0;
    for (std::int64_t bucket = 0; bucket < buckets_; ++bucket)
      empty_bucket<Values>(bucket, std::exchange(first, cursor_.data()[bucket]));
  }

  // There are more buckets than streams that a processor foresees, so the next line of a bucket is
  // asked for while this one is filled.
  template <class Values, class ForEachEntry>
  void fill_buckets(Values values, const ForEachEntry& for_each_entry) {
    constexpr std::int64_t a_line = cache_line / sizeof(std::int32_t);
    const std::int64_t last = nnz_ - 1;
    std::int32_t* const cursor = cursor_.data();
    const std::int32_t* const rows = rows_;
    std::int32_t* const new_columns = mat_.ja.data();
    [[maybe_unused]] double* const new_values = mat_.a.data();
    const division of = of_;
    const int column_bits = column_bits_;
    for_each_entry([=](std::int32_t k, std::int32_t column) {
      const std::int32_t row = rows[k - 1] - 1;
      const std::int32_t p = cursor[of.bucket(row)]++;
      const std::int64_t line_to_come = std::min(p + a_line, last);
      prefetch_for_writing(new_columns + line_to_come);
      new_columns[p] = static_cast<std::int32_t>(static_cast<std::uint32_t>(row) << column_bits |
                                                 static_cast<std::uint32_t>(column - 1));
      if constexpr (!std::is_null_pointer_v<Values>) {
        prefetch_for_writing(new_values + line_to_come);
        new_values[p] = values[k - 1];
      }
    });
  }

  // Puts the entries of a bucket, from the one behind `first` on, into their rows.
  template <class Values>
  void empty_bucket(std::int64_t bucket, std::int32_t first) {
    constexpr bool valued = !std::is_null_pointer_v<Values>;
    const std::int32_t entries = cursor_.data()[bucket] - first;
    const std::int64_t first_row = of_.first_row(bucket);
    const std::int64_t rows = std::min(of_.first_row(bucket + 1), std::int64_t{mat_.n}) - first_row;
    std::int32_t* const cursor = mat_.ia.data() + first_row;
    std::int32_t* const new_columns = mat_.ja.data();
    [[maybe_unused]] double* const new_values = mat_.a.data();
    std::uint32_t* const waiting = columns_.data();
    [[maybe_unused]] double* const values = values_.data();
    const int column_bits = column_bits_;
    const std::uint32_t column_mask = (std::uint32_t{1} << column_bits) - 1;
    const std::uint32_t row_before = static_cast<std::uint32_t>(first_row) << column_bits;

    std::fill_n(cursor, rows, 0);
    for (std::int32_t k = 0; k < entries; ++k) {
      waiting[k] = static_cast<std::uint32_t>(new_columns[first + k]) - row_before;
      ++cursor[waiting[k] >> column_bits];
    }
    if constexpr (valued) std::copy_n(new_values + first, entries, values);
    std::int32_t next = first + 1;
    for (std::int64_t i = 0; i < rows; ++i) next += std::exchange(cursor[i], next);
    for (std::int32_t k = 0; k < entries; ++k) {
      const std::int32_t p = cursor[waiting[k] >> column_bits]++;
      new_columns[p - 1] = static_cast<std::int32_t>(waiting[k] & column_mask) + 1;
      if constexpr (valued) new_values[p - 1] = values[k];
    }
  }

  csr_matrix& mat_;
  const std::int32_t* rows_;
  std::int32_t nnz_;
  int column_bits_;
  division of_{1};
  std::int64_t buckets_ = 0;
  scratch<std::int32_t> cursor_;  // in each bucket
  scratch<std::uint32_t> columns_;
  scratch<double> values_;
};

}  // namespace csr_matrix_mod
