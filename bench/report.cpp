// SPDX-License-Identifier: MIT
#include "report.hpp"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <fstream>
#include <map>
#include <ostream>
#include <set>

namespace bench {

namespace {

struct spread {
  double median;
  double least;
  double most;
};

spread spread_of(std::vector<double> seconds) {
  std::sort(seconds.begin(), seconds.end());
  return {seconds[seconds.size() / 2], seconds.front(), seconds.back()};
}

spread spread_of(const measurement& of, clock_choice clock) {
  return spread_of(clock == clock_choice::wall ? of.wall : of.cpu);
}

const measurement* find(const case_results& results, role part) {
  const auto found = std::find_if(results.begin(), results.end(), [part](const measurement& of) {
    return of.part == part && of.timed();
  });
  return found == results.end() ? nullptr : &*found;
}

const measurement* fastest_peer(const case_results& results, clock_choice clock) {
  const measurement* best = nullptr;
  for (const measurement& of : results)
    if (of.part == role::peer && of.timed() &&
        (best == nullptr || spread_of(of, clock).median < spread_of(*best, clock).median))
      best = &of;
  return best;
}

// The leanest among the peers that hold the same entries.
const measurement* leanest_peer(const case_results& results) {
  const measurement* best = nullptr;
  for (const measurement& of : results)
    if (of.part == role::peer && of.found != verdict::refused && of.bytes &&
        (best == nullptr || *of.bytes < *best->bytes))
      best = &of;
  return best;
}

const char* name(role part) {
  switch (part) {
    case role::ours:
      return "ours";
    case role::plain:
      return "plain";
    case role::reference:
      return "reference";
    case role::peer:
      break;
  }
  return "peer";
}

__attribute__((format(printf, 1, 2))) std::string text(const char* format, ...) {
  char buffer[512];
  va_list items;
  va_start(items, format);
  std::vsnprintf(buffer, sizeof buffer, format, items);
  va_end(items);
  return buffer;
}

std::string megabytes(const std::optional<double>& bytes) {
  return bytes ? text("%.1f", *bytes / 1e6) : "-";
}

// Fastest first; what was refused comes last.
case_results in_order(case_results results, clock_choice clock) {
  std::stable_sort(results.begin(), results.end(),
                   [clock](const measurement& left, const measurement& right) {
                     if (!left.timed() || !right.timed()) return left.timed() && !right.timed();
                     return spread_of(left, clock).median < spread_of(right, clock).median;
                   });
  return results;
}

std::string label(const measurement& of) {
  return of.part == role::reference ? "reference" : bench::name(of.found);
}

}  // namespace

void print_case(std::ostream& out, const case_results& results, clock_choice clock) {
  const measurement* const plain = find(results, role::plain);
  if (plain == nullptr) return;
  const double unit = spread_of(*plain, clock).median;
  out << text("\n%s, %s, %s memory\n", plain->operation.c_str(), plain->workload.c_str(),
              plain->memory_regime.c_str());
  out << text("  %-18s %8s %17s %10s %10s  %s\n", "", "ratio", "(spread)", "ms", "MB", "result");
  for (const measurement& of : in_order(results, clock)) {
    if (!of.timed()) {
      out << text("  %-18s %8s %17s %10s %10s  %s\n", of.contestant.c_str(), "-", "", "-", "-",
                  label(of).c_str());
      continue;
    }
    const spread time = spread_of(of, clock);
    out << text("  %-18s %8.2f   (%6.2f-%6.2f) %10.3f %10s  %s\n", of.contestant.c_str(),
                unit / time.median, unit / time.most, unit / time.least, 1e3 * time.median,
                megabytes(of.bytes).c_str(), label(of).c_str());
  }
  out.flush();
}

void print_goals(std::ostream& out, const std::vector<case_results>& all, clock_choice clock) {
  out << text("\n%-9s %-20s %-20s %6s %-22s %6s %6s %6s  %s\n", "memory", "operation", "workload",
              "ours", "fastest peer", "ahead", "goal", "", "memory against the leanest peer");
  for (const case_results& results : all) {
    const measurement* const plain = find(results, role::plain);
    const measurement* const ours = find(results, role::ours);
    if (plain == nullptr || ours == nullptr) continue;
    const measurement* const peer = fastest_peer(results, clock);
    const double unit = spread_of(*plain, clock).median;
    const double our_time = spread_of(*ours, clock).median;
    std::string rival = "-";
    std::string ahead = "-";
    std::string goal = ours->goal > 0 ? text("%.2f", ours->goal) : "-";
    std::string met;
    if (peer != nullptr) {
      const double peer_time = spread_of(*peer, clock).median;
      rival = text("%s %.2f", peer->contestant.c_str(), unit / peer_time);
      ahead = text("%.2f", peer_time / our_time);
      if (ours->goal > 0) met = peer_time / our_time >= ours->goal ? "met" : "missed";
    }
    const measurement* const lean = leanest_peer(results);
    const std::string memory = lean != nullptr && ours->bytes
                                   ? text("%s MB, %s %s MB", megabytes(ours->bytes).c_str(),
                                          lean->contestant.c_str(), megabytes(lean->bytes).c_str())
                                   : "-";
    out << text("%-9s %-20s %-20s %6.2f %-22s %6s %6s %6s  %s\n", plain->memory_regime.c_str(),
                plain->operation.c_str(), plain->workload.c_str(), unit / our_time, rival.c_str(),
                ahead.c_str(), goal.c_str(), met.c_str(), memory.c_str());
  }
  out.flush();
}

void write_csv(const std::filesystem::path& file, const std::vector<case_results>& all) {
  std::ofstream out(file);
  out << "memory,operation,workload,contestant,role,result,rounds,wall_median_s,wall_min_s,"
         "wall_max_s,cpu_median_s,cpu_min_s,cpu_max_s,ratio,extra_bytes,goal\n";
  for (const case_results& results : all) {
    const measurement* const plain = find(results, role::plain);
    for (const measurement& of : results) {
      out << text("%s,%s,\"%s\",%s,%s,%s,%zu", of.memory_regime.c_str(), of.operation.c_str(),
                  of.workload.c_str(), of.contestant.c_str(), name(of.part), label(of).c_str(),
                  of.wall.size());
      if (of.timed() && plain != nullptr) {
        const spread wall = spread_of(of.wall);
        const spread cpu = spread_of(of.cpu);
        out << text(",%.6g,%.6g,%.6g,%.6g,%.6g,%.6g,%.3f", wall.median, wall.least, wall.most,
                    cpu.median, cpu.least, cpu.most, spread_of(plain->wall).median / wall.median);
      } else {
        out << ",,,,,,,";
      }
      out << ',' << (of.bytes ? text("%.0f", *of.bytes) : "") << ','
          << (of.goal > 0 ? text("%g", of.goal) : "") << '\n';
    }
  }
}

void write_ratios(const std::filesystem::path& file, const std::vector<case_results>& all,
                  const std::string& memory_regime, clock_choice clock) {
  std::ofstream out(file);
  out << "case\tours\tpeer\tname\n";
  for (const case_results& results : all) {
    const measurement* const plain = find(results, role::plain);
    const measurement* const ours = find(results, role::ours);
    if (plain == nullptr || ours == nullptr || plain->memory_regime != memory_regime) continue;
    const measurement* const peer = fastest_peer(results, clock);
    const double unit = spread_of(*plain, clock).median;
    out << text("\"%s, %s\"\t%.3f\t", plain->operation.c_str(), plain->workload.c_str(),
                unit / spread_of(*ours, clock).median);
    if (peer != nullptr)
      out << text("%.3f\t%s\n", unit / spread_of(*peer, clock).median, peer->contestant.c_str());
    else
      out << "NaN\t-\n";
  }
}

void write_costs(const std::filesystem::path& folder, const std::vector<cost_point>& points) {
  std::map<std::string, std::vector<cost_point>> curves;
  for (const cost_point& point : points) curves[point.operation].push_back(point);
  for (const auto& [operation, measured] : curves) {
    std::string stem = operation;
    std::replace_if(
        stem.begin(), stem.end(), [](char c) { return c == ' ' || c == '\''; }, '_');
    std::ofstream out(folder / ("cost-" + stem + ".dat"));
    // One block a contestant, as gnuplot's `index` wants it, in the order in which they came.
    std::vector<std::string> contestants;
    for (const cost_point& point : measured)
      if (std::find(contestants.begin(), contestants.end(), point.contestant) == contestants.end())
        contestants.push_back(point.contestant);
    for (const std::string& contestant : contestants) {
      out << '"' << contestant << "\"\n";
      for (const cost_point& point : measured)
        if (point.contestant == contestant)
          out << text("%.0f %.4f\n", point.rows, point.nanoseconds);
      out << "\n\n";
    }
  }
}

void write_markdown(const std::filesystem::path& file, const std::vector<case_results>& all,
                    clock_choice clock) {
  std::ofstream out(file);
  std::set<std::string> regimes;
  for (const case_results& results : all)
    for (const measurement& of : results) regimes.insert(of.memory_regime);
  for (const std::string& regime : regimes) {
    out << "### " << (regime == "fresh" ? "Fresh" : "Recycled") << " memory\n\n"
        << "| operation | workload | plain, ms | ours | others | memory: ours, plain, leanest "
           "other, MB |\n|---|---|---|---|---|---|\n";
    for (const case_results& results : all) {
      const measurement* const plain = find(results, role::plain);
      const measurement* const ours = find(results, role::ours);
      if (plain == nullptr || ours == nullptr || plain->memory_regime != regime) continue;
      const double unit = spread_of(*plain, clock).median;
      const auto ratio = [&](const measurement& of) {
        const spread time = spread_of(of, clock);
        return text("%.2f (%.2f-%.2f)", unit / time.median, unit / time.most, unit / time.least);
      };
      std::string others;
      for (const measurement& of : in_order(results, clock)) {
        if (of.part != role::peer && of.part != role::reference) continue;
        if (!others.empty()) others += ", ";
        others += of.contestant + " " + (of.timed() ? ratio(of) : "refused");
        if (of.timed() && of.part == role::peer && of.found != verdict::same_bits)
          others += std::string(of.found == verdict::reordered ? " ~" : " ≈");
      }
      const measurement* const lean = leanest_peer(results);
      out << text("| %s | %s | %.2f | ", plain->operation.c_str(), plain->workload.c_str(),
                  1e3 * unit)
          << "**" << ratio(*ours) << "** | " << (others.empty() ? "-" : others) << " | "
          << megabytes(ours->bytes) << ", " << megabytes(plain->bytes) << ", "
          << (lean != nullptr ? megabytes(lean->bytes) + " (" + lean->contestant + ")" : "-")
          << " |\n";
    }
    out << '\n';
  }
}

}  // namespace bench
