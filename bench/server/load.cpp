// Many clients at once on one PostgreSQL: each saves vouchers, reads them back and posts them, for
// a while; then the same beside a client that sleeps in a transaction. See docs/performance.md.
//
//   qdclgl-bench-load [--processes=N] [--seconds=N]
//
// QDCLGL_TEST_POSTGRESQL holds the connection text of the database; scripts/bench starts one.
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <span>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "bench/server/books.h"
#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/frame/session/session.h"
#include "qdclgl/frame/session/startup.h"
#include "qdclgl/qdclgl.h"
#include "qdclgl/server/db/connection_text.h"
#include "qdclgl/server/db/connections.h"
#include "qdclgl/server/server.h"

namespace {

using namespace qdclgl;
using Clock = std::chrono::steady_clock;

// How long a client waits for what others have locked, and how long the one sleeps that holds them
// up.
constexpr int kLockTimeoutSeconds = 2;
constexpr int kSleepSeconds = 5;

enum Deed { kSave, kRead, kPost };
constexpr std::array kDeeds = {"save", "read", "post"};

struct Tally {
  std::array<std::vector<double>, kDeeds.size()> milliseconds;
  std::map<std::string, int> errors;  // by sentence, without its numbers
  double longest_refused = 0;         // milliseconds that a refused call took
};

// A sentence as the kind of failure that it tells of: backends and seconds differ each time.
std::string KindOf(std::string_view sentence) {
  std::string kind;
  for (const char c : sentence) {
    const bool is_digit = c >= '0' && c <= '9';
    if (!is_digit) kind += c;
    else if (!kind.ends_with('#')) kind += '#';
  }
  return kind;
}

// ---- A client ----

class Client {
 public:
  Client(unsigned seed, const std::string& connection) : random_(seed) {
    bench::LogInTo(connection);
  }

  void Work(Clock::time_point end) {
    while (Clock::now() < end) {
      long id = 0;
      Try(kSave, [&] { id = bench::SaveVoucher(static_cast<int>(random_() % 1000), Month()); });
      if (id == 0) continue;
      Try(kRead, [&] { vouchers_->Item(Long{static_cast<Long>(id)}); });
      Try(kPost, [&] { vouchers_->Post(static_cast<Long>(id)); });
    }
  }

  void Write(const std::string& path) const {
    std::ofstream file(path);
    for (std::size_t deed = 0; deed < kDeeds.size(); ++deed) {
      for (const double time : tally_.milliseconds[deed])
        file << "t " << deed << ' ' << time << '\n';
    }
    file << "l " << tally_.longest_refused << '\n';
    for (const auto& [sentence, count] : tally_.errors)
      file << "e " << count << ' ' << sentence << '\n';
  }

 private:
  int Month() { return 1 + static_cast<int>(random_() % 12); }

  template <class Work>
  void Try(Deed deed, const Work& work) {
    const auto start = Clock::now();
    const auto passed = [&] {
      return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
    };
    try {
      work();
      tally_.milliseconds[deed].push_back(passed());
    } catch (const Error& error) {
      ++tally_.errors[KindOf(error.description())];
      tally_.longest_refused = std::max(tally_.longest_refused, passed());
    }
  }

