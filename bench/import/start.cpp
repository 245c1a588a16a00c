// What it costs to start a command: the built program with nothing to do, with books that have no
// password, with one that is tried, and behind a login.
//
//   qdclgl-start-bench [--rounds=N]
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

#include "bench/import/run.h"

namespace {

namespace fs = std::filesystem;
using bench::Measured;
using bench::Run;

struct Start {
  const char* name;
  std::vector<std::string> arguments;
  const char* password;  // null for none
  double goal;           // milliseconds beyond the first, 0 for none
};

double Median(std::vector<double> values) {
  std::ranges::sort(values);
  return values[values.size() / 2];
}

Measured RunWith(const char* password, const std::vector<std::string>& arguments) {
  if (password == nullptr) unsetenv("QDCLGL_PASSWORD");
  else setenv("QDCLGL_PASSWORD", password, 1);
  return Run(arguments);
}

void Compare(const fs::path& folder, int rounds) {
  setenv("QDCLGL_SESSIONS", (folder / "sessions").c_str(), 1);
  const std::string open = folder / "open.db", closed = folder / "closed.db",
                    kept = folder / "kept.db";
  RunWith(nullptr, {"init", open, "--no-password", "--year", "2024"});
  for (const std::string& book : {closed, kept})
    RunWith("sesame", {"init", book, "--year", "2024"});
  RunWith("sesame", {"login", kept});
  const Start starts[] = {
      {"--version", {"--version"}, nullptr, 0},
      {"balance, no password", {"balance", open}, nullptr, 15},
      {"balance, a password that is tried", {"balance", closed}, "sesame", 0},
      {"balance behind a login", {"balance", kept}, nullptr, 15},
  };
  std::printf("| %-34s | %7s | %11s | %7s | %5s | |\n", "Start", "ms", "beyond", "MB", "goal");
  std::printf("|---|---:|---:|---:|---:|---|\n");
  std::vector<std::vector<double>> times(std::size(starts));
  std::vector<double> megabytes(std::size(starts));
  for (int round = 0; round < rounds; ++round) {
    for (std::size_t i = 0; i < std::size(starts); ++i) {
      const Measured run = RunWith(starts[i].password, starts[i].arguments);
      times[i].push_back(run.seconds * 1e3);
      megabytes[i] = std::max(megabytes[i], run.megabytes);
    }
  }
  const double least = Median(times[0]);
  for (std::size_t i = 0; i < std::size(starts); ++i) {
    const double beyond = Median(times[i]) - least;
    const char* verdict = starts[i].goal == 0 ? "" : beyond <= starts[i].goal ? "ok" : "missed";
    std::printf("| %-34s | %7.1f | %11.1f | %7.0f | %5.0f | %s |\n", starts[i].name,
                Median(times[i]), beyond, megabytes[i], starts[i].goal, verdict);
  }
}

}  // namespace

int main(int count, char** arguments) {
  int rounds = 25;
  constexpr std::string_view kRounds = "--rounds=";
  for (int i = 1; i < count; ++i) {
    const std::string_view argument = arguments[i];
    if (argument.starts_with(kRounds)) rounds = std::atoi(arguments[i] + kRounds.size());
    if (!argument.starts_with(kRounds) || rounds < 1) {
      std::fprintf(stderr, "qdclgl-start-bench [--rounds=N]\n");
      return 2;
    }
  }
  std::string folder = (fs::temp_directory_path() / "qdclgl-start-XXXXXX").string();
  if (mkdtemp(folder.data()) == nullptr) {
    std::perror(folder.c_str());
    return 1;
  }
  Compare(folder, rounds);
  fs::remove_all(folder);
}
