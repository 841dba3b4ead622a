// SPDX-License-Identifier: MIT
// Numbers in fields of fixed width, as a Fortran processor writes and reads them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace csr_matrix_mod {

// The decimal text of `value`, right-justified in `width` columns from `to` on; all asterisks if it
// does not fit. Returns the column after the field.
char* put_integer(char* to, std::int32_t value, int width) noexcept;

// General editing: fixed notation with `digits` significant digits and as many blanks behind as an
// exponent takes, or exponent form where the magnitude is below 0.1 or has more digits.
struct general_form {
  int width;
  int digits;            // at most 17
  int digits_in_front;   // in exponent form: 0 for 0.15E+01, 1 for 1.5E+000
  int exponent_columns;  // the letter and the sign included
};
inline constexpr general_form g20_8{20, 8, 0, 4};
inline constexpr general_form g12_4{12, 4, 0, 4};
inline constexpr general_form list_directed{25, 17, 1, 5};
char* put_general(char* to, double value, const general_form& form) noexcept;

// 10 to the power of -1, 0, 1, ...
inline constexpr std::array<double, 19> powers_of_ten = {1e-1, 1e0,  1e1,  1e2,  1e3,  1e4,  1e5,
                                                         1e6,  1e7,  1e8,  1e9,  1e10, 1e11, 1e12,
                                                         1e13, 1e14, 1e15, 1e16, 1e17};

// The smallest magnitude that general editing takes for 10**k when it keeps `digits` digits.
constexpr double rounds_to_power(int k, int digits) noexcept {
  const double half_of_last_digit = 0.5 / powers_of_ten[static_cast<std::size_t>(digits + 1)];
  return powers_of_ten[static_cast<std::size_t>(k + 1)] * (1.0 - half_of_last_digit);
}

// The number that the columns of a field hold, or nothing if they hold none. Blanks are ignored,
// blanks alone are 0, and a comma ends the field.
[[nodiscard]] std::optional<std::int32_t> integer_in(std::string_view columns) noexcept;

// As above. Without a decimal point the last `implied_digits` digits are the fraction; an exponent
// has a letter (E, D or Q), a sign, or both.
[[nodiscard]] std::optional<double> value_in(std::string_view columns, int implied_digits) noexcept;

// The truth value that a line in free form begins with: T, F, .T or .F in either case, whatever
// follows.
[[nodiscard]] std::optional<bool> truth_in(std::string_view line) noexcept;

// Blanks, tabs and carriage returns.
inline constexpr std::string_view blanks = " \t\r";

// Nothing but blanks?
[[nodiscard]] bool is_blank(std::string_view line) noexcept;

}  // namespace csr_matrix_mod
