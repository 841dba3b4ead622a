// SPDX-License-Identifier: MIT
// Every routine that asks for storage, refused at every request: the first, the second, ... until
// it makes fewer; that request alone, and all from it on. A refusal ends in a stop that the
// contract lists, or the result is the same as ever. Operands stay as they were, the same call
// succeeds afterwards, and every record can be released. (A leak is the sanitizer's to find.)
#include "../../src/support/stop.hpp"
#include "../support/files.hpp"
#include "../support/matrices.hpp"
#include "../support/observe.hpp"
#include "record_text.hpp"
#include "shortage.hpp"

#include <csr_matrix_mod/csr_matrix_mod.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace csr_matrix_mod;  // NOLINT: the table below names nearly all of it

// ------------------------------------------------------------------------------------- arguments

enum class operands { values, patterns, no_entries, no_rows };
constexpr operands all_operands[] = {operands::values, operands::patterns, operands::no_entries,
                                     operands::no_rows};

enum class result_record { fresh, used, shared, over_an_operand };
constexpr result_record all_results[] = {result_record::fresh, result_record::used,
                                         result_record::shared, result_record::over_an_operand};

const char* name_of(operands which) {
  constexpr const char* names[] = {"values", "patterns", "no entries", "no rows"};
  return names[static_cast<int>(which)];
}

const char* name_of(result_record which) {
  constexpr const char* names[] = {"fresh", "used", "shared", "over an operand"};
  return names[static_cast<int>(which)];
}

csr_matrix matrix_of(operands which, std::int32_t m, const tests::entry_rows& rows) {
  switch (which) {
    case operands::values:
      break;
    case operands::patterns:
      return tests::pattern(m, tests::columns_of(rows), 2);
    case operands::no_entries:
      return tests::real_matrix(m, tests::entry_rows(rows.size()), 1);
    case operands::no_rows:
      return tests::real_matrix(0, {}, 1);
  }
  return tests::real_matrix(m, rows, 2);
}

struct arguments {
  csr_matrix left, right;  // square
  csr_matrix p, r;         // prolongation and restriction
  csr_matrix other;        // shares its arrays with the result, or is null
  csr_matrix result;
  std::vector<std::int32_t> integers;  // of a square matrix's size
  std::vector<std::int32_t> rows, columns;
  std::vector<double> values;
  array_ref<std::int32_t> lists[2];
  array_ref<double> list;
  csr_row row;
  std::int32_t number = 0;
  std::string file;                  // to be written
  std::string text, binary, market;  // the same with .csr, .csrb, .mtx: these hold left
};

//   left  [ 2  .  5  . ]   right [ .  5  .  . ]   p [ 1  . ]   r [ 1  .  1  . ]
//         [ .  .  .  . ]         [ 1  .  .  1 ]     [ .  1 ]     [ .  1  .  1 ]
//         [ 1  2  3  4 ]         [ .  .  .  . ]     [ 1  . ]
//         [ .  .  . -1 ]         [.5 .25 .  . ]     [ .  1 ]
// Row 1 of left stores column 3 as 1 and 4.
csr_matrix left_matrix(operands which) {
  return matrix_of(
      which, 4,
      {{{3, 1.0}, {1, 2.0}, {3, 4.0}}, {}, {{1, 1.0}, {2, 2.0}, {3, 3.0}, {4, 4.0}}, {{4, -1.0}}});
}

// A file for each kind of operands, in each of the encodings.
std::string file_with_left(operands which) {
  static const tests::temporary_folder folder;
  std::string file = folder.path(name_of(which));
  // A file is made more quickly than it is emptied.
  for (const char* const suffix : {"", ".com"}) std::filesystem::remove(file + suffix);
  if (std::filesystem::exists(file + ".csr")) return file;
  const csr_matrix left = left_matrix(which);
  const std::int32_t unit = vacant_unit();
  csr_matrix_dump(file + ".csr", left);
  close_unit(unit);
  csr_matrix_dump(file + ".csrb", left, "unformatted");
  csr_matrix_write_market(file + ".mtx", left);
  return file;
}

