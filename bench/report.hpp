// SPDX-License-Identifier: MIT
// Measurements, and how they are told: a table, a CSV file, data for plots.
#pragma once

#include "compare.hpp"

#include <filesystem>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace bench {

enum class role { ours, plain, peer, reference };

struct measurement {
  std::string memory_regime;
  std::string operation;
  std::string workload;
  double goal = 0;
  std::string contestant;
  role part = role::peer;
  verdict found = verdict::refused;
  std::vector<double> wall;  // seconds, one a round
  std::vector<double> cpu;
  std::optional<double> bytes;  // beyond the operands, at the worst moment

  [[nodiscard]] bool timed() const { return !wall.empty(); }
};

// A point of the curve of cost against size.
struct cost_point {
  std::string operation;
  std::string contestant;
  double rows = 0;
  double nanoseconds = 0;  // for each scalar product, or entry
};

enum class clock_choice { wall, cpu };

// All rounds of one workload, all contestants; the plain one is among them.
using case_results = std::vector<measurement>;

void print_case(std::ostream& out, const case_results& results, clock_choice clock);

// How far ahead of the fastest peer the library came, against what was meant.
void print_goals(std::ostream& out, const std::vector<case_results>& all, clock_choice clock);

void write_csv(const std::filesystem::path& file, const std::vector<case_results>& all);
// One row a workload, one column a contestant: ratios to plain, for the bars of a plot.
void write_ratios(const std::filesystem::path& file, const std::vector<case_results>& all,
                  const std::string& memory_regime, clock_choice clock);
void write_costs(const std::filesystem::path& folder, const std::vector<cost_point>& points);
// The tables of docs/performance.md.
void write_markdown(const std::filesystem::path& file, const std::vector<case_results>& all,
                    clock_choice clock);

}  // namespace bench
