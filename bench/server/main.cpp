// The server components against raw calls of the databases' libraries, both sides in turn in one
// run: saving vouchers, trial balances, long lists. See docs/performance.md.
//
//   qdclgl-bench-server [--vouchers=N] [--items=N] [--only=text]
//
// With --only the works that have the text in their name run; books are made for those alone.
// QDCLGL_TEST_POSTGRESQL holds the connection text of a PostgreSQL database to measure as well;
// scripts/bench starts one.
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "bench/server/books.h"
#include "bench/server/items.h"
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

// What --only asks for.
std::string only;
bool IsWanted(std::string_view name) { return name.find(only) != name.npos; }

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
  if (!IsWanted(name)) return;
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
    const char* const name =
        full ? "SQLite, full durability: save a voucher" : "SQLite, normal: save a voucher";
    if (!IsWanted(name)) continue;
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
        name, 9, full ? 0.8 : 0.5, [] { bench::SaveVouchers(kVouchers); },
        [&] { raw->SaveVouchers(kVouchers); }, kVouchers);
  }
}

constexpr const char* kOneProcess = "PostgreSQL, one process: save a voucher";
constexpr const char* kEightProcesses = "PostgreSQL, eight processes: save a voucher";

void ComparePostgreSQL(const char* text) {
  if (!IsWanted(kOneProcess) && !IsWanted(kEightProcesses)) return;
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
        kOneProcess, 9, 0.8, [] { bench::SaveVouchers(kVouchers); },
        [&] { raw->SaveVouchers(kVouchers); }, kVouchers);
  }
  constexpr int kProcesses = 8, kEach = 100;
  Compare(
      kEightProcesses, 7, 0.8,
      [] { InProcesses(kProcesses, [](int) { bench::SaveVouchers(kEach); }); },
      [&] {
        InProcesses(kProcesses, [&](int) {
          bench::RawPostgreSQL(options, "bench_theirs")->SaveVouchers(kEach);
        });
      },
      kProcesses * kEach);
}

// A work that has no peer but a goal, in milliseconds.
void Measure(const std::string& name, double goal, const std::function<void()>& work) {
  if (!IsWanted(name)) return;
  std::vector<double> times;
  for (int i = 0; i < 9; ++i) times.push_back(Seconds(work));
  std::printf("%s: %.2f ms (goal %.0f).\n\n", name.c_str(), Median(times) * 1e3, goal);
  std::fflush(stdout);
}

// Saves and posts the vouchers of a year.
void FillYear(const std::string& books, int year, int vouchers) {
  const double saved = Seconds([&] { bench::SaveVouchersInBatches(vouchers, year); });
  const double posted = Seconds([&] { bench::PostAll(year); });
  std::printf("%s: %d vouchers of 4 lines saved in batches at %.0f a second, posted at %.0f.\n\n",
              books.c_str(), vouchers, vouchers / saved, vouchers / posted);
}

constexpr const char* kLedger = "ledger of a year";

// A ledger of the account of that number, with columns for those that the filter finds.
Long MakeLedger(const std::string& account, const std::string& columns) {
  const auto account_id = [](const std::string& filter) {
    const auto accounts = Make<AccountSet>();
    accounts->Filter(filter);
    return accounts->GetCurrent()->AccountID();
  };
  static int made = 0;
  const auto ledger = Make<MultiLedgerSet>()->CreateNew("Ledger " + std::to_string(++made));
  ledger->AccountID(account_id("FNumber = '" + account + "'"));
  const auto accounts = Make<AccountSet>();
  accounts->Filter(columns);
  for (auto& each : *accounts) {
    ledger->Columns()->Add();
    const auto column = ledger->Columns()->Item(ledger->Columns()->Count());
    column->AccountID(each.AccountID());
    column->DC(1);
  }
  ledger->SaveChanges();
  return ledger->LedgerID();
}

// The sheet of a year: of one account among many, with columns for others, and of an account whose
// 100 sub-accounts have half of all lines; and again once the books have another year.
void MeasureLedgers(const std::string& books, int vouchers) {
  if (!IsWanted(books + ": " + kLedger)) return;
  struct Sheet {
    const char* what;
    Long ledger;
  };
  const Sheet sheets[] = {
      {"one account", MakeLedger("1000", "FNumber = '1000'")},
      {"one account and columns of nine others",
       MakeLedger("1000", "FNumber >= '1000' AND FNumber < '1010'")},
      {"an account and columns of ten of its sub-accounts",
       MakeLedger("2000", "FNumber LIKE '2000.10%'")},
  };
  const auto measure = [&](const std::string& when) {
    for (const Sheet& sheet : sheets) {
      const auto read = [&] {
        return CreateObject("QDSVGLMCLedger.MultiColumnLedgerInfo")
            ->Call("GetLedger", GetPropsString(), sheet.ledger, DateTime::FromYmd(2024, 1, 1),
                   DateTime::FromYmd(2024, 12, 31))
            .As<Recordset>();
      };
      Measure(books + ": " + kLedger + " of " + std::to_string(vouchers) + " vouchers, " + when +
                  sheet.what + ", " + std::to_string(read()->RecordCount()) + " rows",
              1000, read);
    }
  };
  measure("");
  FillYear(books, 2025, vouchers);
  measure("with another year behind it, ");
}