arguments prepared(operands which, result_record where) {
  arguments of;
  of.file = file_with_left(which);
  of.text = of.file + ".csr";
  of.binary = of.file + ".csrb";
  of.market = of.file + ".mtx";
  of.left = left_matrix(which);
  of.right = matrix_of(which, 4, {{{2, 5.0}}, {{4, 1.0}, {1, 1.0}}, {}, {{1, 0.5}, {2, 0.25}}});
  of.p = matrix_of(which, 2, {{{1, 1.0}}, {{2, 1.0}}, {{1, 1.0}}, {{2, 1.0}}});
  of.r = matrix_of(which, 4, {{{1, 1.0}, {3, 1.0}}, {{2, 1.0}, {4, 1.0}}});
  if (which == operands::no_rows) of.r.m = 0;
  if (where == result_record::used || where == result_record::shared)
    of.result = tests::real_matrix(3, {{{2, 7.0}}, {{1, 8.0}, {3, 9.0}}}, 5);
  if (where == result_record::shared) csr_matrix_transfer(of.other, of.result);
  if (where == result_record::over_an_operand) csr_matrix_transfer(of.result, of.left);
  of.integers = {1, 2, 3, 4};
  of.rows = {4, 1, 3, 1};
  of.columns = {1, 2, 3, 4};
  of.values = {1.0, 2.0, 3.0, 4.0};
  EXPECT_TRUE(of.lists[0].allocate(2) && of.row.ja.allocate(0) && of.row.a.allocate(0));
  std::fill(of.lists[0].begin(), of.lists[0].end(), 7);
  return of;
}

using tests::text_of;

std::string text_of(const std::vector<std::int32_t>& integers) {
  std::string text;
  for (const std::int32_t each : integers) text += std::to_string(each) + " ";
  return text;
}

std::string inputs_of(const arguments& of) {
  return text_of(of.left) + text_of(of.right) + text_of(of.p) + text_of(of.r) + text_of(of.other);
}

std::string outputs_of(const arguments& of) {
  return text_of(of.result) + text_of(of.integers) + text_of(of.lists[0], 2) +
         text_of(of.lists[1], 4) + text_of(of.list, 0) + std::to_string(of.number) + " " +
         text_of(of.row.ja, of.row.count) + text_of(of.row.a, of.row.count);
}

// ---------------------------------------------------------------------------------- the routines

enum class after_stop { kept, undefined };  // what the outputs are after it

struct listed_stop {
  std::string message;
  after_stop outputs;
};

enum class needs { anything, values, patterns };
// Whether the result is also what is read, and if so whether another record over its arrays looks
// on.
enum class kind { reads_only, out_of_place, in_place, in_new_arrays };

struct routine {
  const char* name;
  needs operand;
  kind manner;
  std::vector<listed_stop> stops;
  std::function<void(arguments&)> call;
};

std::ostream& operator<<(std::ostream& out, const routine& of) { return out << of.name; }

listed_stop keeps(const char* name) {
  return {std::string("allocation error in ") + name, after_stop::kept};
}
listed_stop spoils(const char* name) {
  return {std::string("allocation error in ") + name, after_stop::undefined};
}

const listed_stop initial = spoils("csr_matrix_initial");
const listed_stop allocate = spoils("csr_matrix_allocate");
const listed_stop initial_kept = keeps("csr_matrix_initial");
const listed_stop allocate_kept = keeps("csr_matrix_allocate");
const listed_stop blank = {" ", after_stop::kept};

// FILE is the file of the arguments.
listed_stop cannot(const char* what, const char* suffix, after_stop outputs) {
  return {std::string("FILE") + suffix + ": cannot " + what + ": Cannot allocate memory", outputs};
}

// Closes the unit that a call may leave open.
template <class Call>
void then_close(const Call& call) {
  const std::int32_t unit = vacant_unit();
  call();
  close_unit(unit);
}

