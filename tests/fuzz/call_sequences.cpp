#include "tests/fuzz/call_sequences.h"

#include <fcntl.h>
#include <sanitizer/lsan_interface.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <numeric>
#include <set>
#include <sstream>
#include <vector>

#include "qdclgl/frame/vocabulary/errors.h"
#include "tests/fuzz/shortest.h"
#include "tests/support/random_seed.h"

// A single allocation beyond this is a finding; an abort tells where it was.
extern "C" const char* __asan_default_options() {
  return "detect_leaks=1:handle_abort=1:max_allocation_size_mb=1024:quarantine_size_mb=32:"
         "detect_stack_use_after_return=0";
}

namespace qdclgl::fuzz {
namespace {

constexpr double kLongestCall = 10;    // seconds of computing
constexpr double kLongestWait = 60;    // seconds in all
constexpr long kLargestGrowth = 1024;  // MB over what the process had at the start of the call

// ---- The watch over a call ----

double Now(clockid_t clock) {
  timespec time{};
  clock_gettime(clock, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

long ResidentMegabytes() {
  const int file = open("/proc/self/statm", O_RDONLY | O_CLOEXEC);
  std::array<char, 64> text{};
  const ssize_t count = read(file, text.data(), text.size() - 1);
  close(file);
  if (count <= 0) return 0;
  char* behind_size = nullptr;
  std::strtol(text.data(), &behind_size, 10);
  return std::strtol(behind_size, nullptr, 10) * (sysconf(_SC_PAGESIZE) / 1024) / 1024;
}

struct Watch {
  double computed, waited;
  long megabytes;
};
Watch watch;

void BeginWatch() {
  watch = {Now(CLOCK_PROCESS_CPUTIME_ID), Now(CLOCK_MONOTONIC), ResidentMegabytes()};
}

void Say(const char* text) {
  [[maybe_unused]] const ssize_t written =
      write(STDERR_FILENO, text, std::char_traits<char>::length(text));
}

void LookAtWatch(int) {
  const char* what = nullptr;
  if (Now(CLOCK_PROCESS_CPUTIME_ID) - watch.computed > kLongestCall ||
      Now(CLOCK_MONOTONIC) - watch.waited > kLongestWait) {
    what = "BREACH: a call takes too long\n";
  } else if (ResidentMegabytes() - watch.megabytes > kLargestGrowth) {
    what = "BREACH: a call takes too much memory\n";
  }
  if (what == nullptr) return;
  Say(what);
  std::abort();
}

void KeepWatch() {
  struct sigaction action {};
  action.sa_handler = LookAtWatch;
  action.sa_flags = SA_RESTART;
  sigaction(SIGALRM, &action, nullptr);
  const itimerval every{{0, 100000}, {0, 100000}};
  setitimer(ITIMER_REAL, &every, nullptr);
}

// ---- A run ----

struct Run {
  std::uint64_t seed;
  std::uint64_t number;
  std::vector<int> steps;
};

constexpr int kWhole = 0, kBroken = 99;

int Broken(const std::string& what) {
  Say(("BREACH: " + what + "\n").c_str());
  return kBroken;
}

// What the run comes to, in the process that it takes place in.
int Play(const Fuzz& fuzz, const Run& run, bool telling) {
  const std::uint64_t seed = Choices(run.seed, run.number).Next();
  BeginWatch();
  KeepWatch();
  std::string told;
  bool leaks_count = false;
  try {
    Choices choices(seed);
    const std::unique_ptr<Playground> playground = fuzz.make(choices);
    leaks_count = playground->LeaksCount();
    for (const int step : run.steps) {
      Choices of_step(seed, static_cast<std::uint64_t>(step) + 1);
      told.clear();
      BeginWatch();
      playground->Step(of_step, [&](const std::string& words) {
        told = words;
        if (telling) std::fprintf(stderr, "  step %d: %s\n", step, words.c_str());
      });
    }
    BeginWatch();
    playground->End();
    BeginWatch();
  } catch (const Breach& breach) {
    return Broken(breach.what + (told.empty() ? "" : " at " + told));
  } catch (const Error& error) {
    return Broken(std::string("an Error escapes: ") + error.what());
  } catch (const std::exception& exception) {
    return Broken(std::string("an exception escapes: ") + exception.what());
  } catch (...) {
    return Broken("something that is no exception escapes");
  }
  return leaks_count && __lsan_do_recoverable_leak_check() != 0 ? kBroken : kWhole;
}

constexpr std::size_t kLongestSignature = 100;

struct Outcome {
  bool whole;
  std::string output;

  // What tells findings apart: the place where it came to light, or the breach without its numbers.
  std::string Signature() const {
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);) {
      if (line.starts_with("BREACH: ")) {
        std::erase_if(line, [](char c) { return (c >= '0' && c <= '9') || c == '-' || c == '.'; });
        return line.substr(0, kLongestSignature);
      }
      if (line.starts_with("SUMMARY: ")) return line;
      if (line.find("runtime error: ") != std::string::npos) return line;
    }
    return "it ends without words";
  }
};

Outcome PlayApart(const Fuzz& fuzz, const Run& run, bool telling = false) {
  const auto path =
      std::filesystem::temp_directory_path() / ("qdclgl-fuzz-" + std::to_string(getpid()) + ".txt");
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    dup2(file, STDERR_FILENO);
    const int status = Play(fuzz, run, telling);
    std::fflush(nullptr);
    _exit(status);
  }
  int status = 0;
  waitpid(child, &status, 0);
  std::ifstream file(path);
  std::ostringstream output;
  output << file.rdbuf();
  std::filesystem::remove(path);
  return {WIFEXITED(status) && WEXITSTATUS(status) == kWhole, std::move(output).str()};
}

std::string ListOf(const std::vector<int>& steps) {
  std::string text;
  for (const int step : steps) text += (text.empty() ? "" : ",") + std::to_string(step);
  return text;
}

// ---- The program ----

struct Options {
  long calls = 10000;
  double seconds = 0;
  std::uint64_t seed = testing::RandomSeed();
  long run = -1;
  std::vector<int> steps;
};

Options Read(int argc, char** argv) {
  Options options;
  for (int i = 1; i + 1 < argc; i += 2) {
    const std::string option = argv[i];
    const char* value = argv[i + 1];
    if (option == "--calls") options.calls = std::strtol(value, nullptr, 10);
    if (option == "--seconds") options.seconds = std::strtod(value, nullptr);
    if (option == "--seed") options.seed = std::strtoull(value, nullptr, 10);
    if (option == "--run") options.run = std::strtol(value, nullptr, 10);
    if (option == "--steps") {
      std::istringstream numbers(value);
      for (std::string number; std::getline(numbers, number, ',');) {
        options.steps.push_back(std::stoi(number));
      }
    }
  }
  return options;
}

void ReportFinding(const Fuzz& fuzz, Run run, const std::string& signature) {
  std::printf("FOUND %s: --seed %llu --run %llu\n  %s\n", fuzz.name.c_str(),
              static_cast<unsigned long long>(run.seed),
              static_cast<unsigned long long>(run.number), signature.c_str());
  std::fflush(stdout);
  run.steps = Shortest(
      run.steps,
      [&](const std::vector<int>& steps) {
        const Outcome outcome = PlayApart(fuzz, {run.seed, run.number, steps});
        return !outcome.whole && outcome.Signature() == signature;
      },
      400);
  std::printf("  shortest: --steps %s\n%s\n", ListOf(run.steps).c_str(),
              PlayApart(fuzz, run, true).output.c_str());
  std::fflush(stdout);
}

}  // namespace

