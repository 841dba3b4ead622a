// SPDX-License-Identifier: MIT
// The quick fields of the matrix file against the general ones, over millions of numbers and forms.
#include "../../src/support/matrix_fields.hpp"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace {

using csr_matrix_mod::g20_8;
using csr_matrix_mod::g20_8_columns;
using csr_matrix_mod::i10_columns;
using csr_matrix_mod::integer_in;
using csr_matrix_mod::put_g20_8;
using csr_matrix_mod::put_g20_8_lines;
using csr_matrix_mod::put_general;
using csr_matrix_mod::put_i10;
using csr_matrix_mod::put_i10_lines;
using csr_matrix_mod::put_integer;
using csr_matrix_mod::quick_g20_8;
using csr_matrix_mod::quick_g20_8_lines;
using csr_matrix_mod::quick_i10;
using csr_matrix_mod::quick_i10_lines;
using csr_matrix_mod::value_in;

// A field and the bytes behind it, which no writer may touch and no reader may need.
struct field {
  std::array<char, 24> bytes = [] {
    std::array<char, 24> all{};
    all.fill('#');
    return all;
  }();
  bool operator==(const field&) const = default;
  [[nodiscard]] std::string_view text(int columns) const {
    return {bytes.data(), static_cast<std::size_t>(columns)};
  }
};

field general_value(double value) {
  field to;
  put_general(to.bytes.data(), value, g20_8);
  return to;
}

field general_integer(std::int32_t value) {
  field to;
  put_integer(to.bytes.data(), value, i10_columns);
  return to;
}

// False, told once, if the ways differ: a million assertions would take their time.
bool value_is_written_alike(double value) {
  field quick;
  const bool all_columns =
      put_g20_8(quick.bytes.data(), value) == quick.bytes.data() + g20_8_columns;
  const bool same = all_columns && quick == general_value(value);
  EXPECT_TRUE(same) << std::hexfloat << value << " '" << quick.text(g20_8_columns) << "'";
  return same;
}

bool integer_is_written_alike(std::int32_t value) {
  field quick;
  const bool all_columns = put_i10(quick.bytes.data(), value) == quick.bytes.data() + i10_columns;
  const bool same = all_columns && quick == general_integer(value);
  EXPECT_TRUE(same) << value << " '" << quick.text(i10_columns) << "'";
  return same;
}

// Nothing from the quick way, or the bits of the general one.
bool value_is_read_alike(const field& from) {
  const auto quick = quick_g20_8(from.bytes.data());
  if (!quick) return true;
  const auto general = value_in(from.text(g20_8_columns), 8);
  const bool same =
      general && std::bit_cast<std::uint64_t>(*quick) == std::bit_cast<std::uint64_t>(*general);
  EXPECT_TRUE(same) << "'" << from.text(g20_8_columns) << "'";
  return same;
}

bool integer_is_read_alike(const field& from) {
  const auto quick = quick_i10(from.bytes.data());
  const bool same = !quick || quick == integer_in(from.text(i10_columns));
  EXPECT_TRUE(same) << "'" << from.text(i10_columns) << "'";
  return same;
}

// Numbers around `value`, of both signs.
template <class Check>
bool neighbours(double value, std::int64_t reach, const Check& check) {
  const auto bits = std::bit_cast<std::int64_t>(value);
  for (std::int64_t step = -reach; step <= reach; ++step) {
    const auto near = std::bit_cast<double>(bits + step);
    if (!check(near) || !check(-near)) return false;
  }
  return true;
}

TEST(QuickValue, IsWrittenAsTheGeneralOneNextToPowersOfTenAndTheirLimits) {
  for (int k = -60; k <= 60; ++k) {
    const double power = std::pow(10.0, k);
    ASSERT_TRUE(neighbours(power, 200, value_is_written_alike));
    ASSERT_TRUE(neighbours(power * (1.0 - 0.5e-8), 200, value_is_written_alike));
  }
  for (int k = -1; k <= 8; ++k)
    ASSERT_TRUE(neighbours(csr_matrix_mod::rounds_to_power(k, 8), 2000, value_is_written_alike));
  for (int exponent = -1070; exponent <= 1023; ++exponent)
    ASSERT_TRUE(neighbours(std::ldexp(1.0, exponent), 2, value_is_written_alike));
}

TEST(QuickValue, IsWrittenAsTheGeneralOneWhereNineDigitsEndInFive) {
  std::mt19937_64 random(5);
  for (int k = 0; k < 40000; ++k) {
    const double digits = static_cast<double>(10'000'000 + random() % 90'000'000) + 0.5;
    const int power = static_cast<int>(random() % 45) - 22;
    const double scale = std::pow(10.0, std::abs(power));
    ASSERT_TRUE(neighbours(power < 0 ? digits / scale : digits * scale, 2, value_is_written_alike));
    ASSERT_TRUE(neighbours(std::ldexp(digits, power), 2, value_is_written_alike));
  }
}

