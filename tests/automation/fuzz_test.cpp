// Calls of everything that the automation server has with everything that a VARIANT can be, each
// run in a process of its own. A run that crashes or hangs goes on behind the call that did it;
// what remains of its calls when it is shortened is printed.
//   fuzz-test                              the runs of the seed
//   fuzz-test --play SEED RUN STEPS FILE   in the other process; FILE takes the step under way
// QDCLGL_SEED is the seed, otherwise always the same; QDCLGL_FUZZ_SECONDS how long to go on, some
// seconds by default.
#include <cstring>
#include <numeric>
#include <set>

#include "tests/automation/crowd.h"
#include "tests/fuzz/shortest.h"

using namespace qdclgl::automation;
using namespace qdclgl::automation::testing;
using qdclgl::fuzz::Choices;

namespace {

constexpr int kStepsInARun = 1500;
constexpr DWORD kLongestRun = 60000;  // milliseconds
constexpr long kTrials = 60;

// ---- In the other process ----

struct Progress {
  int step = -1;
  int succeeded = 0;  // calls before it
};

// A crash is to end the process at once, and to tell where it was.
LONG WINAPI Crash(EXCEPTION_POINTERS* pointers) {
  const EXCEPTION_RECORD& record = *pointers->ExceptionRecord;
  const auto server = reinterpret_cast<std::uintptr_t>(GetModuleHandleA("qdclgl.dll"));
  std::printf("  crash %08lX at the server's %llX\n", record.ExceptionCode,
              static_cast<unsigned long long>(
                  reinterpret_cast<std::uintptr_t>(record.ExceptionAddress) - server));
  std::fflush(stdout);
  TerminateProcess(GetCurrentProcess(), record.ExceptionCode);
  return EXCEPTION_EXECUTE_HANDLER;
}

int Play(std::uint64_t seed, std::uint64_t number, const std::vector<int>& steps,
         const std::string& path, bool telling) {
  SetUnhandledExceptionFilter(Crash);
  const HANDLE progress =
      CreateFileA(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS, 0, nullptr);
  CoInitialize(nullptr);
  {
    Crowd crowd;
    const std::uint64_t of_run = Choices(seed, number).Next();
    for (const int step : steps) {
      const Progress now{step, crowd.succeeded()};
      SetFilePointer(progress, 0, nullptr, FILE_BEGIN);
      DWORD written = 0;
      WriteFile(progress, &now, sizeof now, &written, nullptr);
      Choices choices(of_run, static_cast<std::uint64_t>(step));
      if (telling) std::printf("  step %d", step);
      crowd.Step(choices, telling);
    }
  }
  CoUninitialize();
  CloseHandle(progress);
  return 0;
}

// ---- Runs ----

struct Outcome {
  DWORD code;
  Progress progress;
};

std::string Temporary(const char* name) {
  char folder[MAX_PATH];
  GetTempPathA(sizeof folder, folder);
  return std::string(folder) + name;
}

// Steps that follow each other are told as "first-last".
std::string ListOf(const std::vector<int>& steps) {
  std::string text;
  for (std::size_t i = 0; i < steps.size();) {
    std::size_t end = i + 1;
    while (end < steps.size() && steps[end] == steps[end - 1] + 1) ++end;
    if (!text.empty()) text += ",";
    text += std::to_string(steps[i]);
    if (end - i > 1) text += "-" + std::to_string(steps[end - 1]);
    i = end;
  }
  return text.empty() ? "none" : text;
}

std::vector<int> StepsOf(const char* text) {
  std::vector<int> steps;
  if (std::strcmp(text, "none") == 0) return steps;
  for (const char* at = text; *at != '\0';) {
    char* end = nullptr;
    const long first = std::strtol(at, &end, 10);
    const long last = *end == '-' ? std::strtol(end + 1, &end, 10) : first;
    for (long step = first; step <= last; ++step) steps.push_back(static_cast<int>(step));
    at = *end == ',' ? end + 1 : end;
  }
  return steps;
}

Outcome PlayApart(std::uint64_t seed, std::uint64_t number, const std::vector<int>& steps,
                  bool telling = false) {
  const std::string path = Temporary("qdclgl-fuzz.bin");
  char program[MAX_PATH];
  GetModuleFileNameA(nullptr, program, sizeof program);
  std::string line = "\"" + std::string(program) + (telling ? "\" --tell " : "\" --play ") +
                     std::to_string(seed) + " " + std::to_string(number) + " " + ListOf(steps) +
                     " \"" + path + "\"";
  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process{};
  if (CreateProcessA(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                     &process) == 0) {
    return {1, {}};
  }
  Outcome outcome{WAIT_TIMEOUT, {}};
  if (WaitForSingleObject(process.hProcess, kLongestRun) == WAIT_OBJECT_0) {
    GetExitCodeProcess(process.hProcess, &outcome.code);
  } else {
    TerminateProcess(process.hProcess, WAIT_TIMEOUT);
    WaitForSingleObject(process.hProcess, kLongestRun);
  }
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  if (std::FILE* file = std::fopen(path.c_str(), "rb")) {
    if (std::fread(&outcome.progress, sizeof outcome.progress, 1, file) != 1) outcome.progress = {};
    std::fclose(file);
  }
  return outcome;
}

// ---- The test ----

std::uint64_t NumberIn(const char* variable, std::uint64_t otherwise) {
  const char* text = std::getenv(variable);
  return text != nullptr ? std::strtoull(text, nullptr, 10) : otherwise;
}

void Report(std::uint64_t seed, std::uint64_t number, std::vector<int> steps,
            const Outcome& outcome) {
  std::printf("FOUND automation: QDCLGL_SEED=%llu, run %llu, step %d: %08lX\n",
              static_cast<unsigned long long>(seed), static_cast<unsigned long long>(number),
              outcome.progress.step, static_cast<unsigned long>(outcome.code));
  std::fflush(stdout);
  steps = qdclgl::fuzz::Shortest(
      steps, [&](const std::vector<int>& some) { return PlayApart(seed, number, some).code != 0; },
      kTrials);
  PlayApart(seed, number, steps, true);
}

void Fuzz() {
  const std::uint64_t seed = NumberIn("QDCLGL_SEED", 20240131);
  const std::uint64_t seconds = NumberIn("QDCLGL_FUZZ_SECONDS", 20);
  const ULONGLONG end = GetTickCount64() + seconds * 1000;
  TestCase("calls of everything with anything come to an end");
  long calls = 0, succeeded = 0, findings = 0;
  std::set<std::string> known;
  std::uint64_t runs = 0;
  for (; GetTickCount64() < end; ++runs) {
    std::vector<int> steps(kStepsInARun);
    std::iota(steps.begin(), steps.end(), 0);
    while (!steps.empty()) {
      const Outcome outcome = PlayApart(seed, runs, steps);
      succeeded += outcome.progress.succeeded;
      if (outcome.code == 0) {
        calls += static_cast<long>(steps.size());
        break;
      }
      ++findings;
      if (known.insert(CodeText(static_cast<HRESULT>(outcome.code))).second) {
        Report(seed, runs, steps, outcome);
      }
      if (outcome.progress.step < 0) break;
      calls += outcome.progress.step + 1 - steps.front();
      std::erase_if(steps, [&](int step) { return step <= outcome.progress.step; });
    }
  }
  std::printf("automation: %ld calls (%ld succeeded) in %llu runs of seed %llu, %ld findings\n",
              calls, succeeded, static_cast<unsigned long long>(runs),
              static_cast<unsigned long long>(seed), findings);
  Check(succeeded > calls / 50, "calls reach members");
  Check(findings == 0, "no run crashed or hung");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 6) {
    return Play(std::strtoull(argv[2], nullptr, 10), std::strtoull(argv[3], nullptr, 10),
                StepsOf(argv[4]), argv[5], std::strcmp(argv[1], "--tell") == 0);
  }
  Fuzz();
  return Finish();
}
