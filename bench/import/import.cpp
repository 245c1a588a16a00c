// Measures the main job as a user sees it: the built program imports, checks, posts and balances
// journals. Time, processor time and peak memory of each run are the system's own figures.
//
//   qdclgl-import-bench [--accounts FILE --journal FILE --year YEAR]
//
// Without files: journals of 10,000 and 100,000 vouchers of 4 lines, which it makes. The books are
// a SQLite file in the current folder, at full durability.
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include "bench/import/run.h"

namespace {

using bench::Measured;
using bench::Run;

// A sale in each voucher: one account is debited, three are credited.
void MakeJournal(const std::string& chart, const std::string& journal, int count) {
  std::ofstream accounts(chart);
  accounts << "number,name,dc\n1000,Debtors,1\n2900,Output tax,-1\n4000,Sales,-1\n";
  const auto below = [](int above, int i) {
    return std::to_string(above) + "." + std::to_string(100 + i);
  };
  for (int i = 0; i < 50; ++i) accounts << below(1000, i) << ",Debtor " << i << ",1\n";
  for (int i = 0; i < 30; ++i) accounts << below(4000, i) << ",Sales " << i << ",-1\n";

  std::ofstream rows(journal);
  rows << "voucher,date,group,explanation,account,debit,credit\n";
  for (int i = 0; i < count; ++i) {
    const int month = 1 + static_cast<int>(12LL * i / count), day = 1 + i % 28;
    char head[80];
    std::snprintf(head, sizeof head, "%d,2024-%02d-%02d,Sales,Sale no. %d,", i + 1, month, day,
                  i + 1);
    // Whole units of 0.01, so that each voucher balances by itself.
    const long first = 1000 + i % 9973, second = 500 + i % 777, tax = (first + second) / 5;
    const auto amount = [](long units) {
      char text[24];
      std::snprintf(text, sizeof text, "%ld.%02ld", units / 100, units % 100);
      return std::string(text);
    };
    rows << head << below(1000, i % 50) << ',' << amount(first + second + tax) << ",\n"
         << head << below(4000, i % 30) << ",," << amount(first) << '\n'
         << head << below(4000, i % 29) << ",," << amount(second) << '\n'
         << head << "2900,," << amount(tax) << '\n';
  }
}

// Vouchers in a journal: rows that differ from the row before in their first column.
long CountVouchers(const std::string& journal) {
  std::ifstream rows(journal);
  std::string line, key;
  long count = -1;  // the headings
  while (std::getline(rows, line)) {
    const std::string first = line.substr(0, line.find(','));
    count += first != key ? 1 : 0;
    key = first;
  }
  return count;
}

void Measure(const std::string& title, const std::string& chart, const std::string& journal,
             const std::string& year) {
  const std::string book = "import-bench.db";
  const auto remove_book = [&] {
    for (const char* ending : {"", "-wal", "-shm"}) std::filesystem::remove(book + ending);
  };
  remove_book();
  const long count = CountVouchers(journal);
  std::printf("%s: %ld vouchers\n", title.c_str(), count);
  Run({"init", "--no-password", book, "--year", year});
  const auto report = [&](const char* step, const Measured& run) {
    std::printf("  %-8s %8.2f s  %8.0f vouchers/s  %6.2f s of processor  %4.0f MB at most\n", step,
                run.seconds, static_cast<double>(count) / run.seconds, run.processor_seconds,
                run.megabytes);
    std::fflush(stdout);
  };
  const Measured start = Run({"import", book, "--accounts", chart, "--new-currencies"});
  std::printf("  %-8s %8.2f s, the start of the program with its login included\n", "chart",
              start.seconds);
  report("import", Run({"import", book, "--journal", journal, "--new-currencies"}));
  report("check", Run({"check", book, "--all"}));
  report("post", Run({"post", book, "--all"}));
  report("balance", Run({"balance", book, "--csv"}));
  report("doctor", Run({"doctor", book}));
  remove_book();
}

}  // namespace

int main(int count, char** arguments) {
  std::string chart, journal, year = "2024";
  for (int i = 1; i + 1 < count; i += 2) {
    if (std::strcmp(arguments[i], "--accounts") == 0) chart = arguments[i + 1];
    if (std::strcmp(arguments[i], "--journal") == 0) journal = arguments[i + 1];
    if (std::strcmp(arguments[i], "--year") == 0) year = arguments[i + 1];
  }
  if (!journal.empty()) {
    Measure(journal, chart, journal, year);
    return 0;
  }
  for (const int vouchers : {10000, 100000}) {
    MakeJournal("import-bench-accounts.csv", "import-bench-journal.csv", vouchers);
    Measure("generated", "import-bench-accounts.csv", "import-bench-journal.csv", year);
  }
  std::filesystem::remove("import-bench-accounts.csv");
  std::filesystem::remove("import-bench-journal.csv");
}