TEST(QuickValue, IsWrittenAsTheGeneralOneForAnyBits) {
  std::mt19937_64 random(6);
  for (int k = 0; k < 300000; ++k) {
    const std::uint64_t bits = random();
    ASSERT_TRUE(value_is_written_alike(std::bit_cast<double>(bits)));
    const auto mantissa = static_cast<double>(bits >> 11);
    ASSERT_TRUE(value_is_written_alike(std::ldexp(mantissa, int(random() % 240) - 190)));
    ASSERT_TRUE(value_is_written_alike(std::ldexp(-mantissa, int(random() % 60) - 80)));
  }
  for (const double value :
       {0.0, 5e-324, std::numeric_limits<double>::max(), std::numeric_limits<double>::infinity(),
        std::numeric_limits<double>::quiet_NaN()})
    ASSERT_TRUE(value_is_written_alike(value) && value_is_written_alike(-value));
}

TEST(QuickValue, IsReadBackFromWhateverIsWritten) {
  std::mt19937_64 random(7);
  int quick = 0;
  for (int k = 0; k < 300000; ++k) {
    const auto mantissa = static_cast<double>(random() >> 11);
    const double size = std::ldexp(mantissa, int(random() % 160) - 130);
    const field from = general_value(random() % 2 != 0 ? size : -size);
    ASSERT_TRUE(value_is_read_alike(from));
    ASSERT_TRUE(value_is_read_alike(general_value(std::bit_cast<double>(random()))));
    quick += quick_g20_8(from.bytes.data()) ? 1 : 0;
  }
  EXPECT_GT(quick, 200000);
}

TEST(QuickValue, OfZeroKeepsItsSign) {
  EXPECT_EQ(std::bit_cast<std::uint64_t>(quick_g20_8("      -0.0000000    ").value_or(1.0)),
            std::bit_cast<std::uint64_t>(-0.0));
  EXPECT_EQ(std::bit_cast<std::uint64_t>(quick_g20_8("       0.0000000    ").value_or(1.0)), 0U);
}

// A written field with some of its bytes replaced: most are no longer what the quick way knows.
template <class Check>
void spoil(const field& written, int columns, std::mt19937_64& random, const Check& check) {
  constexpr std::string_view letters = "0123456789 .,+-EeDd\n\r\t/:\x80\xff";
  field spoilt = written;
  for (std::uint64_t changes = 1 + random() % 3; changes > 0; --changes)
    spoilt.bytes[random() % static_cast<std::uint64_t>(columns)] =
        letters[random() % letters.size()];
  check(spoilt);
}

TEST(QuickFields, AreReadAsTheGeneralOnesWhateverIsSpoilt) {
  std::mt19937_64 random(8);
  for (int k = 0; k < 300000; ++k) {
    const double size = std::ldexp(static_cast<double>(random() >> 11), int(random() % 80) - 90);
    spoil(general_value(random() % 2 != 0 ? size : -size), g20_8_columns, random,
          [](const field& from) { ASSERT_TRUE(value_is_read_alike(from)); });
    spoil(general_integer(static_cast<std::int32_t>(random() >> (33 + random() % 30))), i10_columns,
          random, [](const field& from) { ASSERT_TRUE(integer_is_read_alike(from)); });
  }
}

// Where the line ends before the field does, the quick ways must see it.
TEST(QuickFields, HoldNoLineFeed) {
  for (std::size_t column = 0; column < 20; ++column)
    for (const double value : {1.5, -0.25, 12345678.0, 1e-5, 0.0}) {
      field from = general_value(value);
      from.bytes[column] = '\n';
      EXPECT_EQ(quick_g20_8(from.bytes.data()), std::nullopt) << column;
    }
  for (std::size_t column = 0; column < 10; ++column)
    for (const std::int32_t value : {0, 7, 12345678}) {
      field from = general_integer(value);
      from.bytes[column] = '\n';
      EXPECT_EQ(quick_i10(from.bytes.data()), std::nullopt) << column;
    }
}

