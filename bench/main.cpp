// Measures the works and prints a table of them: nanoseconds of the library (ours) and of its peer
// (theirs), and ours divided by theirs. One round runs ours and theirs of every work in turn; a
// ratio is the median of the rounds' ratios, with the lowest and the highest beside it. A second
// table has the bytes that a loaded voucher takes. A missed goal is told and is no failure: time is
// not a test.
//
//   qdclgl-bench [--rounds=N] [--only=text]
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <map>
#include <string>
#include <string_view>

#include "bench/work.h"

namespace bench {

namespace {

// Collects processor time, which others on the machine disturb less than time on the wall.
class Collector final : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context&) override { return true; }
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      const double seconds = run.cpu_accumulated_time / static_cast<double>(run.iterations);
      nanoseconds_[run.run_name.function_name].push_back(seconds * 1e9);
    }
  }

  const std::vector<double>& Of(const std::string& name) const { return nanoseconds_.at(name); }

 private:
  std::map<std::string, std::vector<double>> nanoseconds_;
};

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  const std::size_t middle = values.size() / 2;
  return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

// "model name : ..." of the machine's own description, where there is one.
std::string Processor() {
  std::ifstream file("/proc/cpuinfo");
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with("model name")) return line.substr(line.find(':') + 2);
  }
  return "unknown processor";
}

// The names as Google Benchmark has them.
std::string OursOf(const Work& work) { return work.name + "/ours"; }
std::string TheirsOf(const Work& work) { return work.name + "/theirs"; }

std::vector<Work> WorksWith(std::string_view text) {
  std::vector<Work> works;
  for (auto* list : {FieldWorks, TreeWorks, RecordsetWorks, CallWorks, VoucherWorks}) {
    for (Work& work : list()) {
      if (work.name.find(text) != std::string::npos) works.push_back(std::move(work));
    }
  }
  return works;
}

void PrintRow(const Work& work, const Collector& collector) {
  std::vector<double> ours = collector.Of(OursOf(work));
  std::vector<double> theirs = collector.Of(TheirsOf(work));
  std::vector<double> ratios;
  for (std::size_t round = 0; round < ours.size(); ++round) {
    ratios.push_back(ours[round] / theirs[round]);
    ours[round] /= work.repetitions;
    theirs[round] /= work.repetitions;
  }
  const auto [lowest, highest] = std::minmax_element(ratios.begin(), ratios.end());
  const double ratio = Median(ratios);
  std::printf("| %-42s | %12.1f | %12.1f | %6.3f | %.3f-%.3f | %4.2f | %-6s |\n", work.name.c_str(),
              Median(ours), Median(theirs), ratio, *lowest, *highest, work.goal,
              work.goal == kNoGoal ? "-"
              : ratio <= work.goal ? "ok"
                                   : "missed");
}

void PrintMemory(std::string_view text) {
  std::printf("\n| %-42s | %12s | %12s | %6s | %4s | %-6s |\n", "Memory, bytes a line", "ours",
              "theirs", "ratio", "goal", "");
  std::printf("|%s|%s:|%s:|%s:|%s:|%s|\n", std::string(44, '-').c_str(),
              std::string(13, '-').c_str(), std::string(13, '-').c_str(),
              std::string(7, '-').c_str(), std::string(5, '-').c_str(),
              std::string(8, '-').c_str());
  for (const Memory& memory : MemoryOfVouchers()) {
    if (memory.name.find(text) == std::string::npos) continue;
    const double ours = static_cast<double>(memory.ours) / memory.repetitions;
    const double theirs = static_cast<double>(memory.theirs) / memory.repetitions;
    std::printf("| %-42s | %12.0f | %12.0f | %6.3f | %4.2f | %-6s |\n", memory.name.c_str(), ours,
                theirs, ours / theirs, memory.goal, ours / theirs <= memory.goal ? "ok" : "missed");
  }
}

int Main(int argc, char** argv) {
  int rounds = 9;
  std::string only;
  std::vector<char*> passed_on = {argv[0]};
  for (int i = 1; i < argc; ++i) {
    const std::string_view argument = argv[i];
    if (argument.starts_with("--rounds=")) {
      rounds = std::max(1, std::atoi(argv[i] + std::size("--rounds=") - 1));
    } else if (argument.starts_with("--only=")) {
      only = argument.substr(std::size("--only=") - 1);
    } else {
      passed_on.push_back(argv[i]);
    }
  }
  int count = static_cast<int>(passed_on.size());
  benchmark::Initialize(&count, passed_on.data());
  if (benchmark::ReportUnrecognizedArguments(count, passed_on.data())) return 2;

  const std::vector<Work> works = WorksWith(only);
  for (const Work& work : works) {
    benchmark::RegisterBenchmark(OursOf(work).c_str(), work.ours)->Iterations(work.iterations);
    benchmark::RegisterBenchmark(TheirsOf(work).c_str(), work.theirs)->Iterations(work.iterations);
  }
  Collector collector;
  for (int round = 1; round <= rounds && !works.empty(); ++round) {
    std::fprintf(stderr, "round %d of %d\n", round, rounds);
    benchmark::RunSpecifiedBenchmarks(&collector);
  }

  std::printf("%s; %s; median of %d rounds\n\n", Processor().c_str(), QDCLGL_COMPILER, rounds);
  std::printf("| %-42s | %12s | %12s | %6s | %-11s | %4s | %-6s |\n", "Work", "ours ns",
              "theirs ns", "ratio", "spread", "goal", "");
  std::printf("|%s|%s:|%s:|%s:|%s|%s:|%s|\n", std::string(44, '-').c_str(),
              std::string(13, '-').c_str(), std::string(13, '-').c_str(),
              std::string(7, '-').c_str(), std::string(13, '-').c_str(),
              std::string(5, '-').c_str(), std::string(8, '-').c_str());
  for (const Work& work : works) PrintRow(work, collector);
  PrintMemory(only);
  return 0;
}

}  // namespace

}  // namespace bench

int main(int argc, char** argv) { return bench::Main(argc, argv); }
