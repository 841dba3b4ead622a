// SPDX-License-Identifier: MIT
// The two fields of the matrix file, i10 and g20.8, the quick way: the forms that nearly all fields
// have are written and read several digits at a time, line after line; every other form goes the
// general way of fields.hpp. The bytes and the bits are the same.
#pragma once

#include "fields.hpp"

namespace csr_matrix_mod {

inline constexpr int i10_columns = 10;
inline constexpr int g20_8_columns = 20;

// As put_integer(to, value, 10) and put_general(to, value, g20_8).
char* put_i10(char* to, std::int32_t value) noexcept;
char* put_g20_8(char* to, double value) noexcept;

// `count` of them, each the whole of a line. Returns the end of the last line.
char* put_i10_lines(char* to, const std::int32_t* values, std::int64_t count) noexcept;
char* put_g20_8_lines(char* to, const double* values, std::int64_t count) noexcept;

// The number in the columns from `field` on if it has the form that is written: blanks and up to 8
// digits, or 8 digits with a point and an exponent of two digits at most. Nothing for any other
// form, which `integer_in` and `value_in` judge.
[[nodiscard]] std::optional<std::int32_t> quick_i10(const char* field) noexcept;
[[nodiscard]] std::optional<double> quick_g20_8(const char* field) noexcept;

// Reads up to `count` lines of `text`, each of them such a field and nothing else. Returns how many
// it read: it stops where the text ends, at a line of any other form and at an integer outside of
// `least` to `most`, and leaves that line to the general way.
[[nodiscard]] std::int64_t quick_i10_lines(std::string_view text, std::int32_t* to,
                                           std::int64_t count, std::int32_t least,
                                           std::int32_t most) noexcept;
[[nodiscard]] std::int64_t quick_g20_8_lines(std::string_view text, double* to,
                                             std::int64_t count) noexcept;

}  // namespace csr_matrix_mod
