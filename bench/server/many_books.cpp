// Many books on one PostgreSQL, a schema for each: what a login, a voucher's save and its reading
// cost while there are more and more of them. See docs/scale.md.
//
//   qdclgl-bench-books [--books=N]
//
// QDCLGL_TEST_POSTGRESQL holds the connection text of the database; scripts/bench starts one. Where
// QDCLGL_TEST_POOLER has the port of a pooler in front of it, the same is done by way of that too,
// once with a connection of the server's for each client and once with one for each transaction.
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "bench/server/books.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/frame/session/startup.h"
#include "qdclgl/qdclgl.h"
#include "qdclgl/server/db/connection_text.h"
#include "qdclgl/server/db/connections.h"
#include "qdclgl/server/server.h"

namespace {

using namespace qdclgl;
using Clock = std::chrono::steady_clock;

constexpr int kProbes = 10;  // books that are worked in at each stage: some old, some new
constexpr int kRounds = 10;  // in each of them
constexpr int kGrowth = 10;  // how many times the books of the stage before

double MillisecondsSince(Clock::time_point start) {
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

double Median(std::vector<double> times) {
  std::ranges::sort(times);
  return times.empty() ? 0 : times[times.size() / 2];
}

class ManyBooks {
 public:
  ManyBooks(const std::string& server, std::string pooler)
      : server_(server::ConnectionText::Parse(server)), pooler_(std::move(pooler)) {}

  void GrowTo(int count) {
    std::vector<double> times;
    const int former = count_;
    for (; count_ < count; ++count_) {
      // The first ones, and the last of each stage, are those with something to work on.
      const bool is_probe = count_ < kProbes / 2 || count_ >= count - kProbes / 2;
      const auto start = Clock::now();
      if (is_probe) {
        bench::MakeBooks(TextOf(count_, server_));
        probes_.insert(count_);
      } else {
        CreateObject("QDSVGLBooks.BooksUpdate")
            ->Call("Create", TextOf(count_, server_), "EUR", Long{2024}, Named("NoPassword", true));
        times.push_back(MillisecondsSince(start));
      }
      server::Connections::OfThisThread().CloseAll();
      if (count_ % 50 == 0) std::fprintf(stderr, "\r%d books", count_);
    }
    std::fprintf(stderr, "\r%d books\n", count_);
    if (former < count_) made_in_ = Median(times);
  }

  void Measure() {
    Print("directly", server_);
    if (pooler_.empty()) return;
    for (const char* const way : {"session", "transaction"}) {
      Print(way, server_.With(server::connection_key::kPort, pooler_)
                     .With(server::connection_key::kCatalog, way));
    }
  }

 private:
  static std::string TextOf(int number, const server::ConnectionText& server) {
    return server.With(server::connection_key::kSchema, "company_" + std::to_string(number))
        .ToText();
  }

  // Each round is that of a program that begins anew.
  void Print(const char* way, const server::ConnectionText& server) {
    std::vector<double> logins, saves, next_saves, reads;
    const auto timed = [](std::vector<double>& times, const auto& work) {
      const auto start = Clock::now();
      work();
      times.push_back(MillisecondsSince(start));
    };
    for (int round = 0; round < kRounds; ++round) {
      for (const int probe : Probes()) {
        long id = 0;
        timed(logins, [&] { bench::LogInTo(TextOf(probe, server)); });
        timed(saves, [&] { id = bench::SaveVoucher(round, 1); });
        timed(next_saves, [&] { id = bench::SaveVoucher(round, 1); });
        const auto vouchers = Make<VoucherSet>();
        timed(reads, [&] { vouchers->Item(static_cast<Long>(id)); });
        server::Connections::OfThisThread().CloseAll();
      }
    }
    std::printf("| %5d | %-13s | %8.1f | %8.1f | %8.1f | %8.1f | %8.0f |\n", count_, way,
                Median(logins), Median(saves), Median(next_saves), Median(reads), made_in_);
    std::fflush(stdout);
  }

  // The first ones and the last ones.
  std::vector<int> Probes() const {
    std::vector<int> all(probes_.begin(), probes_.end());
    if (all.size() > kProbes) all.erase(all.begin() + kProbes / 2, all.end() - kProbes / 2);
    return all;
  }

  server::ConnectionText server_;
  std::string pooler_;  // its port
  std::set<int> probes_;
  int count_ = 0;
  double made_in_ = 0;  // milliseconds, of books of the last stage
};

int Usage() {
  std::fprintf(stderr, "qdclgl-bench-books [--books=N]\n");
  return 2;
}

}  // namespace

int main(int count, char** arguments) {
  int most = 1000;
  for (const std::string_view argument : std::span(arguments + 1, arguments + count)) {
    if (!argument.starts_with("--books=")) return Usage();
    most = std::atoi(std::string(argument.substr(argument.find('=') + 1)).c_str());
  }
  const char* const postgresql = std::getenv("QDCLGL_TEST_POSTGRESQL");
  const char* const pooler = std::getenv("QDCLGL_TEST_POOLER");
  if (postgresql == nullptr || most < kProbes) return Usage();
  try {
    SetApartmentStarted(true);
    server::RegisterServerComponents();
    ManyBooks books(postgresql, pooler == nullptr ? "" : pooler);
    std::printf(
        "| Books | Reached       |    Login | 1st save |     Save |     Read | Made in |\n");
    std::printf("|---:|---|---:|---:|---:|---:|---:|\n");
    for (int stage = kProbes; stage < most; stage *= kGrowth) {
      books.GrowTo(stage);
      books.Measure();
    }
    books.GrowTo(most);
    books.Measure();
    return 0;
  } catch (const Error& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