// A writer by its format word; hypergraphs are of the transpose.
routine dump(const char* name, const char* word) {
  return {name,
          needs::anything,
          kind::reads_only,
          {cannot("write", "", after_stop::kept), cannot("write", ".com", after_stop::kept),
           keeps("csr_matrix_transpose"), initial_kept, allocate_kept},
          [word](arguments& of) {
            const array_view<const std::int32_t> order(of.integers);
            then_close([&] { csr_matrix_dump(of.file, of.left, word, order, order); });
          }};
}

// The passes on plain arrays work on what is stored in left and right.
struct pass {
  array_ref<std::int32_t> ic, jc;
  array_ref<double> ac;

  pass() { EXPECT_TRUE(ic.allocate(5) && jc.allocate(16) && ac.allocate(16)); }
};

template <class Call>
std::function<void(arguments&)> on_arrays(Call call) {
  return [call, room = std::make_shared<pass>()](arguments& of) {
    call(of.left, of.right, *room, of);
  };
}

const std::vector<routine>& routines() {
  constexpr auto out = kind::out_of_place;
  constexpr auto none = kind::reads_only;
  constexpr auto in = kind::in_place;
  constexpr auto in_new = kind::in_new_arrays;
  constexpr auto any = needs::anything;
  static const std::vector<routine> table = {
      {"csr_matrix_initial",
       any,
       out,
       {initial},
       [](arguments& of) {
         csr_matrix_initial(3, of.result, 2);
         std::fill(of.result.ia.begin(), of.result.ia.end(), 1);
       }},
      {"csr_matrix_allocate",
       any,
       out,
       {allocate},
       [](arguments& of) {
         of.result.type = matrix_real;
         csr_matrix_allocate(of.result, 6);
         std::fill(of.result.ja.begin(), of.result.ja.end(), 1);
         std::fill(of.result.a.begin(), of.result.a.end(), 1.0);
       }},
      {"csr_matrix_allocate of nothing",
       any,
       out,
       {allocate},
       [](arguments& of) {
         csr_matrix_allocate(of.result, 0);
         std::fill(of.result.ja.begin(), of.result.ja.end(), 1);
         std::fill(of.result.a.begin(), of.result.a.end(), 1.0);
       }},
      {"csr_matrix_reallocate",
       any,
       in_new,
       {allocate, blank},
       [](arguments& of) { csr_matrix_reallocate(of.result, csr_matrix_num_nz(of.result)); }},
      {"csr_matrix_assign",
       any,
       out,
       {initial, allocate},
       [](arguments& of) { csr_matrix_assign(of.result, of.left); }},
      {"csr_matrix_transfer",
       any,
       out,
       {},
       [](arguments& of) { csr_matrix_transfer(of.result, of.left); }},
      {"csr_matrix_deallocate",
       any,
       in,
       {},
       [](arguments& of) { csr_matrix_deallocate(of.result); }},
      {"csr_matrix_getrow",
       any,
       none,
       {blank},
       [](arguments& of) { (void)csr_matrix_getrow(of.left, 5); }},
      {"csr_matrix_getrowval",
       needs::patterns,
       none,
       {{"getrowval in a structure only matrix!", after_stop::kept}},
       [](arguments& of) { (void)csr_matrix_getrowval(of.left, 1); }},
      {"csr_matrix_fill",
       any,
       none,
       {blank},
       [](arguments& of) { csr_matrix_fill(of.left, 5, of.integers, 1); }},
      {"csr_matrix_setval",
       any,
       in,
       {{"try to set value of a structure only matrix", after_stop::kept}},
       [](arguments& of) { csr_matrix_setval(of.result, 2.0); }},
      {"iexpand1",
       any,
       none,
       {{"iexpand1 gave 1", after_stop::kept}},
       [](arguments& of) {
         if (iexpand1(of.lists[0], 9) == 1) stop("iexpand1 gave 1");
       }},
      {"expand1",
       any,
       none,
       {{"expand1 gave 1", after_stop::kept}},
       [](arguments& of) {
         array_ref<double> own = of.row.a.alias();
         if (expand1(own, 9) == 1) stop("expand1 gave 1");
       }},
      {"csr_matrix_sort",
       any,
       in,
       {keeps("csr_matrix_sortrow"), keeps("csr_matrix_sortrow_noval"), allocate, blank},
       [](arguments& of) { csr_matrix_sort(of.result); }},
      {"csr_matrix_clean",
       any,
       in,
       {blank, allocate},
       [](arguments& of) { csr_matrix_clean(of.result); }},
      {"csr_matrix_remove_diag",
       any,
       in,
       {},
       [](arguments& of) { csr_matrix_remove_diag(of.result); }},
      {"csr_matrix_movediag",
       needs::values,
       in,
       {{" ", after_stop::undefined}},
       [](arguments& of) { csr_matrix_movediag(of.result); }},
      {"csr_matrix_condense",
       any,
       in,
       {keeps("csr_matrix_condense"),
        {"try condensing matrix with values!", after_stop::kept},
        allocate},
       [](arguments& of) { csr_matrix_condense(of.result, of.integers); }},
      {"matrix_is_struct_symmetric",
       any,
       none,
       {{"fail to allocate in is_symmetric", after_stop::kept},
        keeps("csr_matrix_transpose"),
        initial_kept,
        allocate_kept},
       [](arguments& of) { of.number = matrix_is_struct_symmetric(of.left) ? 2 : 1; }},
      {"csr_matrix_sortrow",
       needs::values,
       none,
       {keeps("csr_matrix_sortrow")},
       [](arguments& of) {
         std::int32_t length = 4;
         csr_matrix_sortrow(length, of.rows, of.values);
       }},
      {"csr_matrix_sortrow_noval",
       any,
       none,
       {keeps("csr_matrix_sortrow_noval")},
       [](arguments& of) {
         std::int32_t length = 4;
         csr_matrix_sortrow_noval(length, of.rows);
       }},
      {"csr_matrix_transpose",
       any,
       out,
       {keeps("csr_matrix_transpose"), initial, allocate},
       [](arguments& of) { csr_matrix_transpose(of.left, of.result); }},
      {"csr_matrix_sum",
       any,
       out,
       {spoils("csr_matrix_sum"), initial, allocate},
       [](arguments& of) { csr_matrix_sum(of.left, of.right, of.result); }},
      {"csr_matrix_sum of two shapes",
       needs::values,
       out,
       {{"try to sum two matrix of different row/column size", after_stop::kept},
        spoils("csr_matrix_sum"),
        initial,
        allocate},
       [](arguments& of) { csr_matrix_sum(of.left, of.p, of.result); }},
      {"csr_matrix_sum_nodiag",
       any,
       out,
       {spoils("csr_matrix_sum_nodiag"), initial, allocate},
       [](arguments& of) { csr_matrix_sum_nodiag(of.left, of.right, of.result); }},
      {"csr_matrix_symmetrize",
       any,
       in_new,
       {keeps("csr_matrix_transpose"), keeps("csr_matrix_sum"), initial_kept, allocate_kept},
       [](arguments& of) { csr_matrix_symmetrize(of.result); }},
      {"csr_matrix_symmetrize_nodiag",
       any,
       in_new,
       {keeps("csr_matrix_transpose"), keeps("csr_matrix_sum_nodiag"), initial_kept, allocate_kept},
       [](arguments& of) { csr_matrix_symmetrize_nodiag(of.result); }},
      {"coo_to_csr_format",
       any,
       out,
       {spoils("coo_to_csr_format"), initial, allocate},
       [](arguments& of) {
         coo_to_csr_format(4, 4, of.rows, of.columns, of.values, of.result, of.left.type);
       }},
      {"coo_to_csr_format in row order",
       any,
       out,
       {initial, allocate},
       [](arguments& of) {
         coo_to_csr_format(4, 4, of.columns, of.rows, of.values, of.result, of.left.type);
       }},
      {"csr_matrix_to_coo",
       any,
       none,
       {keeps("csr_matrix_to_coo")},
       [](arguments& of) {
         std::int32_t nnz = 0;
         csr_matrix_to_coo(of.left, nnz, of.lists[0], of.lists[1], of.list);
         of.number = nnz;
       }},
      {"csr_to_csr_matrix",
       any,
       out,
       {initial, allocate},
       [](arguments& of) {
         csr_to_csr_matrix(of.left.n, of.left.m, of.result, of.left.ia, of.left.ja);
       }},
      {"csr_to_csr_matrix with values",
       needs::values,
       out,
       {initial, allocate},
       [](arguments& of) {
         csr_to_csr_matrix(of.left.n, of.left.m, of.result, of.left.ia, of.left.ja, of.left.a);
       }},
      {"csr_to_csr_arrays",
       any,
       none,
       {{"error in allocation in csr_to_csr", after_stop::undefined}},
       [](arguments& of) {
         std::int32_t n = 0;
         std::int32_t m = 0;
         csr_to_csr_arrays(of.left, n, m, of.number, of.lists[0], of.lists[1], &of.list);
       }},
      {"csr_matrix_multiply",
       any,
       out,
       {spoils("matmul_size"), spoils("matmul_normal"), spoils("matmul_noval"), initial, allocate},
       [](arguments& of) { csr_matrix_multiply(of.left, of.right, of.result); }},
      {"csr_matrix_multiply_graph",
       any,
       out,
       {spoils("matmul_size_graph"), spoils("matmul_graph"), initial, allocate},
       [](arguments& of) { csr_matrix_multiply_graph(of.left, of.right, of.result); }},
      {"csr_matrix_multiply_graph with weights",
       any,
       out,
       {spoils("matmul_size_graph"), spoils("matmul_wgraph"), initial, allocate},
       [](arguments& of) {
         csr_matrix_multiply_graph(of.left, of.right, of.result, {},
                                   array_view<const std::int32_t>(of.integers));
       }},
      {"csr_matrix_restriction",
       needs::values,
       out,
       {spoils("matmul_size"), spoils("matmul_normal"), initial, allocate},
       [](arguments& of) { csr_matrix_restriction(of.left, of.p, of.r, of.result); }},
      {"csr_matrix_restriction of two sizes",
       needs::values,
       out,
       {{"p not same size as size of m1", after_stop::kept},
        spoils("matmul_size"),
        spoils("matmul_normal"),
        initial,
        allocate},
       [](arguments& of) { csr_matrix_restriction(of.left, of.r, of.r, of.result); }},
      {"csr_matrix_graph_restriction",
       needs::values,
       out,
       {spoils("matmul_size"), spoils("matmul_normal"), spoils("matmul_size_graph"),
        spoils("matmul_formgraph"), initial, allocate},
       [](arguments& of) { csr_matrix_graph_restriction(of.left, of.p, of.r, of.result); }},
      {"matmul_size",
       any,
       none,
       {keeps("matmul_size")},
       on_arrays([](const csr_matrix& a, const csr_matrix& b, pass&, arguments& of) {
         matmul_size(a.n, b.m, a.ia, a.ja, b.ia, b.ja, of.number);
       })},
      {"matmul_normal",
       needs::values,
       none,
       {keeps("matmul_normal")},
       on_arrays([](const csr_matrix& a, const csr_matrix& b, pass& c, arguments&) {
         matmul_normal(a.n, b.m, a.ia, a.ja, a.a, b.ia, b.ja, b.a, c.ic, c.jc, c.ac);
       })},
      {"matmul_noval",
       any,
       none,
       {keeps("matmul_noval")},
       on_arrays([](const csr_matrix& a, const csr_matrix& b, pass& c, arguments&) {
         matmul_noval(a.n, b.m, a.ia, a.ja, b.ia, b.ja, c.ic, c.jc);
       })},
      {"matmul_size_graph",
       any,
       none,
       {keeps("matmul_size_graph")},
       on_arrays([](const csr_matrix& a, const csr_matrix& b, pass&, arguments& of) {
         matmul_size_graph(a.n, b.m, a.ia, a.ja, b.ia, b.ja, of.number);
       })},
      {"matmul_graph",
       any,
       none,
       {keeps("matmul_graph")},
       on_arrays([](const csr_matrix& a, const csr_matrix& b, pass& c, arguments&) {
         matmul_graph(a.n, b.m, a.ia, a.ja, b.ia, b.ja, c.ic, c.jc, c.ac);
       })},
      {"matmul_wgraph",
       any,
       none,
       {keeps("matmul_wgraph")},
       on_arrays([](const csr_matrix& a, const csr_matrix& b, pass& c, arguments& of) {
         matmul_wgraph(a.n, b.m, a.ia, a.ja, b.ia, b.ja, c.ic, c.jc, c.ac, of.integers);
       })},
      {"matmul_formgraph",
       needs::values,
       none,
       {keeps("matmul_formgraph")},
       on_arrays([](const csr_matrix& a, const csr_matrix& b, pass& c, arguments&) {
         matmul_formgraph(a.n, b.m, a.a, a.ia, a.ja, b.a, b.ia, b.ja, c.ac, c.ic, c.jc);
       })},
      {"csr_matrix_multiply_rvector",
       needs::values,
       none,
       {{"size of y too small in matrix_multiply_rvector", after_stop::kept}},
       [](arguments& of) { csr_matrix_multiply_rvector(of.left, of.values, {}); }},
      {"csr_matrix_trans_mult_rvector",
       needs::values,
       none,
       {{"size of y too small in matrix_trans_mult_rvector", after_stop::kept}},
       [](arguments& of) { csr_matrix_trans_mult_rvector(of.left, of.values, {}); }},
      {"csr_matrix_multiply_ivector",
       any,
       none,
       {{"size of y too small in matrix_multiply_ivector", after_stop::kept}},
       [](arguments& of) { csr_matrix_multiply_ivector(of.left, of.integers, {}); }},
      {"csr_matrix_trans_mult_ivector",
       any,
       none,
       {{"size of y too small in matrix_trans_mult_ivector", after_stop::kept}},
       [](arguments& of) { csr_matrix_trans_mult_ivector(of.left, of.integers, {}); }},
      {"vacant_unit", any, none, {}, [](arguments& of) { of.number = vacant_unit(); }},
      dump("csr_matrix_dump", "formatted"),
      dump("csr_matrix_dump unformatted", "unformatted"),
      dump("csr_matrix_dump dump", "dump"),
      dump("csr_matrix_dump ij", "ij"),
      dump("csr_matrix_dump ija", "ija"),
      dump("csr_matrix_dump_gnuplot", "gnuplot"),
      dump("csr_matrix_dump_gnuplot_ordered", "gnuplot_ordered"),
      dump("csr_matrix_dump_hypergraph", "hypergraph"),
      {"csr_matrix_read",
       any,
       in,
       {cannot("read", ".csr", after_stop::undefined)},
       [](arguments& of) { then_close([&] { csr_matrix_read(of.text, of.result); }); }},
      {"csr_matrix_read unformatted",
       any,
       in,
       {cannot("read", ".csrb", after_stop::undefined)},
       [](arguments& of) {
         then_close([&] { csr_matrix_read(of.binary, of.result, "unformatted"); });
       }},
      {"csr_matrix_load",
       any,
       out,
       {cannot("read", ".csr", after_stop::kept), keeps("csr_matrix_load")},
       [](arguments& of) { csr_matrix_load(of.text, of.result); }},
      {"csr_matrix_load unformatted",
       any,
       out,
       {cannot("read", ".csrb", after_stop::kept), keeps("csr_matrix_load")},
       [](arguments& of) { csr_matrix_load(of.binary, of.result, "unformatted"); }},
      {"csr_matrix_read_market",
       any,
       out,
       {cannot("read", ".mtx", after_stop::kept), keeps("csr_matrix_read_market"), initial_kept,
        allocate_kept, keeps("coo_to_csr_format")},
       [](arguments& of) { csr_matrix_read_market(of.market, of.result); }},
      {"csr_matrix_write_market",
       any,
       none,
       {cannot("write", "", after_stop::kept)},
       [](arguments& of) { csr_matrix_write_market(of.file, of.left); }},
  };
  return table;
}

