// SPDX-License-Identifier: MIT
// Runs the contestants against each other and tells what came out; `bench --help` says how.
#include "operation.hpp"
#include "report.hpp"
#include "runner.hpp"

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace {

using bench::case_results;
using bench::clock_choice;
using bench::measurement;
using bench::regime;
using bench::role;
using bench::verdict;

constexpr const char* usage = R"(usage: bench [option...]

  --quick              small matrices, few rounds: minutes instead of hours
  --scale=X            all matrices X times as large (1)
  --rounds=N           calls of each contestant, in random order (9)
  --memory=fresh|recycled|both
                       blocks untouched from the system, or from a heap that keeps them (both)
  --clock=wall|cpu     what the ratios are taken from (wall); both are in the CSV file
  --operation=TEXT     only operations with this text in their name
  --workload=TEXT      only workloads with this text in their name
  --only=NAME,...      only these contestants, beside plain
  --curve              cost against size too
  --check              look at the results, time nothing; status 1 if none of ours was looked at
  --output=FOLDER      CSV, tables and data for plots go there (nowhere)
  --files=FOLDER       where files are written and read (/dev/shm if there is one)
  --list               the operations, workloads and contestants

Status 1 if a result of ours is not the plain one.
)";

struct options {
  bench::sizes size;
  int rounds = 9;
  std::vector<regime> regimes = {regime::fresh, regime::recycled};
  clock_choice clock = clock_choice::wall;
  std::string operation;
  std::string workload;
  std::vector<std::string> only;
  bool curve = false;
  bool check = false;
  bool list = false;
  std::filesystem::path output;
  std::filesystem::path files =
      std::filesystem::exists("/dev/shm") ? "/dev/shm" : std::filesystem::temp_directory_path();
};

std::vector<std::string> split(const std::string& names) {
  std::vector<std::string> parts;
  for (std::size_t start = 0; start <= names.size();) {
    const std::size_t comma = std::min(names.find(',', start), names.size());
    parts.push_back(names.substr(start, comma - start));
    start = comma + 1;
  }
  return parts;
}

std::vector<regime> regimes_of(const std::string& word) {
  if (word == "fresh") return {regime::fresh};
  if (word == "recycled") return {regime::recycled};
  if (word == "both") return {regime::fresh, regime::recycled};
  throw std::invalid_argument("--memory is fresh, recycled or both");
}

void take_argument(options& chosen, const std::string& argument) {
  const std::size_t equals = std::min(argument.find('='), argument.size());
  const std::string name = argument.substr(0, equals);
  const std::string value = equals < argument.size() ? argument.substr(equals + 1) : "";
  if (name == "--quick") {
    chosen.size.scale = 0.01;
    chosen.rounds = 5;
  } else if (name == "--scale") {
    chosen.size.scale = std::stod(value);
  } else if (name == "--rounds") {
    chosen.rounds = std::max(1, std::stoi(value));
  } else if (name == "--memory") {
    chosen.regimes = regimes_of(value);
  } else if (name == "--clock") {
    chosen.clock = value == "cpu" ? clock_choice::cpu : clock_choice::wall;
  } else if (name == "--operation") {
    chosen.operation = value;
  } else if (name == "--workload") {
    chosen.workload = value;
  } else if (name == "--only") {
    chosen.only = split(value);
  } else if (name == "--curve") {
    chosen.curve = true;
  } else if (name == "--check") {
    chosen.check = true;
  } else if (name == "--list") {
    chosen.list = true;
  } else if (name == "--output") {
    chosen.output = value;
  } else if (name == "--files") {
    chosen.files = value;
  } else {
    throw std::invalid_argument("unknown option " + argument);
  }
}

bool contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

struct entrant {
  std::string name;
  role part;
  bench::maker make;
};

std::vector<entrant> entrants(const bench::operation& of, const options& chosen) {
  std::vector<entrant> all = {{"plain", role::plain, of.plain}, {"ours", role::ours, of.ours}};
  for (const bench::peer& peer : bench::peers())
    for (const bench::contribution& can : peer.contributions)
      if (can.operation == of.name) all.push_back({peer.name, role::peer, can.make});
  for (const bench::reference& beside : of.references)
    all.push_back({beside.name, role::reference, beside.make});
  if (!chosen.only.empty())
    std::erase_if(all, [&](const entrant& who) {
      return who.part != role::plain &&
             std::find(chosen.only.begin(), chosen.only.end(), who.name) == chosen.only.end();
    });
  return all;
}

bench::answer answer_of(const bench::maker& make, const bench::problem& of) {
  const std::unique_ptr<bench::contestant> who = make(of);
  who->prepare();
  who->run();
  return who->take();
}