  std::mt19937 random_;
  Ref<VoucherSet> vouchers_ = Make<VoucherSet>();
  Tally tally_;
};

// Saves a voucher in a transaction of its own and sleeps in it, again and again.
void Sleep(const std::string& connection, Clock::time_point end) {
  bench::LogInTo(connection);
  const auto batch = CreateObject("QDSVGLBatch.BatchUpdate");
  while (Clock::now() < end) {
    try {
      batch->Call("Begin", GetPropsString());
      bench::SaveVoucher(1, 1);
      std::this_thread::sleep_for(std::chrono::seconds(kSleepSeconds));
    } catch (const Error&) {
      // The others were in its way; it tries again.
    }
    batch->Call("RollBack", GetPropsString());
  }
}

// ---- All of them ----

pid_t InProcess(const std::function<void()>& work) {
  const pid_t child = fork();
  if (child != 0) return child;
  try {
    work();
  } catch (const Error& error) {
    std::fprintf(stderr, "%s\n", error.what());
    _exit(1);
  }
  server::Connections::OfThisThread().CloseAll();
  _exit(0);
}

Tally ReadTallies(const std::filesystem::path& folder, int processes) {
  Tally all;
  for (int i = 0; i < processes; ++i) {
    std::ifstream file(folder / std::to_string(i));
    for (std::string kind; file >> kind;) {
      if (kind == "t") {
        std::size_t deed = 0;
        double time = 0;
        file >> deed >> time;
        all.milliseconds[deed].push_back(time);
      } else if (kind == "l") {
        double time = 0;
        file >> time;
        all.longest_refused = std::max(all.longest_refused, time);
      } else {
        int count = 0;
        std::string sentence;
        file >> count;
        std::getline(file >> std::ws, sentence);
        all.errors[sentence] += count;
      }
    }
  }
  return all;
}

void Print(const Tally& tally, double seconds) {
  std::printf("| %-6s | %8s | %8s | %8s | %8s | %8s | %8s |\n", "Deed", "times", "a second", "50 %",
              "95 %", "99 %", "longest");
  std::printf("|---|---:|---:|---:|---:|---:|---:|\n");
  for (std::size_t deed = 0; deed < kDeeds.size(); ++deed) {
    std::vector<double> times = tally.milliseconds[deed];
    if (times.empty()) continue;
    std::ranges::sort(times);
    const auto at = [&](double part) {
      return times[static_cast<std::size_t>(part * static_cast<double>(times.size() - 1))];
    };
    std::printf("| %-6s | %8zu | %8.0f | %8.1f | %8.1f | %8.1f | %8.1f |\n", kDeeds[deed],
                times.size(), static_cast<double>(times.size()) / seconds, at(0.5), at(0.95),
                at(0.99), times.back());
  }
  for (const auto& [sentence, count] : tally.errors) {
    std::printf("\nRefused %d times: %s\n", count, sentence.c_str());
  }
  if (!tally.errors.empty()) {
    std::printf("The longest of these calls took %.0f ms.\n", tally.longest_refused);
  }
  std::printf("\n");
  std::fflush(stdout);
}

bool Run(const std::string& connection, int processes, int seconds, bool beside_sleeper) {
  std::printf("%d processes%s, for %d seconds, milliseconds:\n\n", processes,
              beside_sleeper ? " beside one that sleeps in a transaction" : "", seconds);
  std::fflush(stdout);
  server::Connections::OfThisThread().CloseAll();
  const auto folder =
      std::filesystem::temp_directory_path() / ("qdclgl-load-" + std::to_string(getpid()));
  std::filesystem::create_directory(folder);
  const Clock::time_point end = Clock::now() + std::chrono::seconds(seconds);
  std::vector<pid_t> children;
  for (int i = 0; i < processes; ++i) {
    children.push_back(InProcess([&] {
      Client client(static_cast<unsigned>(i + 1), connection);
      client.Work(end);
      client.Write((folder / std::to_string(i)).string());
    }));
  }
  if (beside_sleeper) children.push_back(InProcess([&] { Sleep(connection, end); }));
  bool is_good = true;
  for (const pid_t child : children) {
    int status = 0;
    waitpid(child, &status, 0);
    is_good = is_good && status == 0;
  }
  Print(ReadTallies(folder, processes), seconds);
  std::filesystem::remove_all(folder);
  return is_good;
}

// Whether the books' own check finds nothing.
bool AreSound(const std::string& connection) {
  bench::LogInTo(connection);
  const auto problems =
      CreateObject("QDSVGLBooks.BooksInfo")->Call("Check", GetPropsString()).As<Recordset>();
  std::printf("%s\n", problems->Eof() ? "The books are in order." : "THE BOOKS ARE DAMAGED.");
  return problems->Eof();
}

int Usage() {
  std::fprintf(stderr, "qdclgl-bench-load [--processes=N] [--seconds=N]\n");
  return 2;
}

}  // namespace

int main(int count, char** arguments) {
  int processes = 32, seconds = 60;
  for (const std::string_view argument : std::span(arguments + 1, arguments + count)) {
    const std::string value(argument.substr(std::min(argument.find('=') + 1, argument.size())));
    if (argument.starts_with("--processes=")) processes = std::atoi(value.c_str());
    else if (argument.starts_with("--seconds=")) seconds = std::atoi(value.c_str());
    else return Usage();
  }
  const char* const postgresql = std::getenv("QDCLGL_TEST_POSTGRESQL");
  if (postgresql == nullptr || processes < 1 || seconds < 1) return Usage();
  try {
    SetApartmentStarted(true);
    server::RegisterServerComponents();
    const std::string connection =
        server::ConnectionText::Parse(postgresql)
            .With(server::connection_key::kSchema, "bench_load")
            .With(server::connection_key::kLockTimeout, std::to_string(kLockTimeoutSeconds))
            .ToText();
    bench::MakeBooks(connection);
    const bool is_good = Run(connection, processes, seconds, false) &&
                         Run(connection, processes, seconds, true) && AreSound(connection);
    return is_good ? 0 : 1;
  } catch (const Error& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