// -------------------------------------------------------------------------------- the experiment

bool suits(const routine& of, operands which) {
  if (of.operand == needs::values) return which != operands::patterns;
  if (of.operand == needs::patterns) return which == operands::patterns;
  return true;
}

bool in_place(const routine& of) {
  return of.manner == kind::in_place || of.manner == kind::in_new_arrays;
}

arguments prepared_for(const routine& of, operands which, result_record where) {
  arguments made = prepared(which, where);
  if (!in_place(of)) return made;
  made.result = left_matrix(which);
  made.other = {};
  if (where == result_record::shared) csr_matrix_transfer(made.other, made.result);
  return made;
}

// What one call came to, as a caller sees it.
std::string outcome_of(const tests::under_shortage& seen, const arguments& of) {
  return "stop: " + seen.stop.value_or("none") + "\n" + seen.output + outputs_of(of);
}

void expect_releasable(arguments& of) {
  for (csr_matrix* const mat : {&of.result, &of.left, &of.right, &of.p, &of.r, &of.other}) {
    EXPECT_EQ(tests::observe([&] { csr_matrix_deallocate(*mat); }).stop, std::nullopt);
    EXPECT_FALSE(mat->ia.allocated());
  }
}

// The stop that is listed with this message, or null.
const listed_stop* listed(const routine& of, const std::string& message, const std::string& file) {
  for (const listed_stop& each : of.stops) {
    const bool of_file = each.message.compare(0, 4, "FILE") == 0;
    if (message == (of_file ? file + each.message.substr(4) : each.message)) return &each;
  }
  return nullptr;
}

