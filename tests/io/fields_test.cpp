// SPDX-License-Identifier: MIT
// Numbers in fields, byte for byte and bit for bit against Fortran programs.
#include "../../src/support/fields.hpp"
#include "../../src/support/free_layout.hpp"

#include "../support/files.hpp"
#include "../support/process.hpp"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

using csr_matrix_mod::free_layout;
using csr_matrix_mod::g12_4;
using csr_matrix_mod::g20_8;
using csr_matrix_mod::general_form;
using csr_matrix_mod::integer_in;
using csr_matrix_mod::put_general;
using csr_matrix_mod::put_integer;
using csr_matrix_mod::truth_in;
using csr_matrix_mod::value_in;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double not_a_number = std::numeric_limits<double>::quiet_NaN();

std::string integer_text(std::int32_t value, int width) {
  char field[32];
  return {field, put_integer(field, value, width)};
}

std::string general_text(double value, const general_form& form) {
  char field[32];
  return {field, put_general(field, value, form)};
}

std::string g20(double value) { return general_text(value, g20_8); }
std::string g12(double value) { return general_text(value, g12_4); }

// What each line of `text` is to a Fortran program.
std::vector<std::string> lines_of(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

std::vector<std::string> read_by_fortran(const std::string& kind,
                                         const std::vector<std::string>& lines) {
  const tests::temporary_folder folder;
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  tests::write_file(folder.path("in"), text);
  const tests::process_result run =
      tests::run_process({FORTRAN_FIELDS, kind, folder.path("in"), folder.path("out")});
  EXPECT_EQ(run.status, 0) << run.err;
  return lines_of(tests::read_file(folder.path("out")));
}

std::string integer_read(const std::string& line) {
  const auto value = integer_in(std::string_view(line).substr(0, 10));
  return value ? std::to_string(*value) : "refused";
}

std::string value_read(const std::string& line) {
  const auto value = value_in(std::string_view(line).substr(0, 20), 8);
  if (!value) return "refused";
  char bits[17];
  std::snprintf(bits, sizeof bits, "%016llX",
                static_cast<unsigned long long>(std::bit_cast<std::uint64_t>(*value)));
  return bits;
}

std::string truth_read(const std::string& line) {
  const auto truth = truth_in(line);
  return !truth ? "refused" : *truth ? "T" : "F";
}

template <class Read>
void expect_read_as_by_fortran(const std::string& kind, const std::vector<std::string>& lines,
                               const Read& read) {
  const std::vector<std::string> expected = read_by_fortran(kind, lines);
  ASSERT_EQ(expected.size(), lines.size());
  for (std::size_t k = 0; k < lines.size(); ++k)
    EXPECT_EQ(read(lines[k]), expected[k]) << "'" << lines[k] << "'";
}

// Lines that look like numbers, more or less.
std::vector<std::string> scribbles(std::string_view letters, std::size_t longest,
                                   std::size_t count) {
  std::mt19937_64 random(20240229);
  std::vector<std::string> lines;
  for (std::size_t k = 0; k < count; ++k) {
    std::string line;
    for (std::size_t length = random() % (longest + 1); line.size() < length;)
      line += letters[random() % letters.size()];
    lines.push_back(line);
  }
  return lines;
}

TEST(IntegerField, IsRightJustified) {
  EXPECT_EQ(integer_text(0, 10), "         0");
  EXPECT_EQ(integer_text(-12, 10), "       -12");
  EXPECT_EQ(integer_text(2147483647, 10), "2147483647");
  EXPECT_EQ(integer_text(12345678, 8), "12345678");
}

TEST(IntegerField, IsFilledWithAsterisksWhenTheNumberDoesNotFit) {
  EXPECT_EQ(integer_text(std::numeric_limits<std::int32_t>::min(), 10), "**********");
  EXPECT_EQ(integer_text(123456789, 8), "********");
}

TEST(GeneralField, IsFixedNotationFromOneTenthOn) {
  EXPECT_EQ(g20(1.5), "       1.5000000    ");
  EXPECT_EQ(g20(0.25), "      0.25000000    ");
  EXPECT_EQ(g20(12345.678), "       12345.678    ");
  EXPECT_EQ(g20(12345678.0), "       12345678.    ");
  EXPECT_EQ(g20(-0.1), "     -0.10000000    ");
  EXPECT_EQ(g12(1.5), "   1.500    ");
  EXPECT_EQ(g12(9999.0), "   9999.    ");
}

TEST(GeneralField, WritesZeroInFixedNotationWithItsSign) {
  EXPECT_EQ(g20(0.0), "       0.0000000    ");
  EXPECT_EQ(g20(-0.0), "      -0.0000000    ");
  EXPECT_EQ(g12(0.0), "   0.000    ");
}

TEST(GeneralField, IsExponentFormElsewhere) {
  EXPECT_EQ(g20(0.001), "      0.10000000E-02");
  EXPECT_EQ(g20(-1e8), "     -0.10000000E+09");
  EXPECT_EQ(g12(10000.0), "  0.1000E+05");
}

TEST(GeneralField, DropsTheLetterForAnExponentOfThreeDigits) {
  EXPECT_EQ(g20(1e100), "      0.10000000+101");
  EXPECT_EQ(g12(-1e-101), " -0.1000-100");
  EXPECT_EQ(g20(1e98), "      0.10000000E+99");
  EXPECT_EQ(g20(5e-324), "      0.49406565-323");
}

TEST(GeneralField, RoundsAValueJustBelowAPowerOfTenUpToIt) {
  EXPECT_EQ(g12(9.9995), "   10.00    ");
  EXPECT_EQ(g20(9.99999995), "       10.000000    ");
  EXPECT_EQ(g20(0.0999999995), "      0.10000000    ");
  EXPECT_EQ(g20(99999999.6), "      0.10000000E+09");
}

TEST(GeneralField, SpellsWhatIsNoNumber) {
  EXPECT_EQ(g20(not_a_number), "                 NaN");
  EXPECT_EQ(g20(infinity), "            Infinity");
  EXPECT_EQ(g12(-infinity), "   -Infinity");
}

// The numbers next to `value` on both sides.
void add_neighbours(std::vector<double>& values, double value) {
  const auto bits = std::bit_cast<std::int64_t>(value);
  for (std::int64_t step = -30; step <= 30; ++step) {
    values.push_back(std::bit_cast<double>(bits + step));
    values.push_back(-values.back());
  }
}

std::vector<double> telling_values() {
  std::vector<double> values = {0.0,       -0.0,         infinity,
                                -infinity, not_a_number, 5e-324,
                                9.9995,    2.2e-308,     1.7976931348623157e308};
  for (int k = -3; k <= 20; ++k) {
    const double power = std::pow(10.0, k);
    add_neighbours(values, power);
    for (const int digits : {4, 8, 17})
      add_neighbours(values, power - 0.5 * std::pow(10.0, k - digits));
  }
  for (int k = -323; k <= 308; ++k) values.push_back(std::pow(10.0, k));
  std::mt19937_64 random(42);
  for (int k = 0; k < 20000; ++k) values.push_back(std::bit_cast<double>(random()));
  for (int k = 0; k < 20000; ++k)
    values.push_back(std::ldexp(static_cast<double>(random() >> 11), int(random() % 80) - 60));
  for (double& value : values)
    if (std::isnan(value)) value = not_a_number;
  return values;
}

TEST(GeneralField, GivesTheBytesOfAFortranProgram) {
  SKIP_WITHOUT(FORTRAN_VALUES);
  const tests::temporary_folder folder;
  const std::vector<double> values = telling_values();
  tests::write_file(folder.path("bits"),
                    {reinterpret_cast<const char*>(values.data()), values.size() * sizeof(double)});
  const tests::process_result run =
      tests::run_process({FORTRAN_VALUES, folder.path("bits"), folder.path("lines")});
  ASSERT_EQ(run.status, 0) << run.err;
  const std::vector<std::string> expected = lines_of(tests::read_file(folder.path("lines")));
  ASSERT_EQ(expected.size(), 3 * values.size());
  for (std::size_t k = 0; k < values.size(); ++k) {
    std::string line;
    free_layout layout(line);
    layout.put("row ");
    layout.put(1);
    layout.put(" = ");
    layout.put(values[k]);
    layout.put(values[k]);
    EXPECT_EQ(g20(values[k]), expected[3 * k]);
    EXPECT_EQ(g12(values[k]), expected[3 * k + 1]);
    EXPECT_EQ(line, expected[3 * k + 2]);
  }
}

TEST(IntegerField, IgnoresBlanksWhereverTheyStand) {
  EXPECT_EQ(integer_in("  1 2 3   "), 123);
  EXPECT_EQ(integer_in("- 5"), -5);
  EXPECT_EQ(integer_in("+5"), 5);
}

TEST(IntegerField, OfBlanksIsZero) {
  EXPECT_EQ(integer_in(""), 0);
  EXPECT_EQ(integer_in("          "), 0);
}

TEST(IntegerField, EndsWithAComma) {
  EXPECT_EQ(integer_in("12,34"), 12);
  EXPECT_EQ(integer_in(",5"), 0);
}

TEST(IntegerField, MustFit32Bits) {
  EXPECT_EQ(integer_in("2147483647"), 2147483647);
  EXPECT_EQ(integer_in("2147483648"), std::nullopt);
  EXPECT_EQ(integer_in("-2147483648"), std::numeric_limits<std::int32_t>::min());
  EXPECT_EQ(integer_in("-2147483649"), std::nullopt);
  EXPECT_EQ(integer_in("99999999999999999999999"), std::nullopt);
}

TEST(IntegerField, OfAnythingElseIsRefused) {
  for (const char* const text : {"-", "+", "1.0", "1e3", "a", "--5", "5-", "\t5", "0x10"})
    EXPECT_EQ(integer_in(text), std::nullopt) << text;
}

TEST(IntegerField, IsReadAsByAFortranProgram) {
  SKIP_WITHOUT(FORTRAN_FIELDS);
  std::vector<std::string> lines = scribbles("0123456789 +-,", 14, 4000);
  const std::vector<std::string> more = scribbles("0123456789     -,.e", 12, 4000);
  lines.insert(lines.end(), more.begin(), more.end());
  expect_read_as_by_fortran("integer", lines, integer_read);
}

TEST(ValueField, HasImpliedDecimalsWithoutAPoint) {
  EXPECT_EQ(value_in("150000000", 8), 1.5);
  EXPECT_EQ(value_in("15", 8), 1.5e-7);
  EXPECT_EQ(value_in("15E3", 8), 1.5e-4);
  EXPECT_EQ(value_in("15.", 8), 15.0);
}

TEST(ValueField, MayHaveAnExponentOfAnyLetterOrNone) {
  for (const char* const text :
       {"1.5E3", "1.5e+3", "1.5d3", "1.5D+03", "1.5q3", "1.5Q3", "1.5+3", "1.5 E 3", "1 . 5 + 3"})
    EXPECT_EQ(value_in(text, 8), 1500.0) << text;
  EXPECT_EQ(value_in("1.5-3", 8), 0.0015);
}

TEST(ValueField, OfBlanksIsZero) { EXPECT_EQ(value_in("    ", 8), 0.0); }

TEST(ValueField, ReadsInfinitiesAndNaNs) {
  for (const char* const text : {"inf", "INF", "+Infinity", "infinity  ", "inf 5"})
    EXPECT_EQ(value_in(text, 8), infinity) << text;
  EXPECT_EQ(value_in("-Infinity", 8), -infinity);
  for (const char* const text : {"NaN", "nan", "nan()", "NAN(12)", "nan x"})
    EXPECT_TRUE(std::isnan(value_in(text, 8).value_or(0.0))) << text;
}

TEST(ValueField, BeyondTheRangeIsInfiniteOrZero) {
  EXPECT_EQ(value_in("1.5E400", 8), infinity);
  EXPECT_EQ(value_in("-1.5E400", 8), -infinity);
  EXPECT_EQ(value_in("1.5E-400", 8), 0.0);
  EXPECT_EQ(value_in("4.9E-324", 8), 5e-324);
}

TEST(ValueField, OfAnythingElseIsRefused) {
  for (const char* const text : {"x", "1.5E", "1.5+", "1.2.3", "infin", "nanx", "nan(", "i n f",
                                 "1.5E99999", "\t1.5", "1.5;", "0x10", "1.5E3.2"})
    EXPECT_EQ(value_in(text, 8), std::nullopt) << text;
}

TEST(ValueField, IsReadAsByAFortranProgram) {
  SKIP_WITHOUT(FORTRAN_FIELDS);
  std::vector<std::string> lines = scribbles("0123456789.+-eE ,", 22, 8000);
  for (const std::string_view letters :
       {"0123456789012345678901234567890123456789.+-dqEDQ ", "inftyINFTY -+", "nanNaN1a -",
        "0123456789", "00000000000000.1E-"}) {
    const std::vector<std::string> more = scribbles(letters, 22, 4000);
    lines.insert(lines.end(), more.begin(), more.end());
  }
  std::mt19937_64 random(7);
  for (int k = 0; k < 8000; ++k) {  // what numbers usually look like
    char line[64];
    std::snprintf(line, sizeof line, "%.*g", int(random() % 14) + 1,
                  std::ldexp(static_cast<double>(random() >> 11), int(random() % 300) - 200));
    lines.emplace_back(line);
  }
  for (const std::string word : {"inf", "-infinity", "nan", "nan(", "nan(1)", " + NaN"})
    for (const std::string& rest : scribbles("ab1  ,", 6, 200)) lines.push_back(word + rest);
  for (const char* const word :
       {"inf", "infinity", "nan", "nan(1)", "-inf", "+infinity ", "nan(a", "inf inity", "- nan",
        "nan(1)-", "nan(1)(", "nan(-)", "nan(", "nan(a b)"})
    lines.emplace_back(word);
  expect_read_as_by_fortran("value", lines, value_read);
}

TEST(TruthField, IsToldByItsFirstLetter) {
  for (const char* const text : {"T", " t", ".t.", ".TRUE.", "  true", "T,", "\tT", "tx", ".Tall"})
    EXPECT_EQ(truth_in(text), true) << text;
  for (const char* const text : {"F", " f", ".f.", ".false.", "False and more", "F/"})
    EXPECT_EQ(truth_in(text), false) << text;
}

TEST(TruthField, OfAnythingElseIsRefused) {
  for (const char* const text : {"", " ", ".", "x", "1", "0", "..T", ". T", "yes", "'T'", "!T"})
    EXPECT_EQ(truth_in(text), std::nullopt) << text;
}

TEST(TruthField, IsReadAsByAFortranProgram) {
  SKIP_WITHOUT(FORTRAN_FIELDS);
  expect_read_as_by_fortran(
      "truth",
      {"T",   "F",   " t",  "\tf", ".T",     ".f",     ".true.", ".FALSE.", "true", "falsch",
       "T F", "F T", "T,F", "f/",  "tx",     "T5",     ".Tx",    ".t5.",    "x",    "..T",
       ". T", "'T'", "!T",  "yes", "T ! no", ".falsE", "TRUE.",  "F."},
      truth_read);
}

}  // namespace
