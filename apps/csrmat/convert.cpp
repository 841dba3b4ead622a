// SPDX-License-Identifier: MIT
#include "command.hpp"
#include "files.hpp"

#include <memory>

namespace csrmat {

namespace {

struct conversion {
  std::string in;
  std::string out;
  std::string from;
  std::string to;
};

std::optional<file_kind> kind_of_word(const std::map<std::string, file_kind>& kinds,
                                      const std::string& word) {
  if (word.empty()) return {};
  return kinds.at(word);
}

void convert(const conversion& what) {
  const file_kind to = output_kind(what.out, kind_of_word(writable_kinds(), what.to));
  write_matrix(what.out, to, read_matrix(what.in, kind_of_word(readable_kinds(), what.from)));
}

}  // namespace

void declare_convert(CLI::App& command) {
  const auto what = std::make_shared<conversion>();
  command.add_option("IN", what->in, "The matrix")->required();
  command.add_option("OUT", what->out, "The file to write")->required();
  command.add_option("--from", what->from, "Kind of IN, whatever its suffix")
      ->check(CLI::IsMember({"text", "binary", "market"}));
  command.add_option("--to", what->to, "Kind of OUT, whatever its suffix")
      ->check(CLI::IsMember({"text", "binary", "market", "dump", "ij", "ija", "hypergraph"}));
  command.callback([what] { convert(*what); });
}

}  // namespace csrmat