class Shortage : public testing::TestWithParam<routine> {
 protected:
  [[nodiscard]] static std::string outcome_in_plenty(operands which, result_record where) {
    arguments args = prepared_for(GetParam(), which, where);
    return outcome_of(tests::without_shortage([&] { GetParam().call(args); }), args);
  }

  // Refuses request k and all that it entails; false if there was no such request.
  [[nodiscard]] static bool refuse(int k, tests::duration how_long, operands which,
                                   result_record where, const std::string& expected) {
    const routine& of = GetParam();
    arguments args = prepared_for(of, which, where);
    const std::string inputs = inputs_of(args);
    const std::string outputs = outputs_of(args);
    const auto call = [&] { of.call(args); };

    const auto seen = tests::with_shortage(k, how_long, call);
    EXPECT_FALSE(seen.threw);
    EXPECT_EQ(vacant_unit(), 10);

    const std::string outcome = outcome_of(seen, args);
    const listed_stop* const stopped = seen.stop ? listed(of, *seen.stop, args.file) : nullptr;
    if (seen.stop.has_value() && seen.reached) {
      EXPECT_NE(stopped, nullptr) << *seen.stop;
    } else {
      EXPECT_EQ(outcome, expected);
    }
    if (stopped != nullptr && stopped->outputs == after_stop::kept && outcome != expected) {
      EXPECT_EQ(outputs_of(args), outputs);
    }
    if (!in_place(of) || outputs_of(args) == outputs) {
      EXPECT_EQ(outcome_of(tests::without_shortage(call), args), expected) << "the second time";
    }
    if (of.manner != kind::in_place || where != result_record::shared) {
      EXPECT_EQ(inputs_of(args), inputs);
    }
    expect_releasable(args);
    return seen.reached;
  }
};

