// SPDX-License-Identifier: MIT
#include "gallery_matrices.hpp"

#include "command.hpp"
#include "failure.hpp"
#include "files.hpp"
#include "whole_number.hpp"

#include <limits>
#include <memory>
#include <optional>

namespace csrmat {

namespace {

struct picture {
  std::string name;
  std::optional<std::int32_t> size;
  std::optional<std::uint64_t> seed;
  std::string out;
};

csr_matrix make(const picture& what) {
  const std::uint64_t seed = what.seed.value_or(1);
  if (what.name == "fem") return finite_elements(what.size.value_or(100), seed);
  if (what.name == "random") return random_graph(what.size.value_or(10000), seed);
  if (what.seed) throw failure(what.name + ": nothing is random here, so there is no --seed");
  if (what.name == "poisson2d") return poisson2d(what.size.value_or(100));
  return poisson3d(what.size.value_or(25));
}

void gallery(const picture& what) {
  const file_kind kind = output_kind(what.out);
  write_matrix(what.out, kind, make(what));
}

}  // namespace

void declare_gallery(CLI::App& command) {
  const auto what = std::make_shared<picture>();
  command
      .add_option("NAME", what->name,
                  "poisson2d, poisson3d: finite differences on a grid of SIZE points a side; "
                  "fem: finite elements on a Delaunay mesh of SIZE x SIZE jittered points; "
                  "random: a graph of SIZE vertices, 4 random edges each")
      ->required()
      ->check(CLI::IsMember({"poisson2d", "poisson3d", "fem", "random"}));
  command.add_option("OUT", what->out, "The file to write")->required();
  command.add_option("--size", what->size, "SIZE; else 100 (poisson3d: 25, random: 10000)")
      ->transform(whole_number(1, std::numeric_limits<std::int32_t>::max() - 1));
  command.add_option("--seed", what->seed, "Another fem mesh or random graph; else 1")
      ->transform(whole_number<std::uint64_t>(0, std::numeric_limits<std::uint64_t>::max()));
  command.callback([what] { gallery(*what); });
}

}  // namespace csrmat
