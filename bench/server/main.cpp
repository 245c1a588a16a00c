// The server components against raw calls of the databases' libraries, both sides in turn in one
// run: saving vouchers, trial balances, long lists. See docs/performance.md.
//
//   qdclgl-bench-server [--vouchers=N]
//
// QDCLGL_TEST_POSTGRESQL holds the connection text of a PostgreSQL database to measure as well;
// scripts/bench starts one.
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "bench/server/books.h"
#include "qdclgl/accounts/account_set.h"
#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/frame/objects/late_bound.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/frame/session/session.h"
#include "qdclgl/frame/session/startup.h"
#include "qdclgl/ledgers/multi_ledger_set.h"
#include "qdclgl/server/db/connection_text.h"
#include "qdclgl/server/db/connections.h"
#include "qdclgl/server/server.h"

namespace {

using namespace qdclgl;
namespace key = qdclgl::server::connection_key;

double Seconds(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double Median(std::vector<double> values) {
  std::ranges::sort(values);
  return values[values.size() / 2];
}

// Measures both sides in turn and prints a line of the table. `goal` is the least ratio of speeds,
// ours divided by theirs.
void Compare(const char* name, int rounds, double goal, const std::function<void()>& ours,
             const std::function<void()>& theirs, int units) {
  std::vector<double> our_times, their_times, ratios;
  ours();
  theirs();
  for (int i = 0; i < rounds; ++i) {
    our_times.push_back(Seconds(ours) / units);
    their_times.push_back(Seconds(theirs) / units);
    ratios.push_back(their_times.back() / our_times.back());
  }
  const double ratio = Median(ratios);
  std::printf("| %-50s | %10.1f | %10.1f | %5.2f | %.2f-%.2f | %4.2f | %s |\n", name,
              Median(our_times) * 1e6, Median(their_times) * 1e6, ratio,
              *std::ranges::min_element(ratios), *std::ranges::max_element(ratios), goal,
              ratio >= goal ? "ok" : "missed");
  std::fflush(stdout);
}

// Runs a work in several processes at once.
void InProcesses(int count, const std::function<void(int)>& work) {
  server::Connections::OfThisThread().CloseAll();
  std::vector<pid_t> children;
  for (int i = 0; i < count; ++i) {
    const pid_t child = fork();
    if (child == 0) {
      try {
        work(i);
      } catch (const Error& error) {
        std::fprintf(stderr, "%s\n", error.what());
        _exit(1);
      }
      server::Connections::OfThisThread().CloseAll();
      _exit(0);
    }
    children.push_back(child);
  }
  for (const pid_t child : children) {
    int status = 0;
    waitpid(child, &status, 0);
    if (status != 0) std::exit(1);
  }
}

std::string File(const std::filesystem::path& folder, const char* name) {
  return (folder / name).string();
}

void CompareSQLite(const std::filesystem::path& folder) {
  for (const bool full : {true, false}) {
    const std::string ours = File(folder, full ? "ours-full.db" : "ours-normal.db");
    const std::string theirs = File(folder, full ? "theirs-full.db" : "theirs-normal.db");
    const std::string connection = "Provider=SQLite;Data Source=" + ours +
                                   (full ? ";Synchronous=Full;" : ";Synchronous=Normal;");
    bench::MakeBooks("Provider=SQLite;Data Source=" + theirs + ";");
    server::Connections::OfThisThread().CloseAll();
    bench::MakeBooks(connection);
    const auto raw = bench::RawSQLite(theirs, full);
    constexpr int kVouchers = 500;
    Compare(
        full ? "SQLite, full durability: save a voucher" : "SQLite, normal: save a voucher", 9,
        full ? 0.8 : 0.5, [] { bench::SaveVouchers(kVouchers); },
        [&] { raw->SaveVouchers(kVouchers); }, kVouchers);
  }
}

void ComparePostgreSQL(const char* text) {
  const auto base = server::ConnectionText::Parse(text);
  const std::string ours = base.With(key::kSchema, "bench_ours").ToText();
  const std::string theirs = base.With(key::kSchema, "bench_theirs").ToText();
  bench::MakeBooks(theirs);
  bench::MakeBooks(ours);
  const std::string options =
      "host=" + std::string(base[key::kHost]) + " port=" + std::string(base[key::kPort]) +
      " dbname=" + std::string(base[key::kCatalog]) + " user=" + std::string(base[key::kUser]);
  {
    const auto raw = bench::RawPostgreSQL(options, "bench_theirs");
    constexpr int kVouchers = 300;
    Compare(
        "PostgreSQL, one process: save a voucher", 9, 0.8, [] { bench::SaveVouchers(kVouchers); },
        [&] { raw->SaveVouchers(kVouchers); }, kVouchers);
  }
  constexpr int kProcesses = 8, kEach = 100;
  Compare(
      "PostgreSQL, eight processes: save a voucher", 7, 0.8,
      [] { InProcesses(kProcesses, [](int) { bench::SaveVouchers(kEach); }); },
      [&] {
        InProcesses(kProcesses, [&](int) {
          bench::RawPostgreSQL(options, "bench_theirs")->SaveVouchers(kEach);
        });
      },
      kProcesses * kEach);
}

// The sheet of a year: of one account among many, and of all that have lines.
void MeasureLedgers(const String& props, int vouchers) {
  const auto measure = [&](const char* what, const std::string& filter) {
    const auto accounts = Make<AccountSet>();
    accounts->Filter(filter);
    const auto ledger = Make<MultiLedgerSet>()->CreateNew(what);
    ledger->AccountID(accounts->GetCurrent()->AccountID());
    for (auto& account : *accounts) {
      ledger->Columns()->Add();
      const auto column = ledger->Columns()->Item(ledger->Columns()->Count());
      column->AccountID(account.AccountID());
      column->DC(1);
    }
    ledger->SaveChanges();
    Long rows = 0;
    std::vector<double> times;
    for (int i = 0; i < 9; ++i) {
      times.push_back(Seconds([&] {
        rows = CreateObject("QDSVGLMCLedger.MultiColumnLedgerInfo")
                   ->Call("GetLedger", props, ledger->LedgerID(), DateTime::FromYmd(2024, 1, 1),
                          DateTime::FromYmd(2024, 12, 31))
                   .As<Recordset>()
                   ->RecordCount();
      }));
    }
    std::printf(
        "Ledger of a year of %d vouchers, %s, %d columns, %d rows: %.1f ms (goal 1000).\n\n",
        vouchers, what, ledger->Columns()->Count(), rows, Median(times) * 1e3);
  };
  measure("one account", "FNumber = '1000'");
  measure("one account with ten columns", "FNumber >= '1000' AND FNumber < '1010'");
}

void CompareReading(const std::filesystem::path& folder, int vouchers) {
  const std::string file = File(folder, "large.db");
  bench::MakeBooks("Provider=SQLite;Data Source=" + file + ";Synchronous=Normal;");
  const double saved = Seconds([&] { bench::SaveVouchersInBatches(vouchers); });
  const double posted = Seconds([] { bench::PostAll(); });
  std::printf("\n%d vouchers of 4 lines: saved in batches at %.0f a second, posted at %.0f.\n\n",
              vouchers, vouchers / saved, vouchers / posted);

  const String props = GetPropsString();
  const auto balances = [&](std::string_view method) {
    CreateObject("QDSVGLBalance.BalanceInfo")->Call(method, props);
  };
  std::vector<double> times;
  for (int i = 0; i < 15; ++i) times.push_back(Seconds([&] { balances("GetList"); }));
  std::printf("Trial balance of %d posted lines from stored balances: %.2f ms (goal 10).\n\n",
              vouchers * 4, Median(times) * 1e3);

  MeasureLedgers(props, vouchers);

  Compare(
      "SQLite: trial balance from the lines", 7, 1 / 1.3, [&] { balances("GetListFromLines"); },
      [&] { bench::SumLines(file); }, 1);
  Compare(
      "SQLite: list of all vouchers", 7, 1 / 2.0,
      [&] {
        Long options = 0;
        String filter, sort;
        CreateObject("QDSVGLVoucher.VoucherInfo")
            ->Call("GetList", props, ByRef(options), ByRef(filter), ByRef(sort));
      },
      [&] { bench::StepThroughVouchers(file); }, vouchers);
}

}  // namespace

int main(int count, char** arguments) {
  int vouchers = 100'000;
  if (count > 1 && std::strncmp(arguments[1], "--vouchers=", 11) == 0) {
    vouchers = std::atoi(arguments[1] + 11);
  }
  const auto folder =
      std::filesystem::temp_directory_path() / ("qdclgl-bench-" + std::to_string(getpid()));
  std::filesystem::create_directory(folder);
  try {
    SetApartmentStarted(true);
    server::RegisterServerComponents();
    std::printf("| %-50s | %10s | %10s | %5s | %-9s | %4s | |\n", "Work", "ours us", "theirs us",
                "speed", "spread", "goal");
    std::printf("|---|---:|---:|---:|---|---:|---|\n");
    CompareSQLite(folder);
    if (const char* text = std::getenv("QDCLGL_TEST_POSTGRESQL")) ComparePostgreSQL(text);
    CompareReading(folder, vouchers);
  } catch (const Error& error) {
    std::fprintf(stderr, "%s\n", error.what());
    std::filesystem::remove_all(folder);
    return 1;
  }
  server::Connections::OfThisThread().CloseAll();
  std::filesystem::remove_all(folder);
  return 0;
}