TEST_P(Shortage, EndsInAListedStopOrChangesNothing) {
  int refused = 0;
  for (const operands which : all_operands) {
    if (!suits(GetParam(), which)) continue;
    for (const result_record where : all_results) {
      if (GetParam().manner == kind::reads_only && where != result_record::fresh) continue;
      const std::string expected = outcome_in_plenty(which, where);
      for (const tests::duration how_long : {tests::duration::once, tests::duration::lasting}) {
        int k = 0;
        do {
          SCOPED_TRACE(testing::Message()
                       << name_of(which) << ", result " << name_of(where) << ", request " << k
                       << (how_long == tests::duration::once ? "" : " and on"));
          ASSERT_LT(k, 1000);
          if (testing::Test::HasFailure()) return;
        } while (refuse(k++, how_long, which, where, expected));
        refused += k - 1;
      }
    }
  }
  RecordProperty("refused", refused);
}

// Where there is no room to grow, the entry is not appended and nobody is told.
TEST(ShortageOfARow, LeavesTheRowAsItWas) {
  for (const tests::duration how_long : {tests::duration::once, tests::duration::lasting})
    for (int k = 0;; ++k) {
      csr_row row;
      ASSERT_TRUE(row.ja.allocate(1) && row.a.allocate(1));
      csr_matrix_extrow(row, 3, 0.5);
      const auto seen = tests::with_shortage(k, how_long, [&] { csr_matrix_extrow(row, 4, 1.5); });
      EXPECT_FALSE(seen.threw);
      EXPECT_EQ(seen.stop, std::nullopt);
      EXPECT_EQ(row.count, seen.reached ? 1 : 2);
      if (!seen.reached) break;
      csr_matrix_extrow(row, 4, 1.5);
      ASSERT_EQ(row.count, 2);
      EXPECT_EQ(row.ja(1), 3);
      EXPECT_EQ(row.ja(2), 4);
      EXPECT_EQ(row.a(1), 0.5);
      EXPECT_EQ(row.a(2), 1.5);
    }
}