// Paths that belong to one contestant each; all that begins as they do is gone when this is.
class scratch_files {
 public:
  explicit scratch_files(std::filesystem::path folder) : folder_(std::move(folder)) {}
  scratch_files(const scratch_files&) = delete;
  scratch_files& operator=(const scratch_files&) = delete;
  ~scratch_files() {
    std::error_code ignored;
    for (std::filesystem::directory_iterator file(folder_, ignored), end; file != end;
         file.increment(ignored))
      if (file->path().filename().string().starts_with(prefix_))
        std::filesystem::remove(file->path(), ignored);
  }
  std::string path_for(const std::string& name) {
    return folder_ / (prefix_ + std::to_string(count_++) + "-" + name);
  }

 private:
  std::filesystem::path folder_;
  std::string prefix_ = "csr_matrix_mod-bench-" + std::to_string(::getpid()) + "-";
  int count_ = 0;
};

struct participant {
  measurement told;
  bench::duration first;
  std::unique_ptr<bench::runner> process;
};

// Everybody's process, each with the result of one call looked at.
class competition {
 public:
  competition(const bench::operation& of, const std::string& workload, double goal,
              bench::problem& problem, regime memory, const options& chosen)
      : files_(chosen.files) {
    bench::set_for_children(memory);
    problem.file = files_.path_for("expected");
    expected_ = answer_of(of.plain, problem);
    for (const entrant& who : entrants(of, chosen)) {
      problem.file = files_.path_for(who.name);
      participant& joins = participants_.emplace_back();
      joins.told = {bench::name(memory), of.name, workload, goal, who.name, who.part,
                    verdict::refused,    {},      {},       {}};
      joins.process = std::make_unique<bench::runner>(
          who.make, problem, who.part == role::reference ? nullptr : &expected_, memory);
      const bench::first_look seen = joins.process->check();
      joins.told.found = seen.found;
      joins.first = seen.took;
      if (joins.told.found == verdict::refused) joins.process.reset();
    }
  }

  // Each round times everybody once, all of it in random order.
  void race(int rounds);
  void weigh() {
    for (participant& who : participants_)
      if (who.process) who.told.bytes = who.process->memory();
  }
  [[nodiscard]] case_results results() const {
    case_results all;
    for (const participant& who : participants_) all.push_back(who.told);
    return all;
  }

 private:
  // Calls too short for the clock are timed together, some 5 ms of them.
  [[nodiscard]] int calls_a_round() const {
    const double seconds = std::max(participants_.front().first.wall, 1e-7);
    return std::clamp(static_cast<int>(std::lround(5e-3 / seconds)), 1, 10000);
  }
  // Nobody waits nine times for who is ten times as slow.
  [[nodiscard]] int rounds_of(const participant& who, int rounds) const {
    return who.first.cpu > 10 * participants_.front().first.cpu + 0.1 ? std::min(rounds, 2)
                                                                      : rounds;
  }

  scratch_files files_;
  bench::answer expected_;
  std::vector<participant> participants_;
};

// What Google Benchmark times goes to the measurements and nowhere else.
class collector final : public benchmark::BenchmarkReporter {
 public:
  explicit collector(std::vector<participant>& all) : all_(all) {}
  bool ReportContext(const Context& /*of the machine*/) override { return true; }
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.run_type != Run::RT_Iteration || run.error_occurred) continue;
      const auto who = static_cast<std::size_t>(run.counters.at("who").value);
      all_[who].told.wall.push_back(run.real_accumulated_time /
                                    static_cast<double>(run.iterations));
      all_[who].told.cpu.push_back(run.counters.at("cpu").value);
    }
  }

 private:
  std::vector<participant>& all_;
};

void competition::race(int rounds) {
  if (!participants_.front().process) throw std::runtime_error("plain cannot do this");
  const int calls = calls_a_round();
  for (std::size_t k = 0; k < participants_.size(); ++k) {
    bench::runner* const process = participants_[k].process.get();
    if (process == nullptr) continue;
    benchmark::RegisterBenchmark(participants_[k].told.contestant.c_str(),
                                 [=](benchmark::State& state) {
                                   for ([[maybe_unused]] auto _ : state) {
                                     const auto time = process->run(calls);
                                     if (!time) {
                                       state.SkipWithError("its process died");
                                       break;
                                     }
                                     state.SetIterationTime(time->wall);
                                     state.counters["cpu"] = time->cpu;
                                   }
                                   state.counters["who"] = static_cast<double>(k);
                                 })
        ->UseManualTime()
        ->Iterations(1)
        ->Repetitions(rounds_of(participants_[k], rounds));
  }
  collector collect(participants_);
  benchmark::RunSpecifiedBenchmarks(&collect);
  benchmark::ClearRegisteredBenchmarks();
}

void start_google_benchmark() {
  std::string program = "bench";
  std::string order = "--benchmark_enable_random_interleaving=true";
  char* arguments[] = {program.data(), order.data(), nullptr};
  int count = 2;
  benchmark::Initialize(&count, arguments);
}