int FuzzMain(int argc, char** argv, const Fuzz& fuzz) {
  const Options options = Read(argc, argv);
  std::vector<int> all(static_cast<std::size_t>(fuzz.steps_in_a_run));
  std::iota(all.begin(), all.end(), 0);
  if (options.run >= 0) {
    const Outcome outcome = PlayApart(fuzz,
                                      {options.seed, static_cast<std::uint64_t>(options.run),
                                       options.steps.empty() ? all : options.steps},
                                      true);
    std::fputs(outcome.output.c_str(), stdout);
    return outcome.whole ? 0 : 1;
  }
  const double end = Now(CLOCK_MONOTONIC) + options.seconds;
  std::set<std::string> findings;
  long calls = 0, runs = 0, broken = 0;
  while (options.seconds > 0 ? Now(CLOCK_MONOTONIC) < end : calls < options.calls) {
    const Run run{options.seed, static_cast<std::uint64_t>(runs++), all};
    const Outcome outcome = PlayApart(fuzz, run);
    calls += fuzz.steps_in_a_run;
    if (outcome.whole) continue;
    ++broken;
    const std::string signature = outcome.Signature();
    if (findings.insert(signature).second) ReportFinding(fuzz, run, signature);
  }
  std::printf("%s: %ld calls in %ld runs of seed %llu, %zu findings in %ld of them\n",
              fuzz.name.c_str(), calls, runs, static_cast<unsigned long long>(options.seed),
              findings.size(), broken);
  return findings.empty() ? 0 : 1;
}

}  // namespace qdclgl::fuzz