// A repeated column makes more classes than there are columns.
TEST(ShortageOfClasses, LeavesTheMatrixAndTheWeightsAsTheyWere) {
  const tests::column_rows rows{{1, 1}, {1}, {2}, {1, 1}, {1}};
  int k = 0;
  for (;; ++k) {
    csr_matrix mat = tests::pattern(3, rows);
    std::vector<std::int32_t> weight{10, 20, 30};
    const auto seen =
        tests::with_shortage(k, tests::duration::once, [&] { csr_matrix_condense(mat, weight); });
    EXPECT_FALSE(seen.threw);
    if (!seen.reached || seen.stop != "allocation error in csr_matrix_condense") break;
    EXPECT_EQ(tests::columns_of(mat), rows);
    EXPECT_EQ(mat.m, 3);
    EXPECT_EQ(weight, (std::vector<std::int32_t>{10, 20, 30}));
  }
  EXPECT_EQ(k, 7);  // columns, classes, more of them, what is kept of both; then the matrix is cut
}

// What is returned as text is a std::string, which tells of a shortage as it always does.
TEST(ShortageOfText, IsThatOfAString) {
  const csr_matrix bad = tests::pattern(2, {{1}, {2, 3}});
  const std::function<void()> calls[] = {[] { (void)int2str(7, 40); },
                                         [&] { (void)csr_matrix_check(bad); }};
  for (const auto& call : calls)
    for (int k = 0;; ++k) {
      const auto seen = tests::with_shortage(k, tests::duration::once, call);
      EXPECT_EQ(seen.threw, seen.reached);
      EXPECT_EQ(seen.stop, std::nullopt);
      if (!seen.reached) break;
    }
  EXPECT_EQ(csr_matrix_check(bad).value_or("well formed"), "row 2 has column 3, outside 1 to 2");
}

std::string test_name_of(const testing::TestParamInfo<routine>& info) {
  std::string name = info.param.name;
  std::replace(name.begin(), name.end(), ' ', '_');
  return name;
}

INSTANTIATE_TEST_SUITE_P(Of, Shortage, testing::ValuesIn(routines()), test_name_of);

}  // namespace