void list_all() {
  for (const bench::operation& of : bench::operations()) {
    std::cout << of.name << ": " << of.formula << "\n  workloads:";
    for (const bench::workload& on : of.workloads) std::cout << " [" << on.name << ']';
    std::cout << "\n  contestants: plain, ours";
    for (const entrant& who : entrants(of, {}))
      if (who.part == role::peer) std::cout << ", " << who.name;
    std::cout << '\n';
  }
}

// Written again and again, so that a run that is given up leaves what it has measured.
void write_all(const options& chosen, const std::vector<case_results>& all) {
  if (chosen.output.empty()) return;
  std::filesystem::create_directories(chosen.output);
  write_csv(chosen.output / "results.csv", all);
  write_markdown(chosen.output / "results.md", all, chosen.clock);
  for (const regime memory : chosen.regimes)
    write_ratios(chosen.output / (std::string("ratios-") + bench::name(memory) + ".dat"), all,
                 bench::name(memory), chosen.clock);
}

std::vector<case_results> compete(const options& chosen) {
  std::vector<case_results> all;
  for (const bench::operation& of : bench::operations()) {
    if (!contains(of.name, chosen.operation)) continue;
    for (const bench::workload& on : of.workloads) {
      if (!contains(on.name, chosen.workload)) continue;
      bench::problem problem = on.generate(chosen.size);
      for (const regime memory : chosen.regimes) {
        competition contest(of, on.name, on.goal, problem, memory, chosen);
        if (!chosen.check) {
          contest.race(chosen.rounds);
          if (memory == regime::fresh) contest.weigh();  // a heap that keeps all tells nothing
          print_case(std::cout, contest.results(), chosen.clock);
        }
        all.push_back(contest.results());
        if (!chosen.check) write_all(chosen, all);
      }
    }
  }
  return all;
}

std::vector<bench::cost_point> curve(const options& chosen) {
  std::vector<bench::cost_point> points;
  for (const bench::operation& of : bench::operations()) {
    if (!of.of_size || !contains(of.name, chosen.operation)) continue;
    for (double rows = 1e3; rows <= 1e7 * std::min(chosen.size.scale, 1.0) * 1.001; rows *= 10) {
      bench::problem problem = of.of_size(rows);
      const double work = of.work(problem);
      competition contest(of, "", 0, problem, regime::fresh, chosen);
      contest.race(std::max(3, chosen.rounds / 2));
      for (const measurement& told : contest.results()) {
        if (!told.timed() || told.part == role::reference) continue;
        std::vector<double> times = chosen.clock == clock_choice::wall ? told.wall : told.cpu;
        std::sort(times.begin(), times.end());
        points.push_back({of.name, told.contestant, static_cast<double>(problem.a.n),
                          1e9 * times[times.size() / 2] / work});
        std::printf("%-12s n %9d  %-12s %8.3f ns\n", of.name.c_str(), problem.a.n,
                    told.contestant.c_str(), points.back().nanoseconds);
      }
      std::fflush(stdout);
    }
  }
  return points;
}

std::string described(const measurement& of) {
  return of.memory_regime + ", " + of.operation + ", " + of.workload + ", " + of.contestant + ": " +
         bench::name(of.found) + '\n';
}

// Nothing but the results.
void print_verdicts(std::ostream& out, const std::vector<case_results>& all) {
  for (const case_results& results : all)
    for (const measurement& of : results)
      if (of.part != role::reference) out << described(of);
}

// The library's results, and those of the plain way again, must be the plain ones to the bit; those
// of a peer may differ.
int status_of(const options& chosen, const std::vector<case_results>& all) {
  int status = EXIT_SUCCESS;
  bool any = false;
  for (const case_results& results : all)
    for (const measurement& of : results) {
      any = any || of.part == role::ours;
      if (of.part == role::peer || of.found == verdict::same_bits) continue;
      std::cerr << "not the plain result: " << described(of);
      status = EXIT_FAILURE;
    }
  if (any || !chosen.check) return status;
  std::cerr << "no result of the library was looked at\n";
  return EXIT_FAILURE;
}

int run(const options& chosen) {
  if (chosen.list) {
    list_all();
    return EXIT_SUCCESS;
  }
  bench::set_for_this_process(regime::fresh);
  start_google_benchmark();
  const std::vector<case_results> all = compete(chosen);
  if (chosen.check) {
    print_verdicts(std::cout, all);
    return status_of(chosen, all);
  }
  print_goals(std::cout, all, chosen.clock);
  if (chosen.curve) {
    const std::vector<bench::cost_point> points = curve(chosen);
    if (!chosen.output.empty()) write_costs(chosen.output, points);
  }
  return status_of(chosen, all);
}

}  // namespace

int main(int count, char** arguments) {
  try {
    options chosen;
    for (int k = 1; k < count; ++k) {
      if (std::strcmp(arguments[k], "--help") == 0) {
        std::cout << usage;
        return EXIT_SUCCESS;
      }
      take_argument(chosen, arguments[k]);
    }
    return run(chosen);
  } catch (const std::exception& problem) {
    std::cerr << problem.what() << '\n';
    return EXIT_FAILURE;
  }
}
