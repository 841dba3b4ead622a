// SPDX-License-Identifier: MIT
#include "market_header.hpp"

#include <algorithm>

namespace csr_matrix_mod {

namespace {

constexpr std::string_view whole_header = "'%%MatrixMarket matrix FORMAT FIELD SYMMETRY'";

constexpr char lower(char c) { return 'A' <= c && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool is_word(std::string_view text, std::string_view word) {
  return std::equal(text.begin(), text.end(), word.begin(), word.end(),
                    [](char c, char w) { return lower(c) == lower(w); });
}

template <class Kind>
struct known_word {
  std::string_view text;
  Kind kind;
};

constexpr known_word<market_layout> layouts[] = {{"coordinate", market_layout::coordinate},
                                                 {"array", market_layout::array}};
constexpr known_word<market_field> fields[] = {{"real", market_field::real},
                                               {"double", market_field::real},
                                               {"integer", market_field::integer},
                                               {"pattern", market_field::pattern}};
constexpr known_word<market_symmetry> symmetries[] = {
    {"general", market_symmetry::general},
    {"symmetric", market_symmetry::symmetric},
    {"skew-symmetric", market_symmetry::skew_symmetric}};

template <class Kind, std::size_t count>
Kind kind_of(const market_lines& lines, std::size_t k, const known_word<Kind> (&words)[count],
             std::string_view expected) {
  for (const known_word<Kind>& word : words)
    if (is_word(lines.field(k), word.text)) return word.kind;
  lines.refuse_quoted(expected, lines.field(k));
}

}  // namespace

market_header read_market_header(market_lines& lines) {
  if (!lines.next_line()) lines.refuse_end(whole_header);
  if (lines.fields() < 5 || !is_word(lines.field(1), "%%MatrixMarket"))
    lines.refuse_quoted(whole_header, lines.text());
  if (!is_word(lines.field(2), "matrix")) lines.refuse_quoted("matrix", lines.field(2));
  const market_header header = {
      kind_of(lines, 3, layouts, "coordinate or array"),
      kind_of(lines, 4, fields, "real, integer or pattern"),
      kind_of(lines, 5, symmetries, "general, symmetric or skew-symmetric")};
  if (lines.fields() > 5) lines.refuse_quoted("the end of the line", lines.field(6));

  // A pattern has no values that an array could list or a sign could change.
  const bool pattern = header.field == market_field::pattern;
  if (pattern && header.layout == market_layout::array)
    lines.refuse_quoted("real or integer after array", lines.field(4));
  if (pattern && header.symmetry == market_symmetry::skew_symmetric)
    lines.refuse_quoted("general or symmetric after pattern", lines.field(5));
  return header;
}

}  // namespace csr_matrix_mod