TEST(QuickInteger, IsWrittenAndReadAsTheGeneralOne) {
  std::mt19937_64 random(9);
  const auto check = [](std::int32_t value) {
    return integer_is_written_alike(value) && integer_is_read_alike(general_integer(value));
  };
  for (int k = 0; k < 500000; ++k) {
    const auto size = static_cast<std::int32_t>(random() >> (33 + random() % 31));
    ASSERT_TRUE(check(size) && check(-size));
  }
  for (std::int64_t power = 1; power <= 1'000'000'000; power *= 10)
    for (std::int64_t step = -2; step <= 2; ++step) {
      ASSERT_TRUE(check(static_cast<std::int32_t>(power + step)));
      ASSERT_TRUE(check(static_cast<std::int32_t>(-power - step)));
    }
  ASSERT_TRUE(check(std::numeric_limits<std::int32_t>::max()));
  ASSERT_TRUE(check(std::numeric_limits<std::int32_t>::min()));
  EXPECT_EQ(quick_i10("         0"), 0);
  EXPECT_EQ(quick_i10("  99999999"), 99999999);
  EXPECT_EQ(quick_i10("          "), 0);
}

std::string lines_of(const std::vector<double>& values) {
  std::string text(21 * values.size(), '#');
  EXPECT_EQ(put_g20_8_lines(text.data(), values.data(), std::ssize(values)),
            text.data() + text.size());
  return text;
}

std::string lines_of(const std::vector<std::int32_t>& values) {
  std::string text(11 * values.size(), '#');
  EXPECT_EQ(put_i10_lines(text.data(), values.data(), std::ssize(values)),
            text.data() + text.size());
  return text;
}

TEST(QuickLines, AreFieldsOneBelowTheOther) {
  EXPECT_EQ(lines_of(std::vector<std::int32_t>{7, -1, 2147483647, 0}),
            "         7\n        -1\n2147483647\n         0\n");
  EXPECT_EQ(lines_of(std::vector<double>{1.5, -0.0, 1e-200, -12345678}),
            "       1.5000000    \n      -0.0000000    \n      0.10000000-199\n"
            "      -12345678.    \n");
  EXPECT_EQ(lines_of(std::vector<double>{}), "");
}

// However many there are, and wherever among them those stand that only the general way decides.
TEST(QuickLines, OfValuesAreTheGeneralFieldsOneBelowTheOther) {
  std::mt19937_64 random(10);
  const std::array<double, 6> undecided = {0.123456785,
                                           -1.5e-200,
                                           5e-324,
                                           1e300,
                                           std::numeric_limits<double>::infinity(),
                                           std::numeric_limits<double>::quiet_NaN()};
  for (std::size_t count = 1; count <= 13; ++count)
    for (int k = 0; k < 200; ++k) {
      std::vector<double> values(count);
      for (double& value : values)
        value = random() % 8 == 0
                    ? undecided[random() % undecided.size()]
                    : std::ldexp(static_cast<double>(random() >> 11), -53 - int(random() % 20));
      std::string expected;
      for (const double value : values)
        expected.append(general_value(value).text(g20_8_columns)).append("\n");
      ASSERT_EQ(lines_of(values), expected);
    }
}

TEST(QuickLines, AreTakenUpToTheFirstThatIsNotWhole) {
  const std::string text = lines_of(std::vector<std::int32_t>{5, 60, 700});
  std::array<std::int32_t, 4> to = {-1, -1, -1, -1};
  EXPECT_EQ(quick_i10_lines(text, to.data(), 4, 1, 1000), 3);
  EXPECT_EQ(to, (std::array<std::int32_t, 4>{5, 60, 700, -1}));
  EXPECT_EQ(quick_i10_lines(text, to.data(), 2, 1, 1000), 2);
  EXPECT_EQ(quick_i10_lines(text.substr(0, text.size() - 1), to.data(), 4, 1, 1000), 2);
  EXPECT_EQ(quick_i10_lines("", to.data(), 4, 1, 1000), 0);
}

TEST(QuickLines, AreTakenUpToTheFirstOfAnotherFormOrOutOfBounds) {
  const std::string text = lines_of(std::vector<std::int32_t>{5, 60, 700});
  std::array<std::int32_t, 3> to = {-1, -1, -1};
  EXPECT_EQ(quick_i10_lines(text, to.data(), 3, 6, 1000), 0);
  EXPECT_EQ(quick_i10_lines(text, to.data(), 3, 5, 699), 2);
  EXPECT_EQ(to, (std::array<std::int32_t, 3>{5, 60, -1}));  // left to the general way
  for (const std::size_t column : {10U, 11U, 15U, 20U, 21U}) {
    std::string spoilt = text;
    spoilt[column] = '*';
    EXPECT_EQ(quick_i10_lines(spoilt, to.data(), 3, 1, 1000), column < 11 ? 0 : 1) << column;
  }
}

TEST(QuickLines, OfValuesAreTakenUpToTheFirstOfAnotherForm) {
  const std::string text = lines_of(std::vector<double>{1.5, -2e-7, 1e30, 4});
  std::array<double, 4> to = {9, 9, 9, 9};
  EXPECT_EQ(quick_g20_8_lines(text, to.data(), 4), 2);  // 1e23 and 1e-23 are no doubles
  EXPECT_EQ(to, (std::array<double, 4>{1.5, -2e-7, 9, 9}));
  EXPECT_EQ(quick_g20_8_lines(std::string_view(text).substr(63), to.data(), 4), 1);
  EXPECT_EQ(quick_g20_8_lines(std::string_view(text).substr(0, 41), to.data(), 4), 1);
}

}  // namespace