constexpr const char* kStored = "SQLite: trial balance of posted lines from stored balances";
constexpr const char* kFromLines = "SQLite: trial balance from the lines";
constexpr const char* kList = "SQLite: list of all vouchers";

void CompareReading(const std::filesystem::path& folder, int vouchers) {
  if (!IsWanted(kStored) && !IsWanted(kFromLines) && !IsWanted(kList) &&
      !IsWanted(std::string("SQLite: ") + kLedger)) {
    return;
  }
  const std::string file = File(folder, "large.db");
  bench::MakeBooks("Provider=SQLite;Data Source=" + file + ";Synchronous=Normal;");
  FillYear("SQLite", 2024, vouchers);

  const String props = GetPropsString();
  const auto balances = [&](std::string_view method) {
    CreateObject("QDSVGLBalance.BalanceInfo")->Call(method, props);
  };
  Measure(kStored, 10, [&] { balances("GetList"); });
  Compare(
      kFromLines, 7, 1 / 1.3, [&] { balances("GetListFromLines"); }, [&] { bench::SumLines(file); },
      1);
  Compare(
      kList, 7, 1 / 2.0,
      [&] {
        Long options = 0;
        String filter, sort;
        CreateObject("QDSVGLVoucher.VoucherInfo")
            ->Call("GetList", props, ByRef(options), ByRef(filter), ByRef(sort));
      },
      [&] { bench::StepThroughVouchers(file); }, vouchers);
  MeasureLedgers("SQLite", vouchers);
}

void MeasureItems(const std::filesystem::path& folder, int items) {
  const std::string name = "SQLite: items";
  if (!IsWanted(name)) return;
  bench::MakeBooks("Provider=SQLite;Data Source=" + File(folder, "items.db") +
                   ";Synchronous=Normal;");
  const Long item_class = bench::MakeItemClass();
  const double saved = Seconds([&] { bench::SaveItems(item_class, items); });
  std::printf("%s: %d of 20 fields saved in batches at %.0f a second.\n\n", name.c_str(), items,
              items / saved);
  for (const auto& [what, read] : bench::ItemPages(item_class, items)) {
    Measure(name + ": page of 100 of " + std::to_string(items) + ", " + what, 50, read);
  }
}

void MeasurePostgreSQLLedgers(const char* text, int vouchers) {
  if (!IsWanted(std::string("PostgreSQL: ") + kLedger)) return;
  bench::MakeBooks(
      server::ConnectionText::Parse(text).With(key::kSchema, "bench_ledgers").ToText());
  FillYear("PostgreSQL", 2024, vouchers);
  MeasureLedgers("PostgreSQL", vouchers);
}

}  // namespace

int main(int count, char** arguments) {
  int vouchers = 100'000, items = 100'000;
  for (const std::string_view argument : std::span(arguments + 1, arguments + count)) {
    const auto value = argument.substr(std::min(argument.find('=') + 1, argument.size()));
    if (argument.starts_with("--vouchers=")) {
      vouchers = std::atoi(std::string(value).c_str());
    } else if (argument.starts_with("--items=")) {
      items = std::atoi(std::string(value).c_str());
    } else if (argument.starts_with("--only=")) {
      only = value;
    } else {
      std::fprintf(stderr, "qdclgl-bench-server [--vouchers=N] [--items=N] [--only=text]\n");
      return 2;
    }
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
    const char* const postgresql = std::getenv("QDCLGL_TEST_POSTGRESQL");
    if (postgresql != nullptr) ComparePostgreSQL(postgresql);
    CompareReading(folder, vouchers);
    MeasureItems(folder, items);
    if (postgresql != nullptr) MeasurePostgreSQLLedgers(postgresql, vouchers);
  } catch (const Error& error) {
    std::fprintf(stderr, "%s\n", error.what());
    std::filesystem::remove_all(folder);
    return 1;
  }
  server::Connections::OfThisThread().CloseAll();
  std::filesystem::remove_all(folder);
  return 0;
}
