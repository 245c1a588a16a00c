// Clients at work while the server of their books dies and its standby takes its place.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>

#include "qdclgl/server/db/connections.h"
#include "tests/server/client.h"
#include "tests/server/ledger_fixture.h"
#include "tests/server/own_cluster.h"
#include "tests/support/random_seed.h"

namespace qdclgl::server::testing {
namespace {

// ---- Beside two servers, which scripts/with-postgresql --standby starts ----

const char* FailOver() { return std::getenv("QDCLGL_TEST_FAIL_OVER"); }

std::vector<DatabaseKind> PairsOfServers() {
  return FailOver() != nullptr ? std::vector{DatabaseKind::kPostgreSQL}
                               : std::vector<DatabaseKind>();
}

class PairOfServers : public LedgerTest {};
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(PairOfServers);
INSTANTIATE_TEST_SUITE_P(, PairOfServers, ::testing::ValuesIn(PairsOfServers()), NameOf);

TEST_P(PairOfServers, ClientsGoOnWhenTheServerDiesAndNothingIsLostOrDoubled) {
  Save(Sale(1));
  const auto seed = ::qdclgl::testing::RandomSeed();
  SCOPED_TRACE("QDCLGL_SEED=" + std::to_string(seed));
  std::mt19937 random(seed);
  constexpr int kSeconds = 8;
  std::vector<std::unique_ptr<Client>> clients;
  for (int i = 0; i < 8; ++i) {
    clients.push_back(std::make_unique<Client>(connection, random(), kSeconds, "stays"));
  }
  for (const auto& client : clients) ASSERT_EQ(client->NextLine(), "ready\n");
  std::this_thread::sleep_for(
      std::chrono::milliseconds(std::uniform_int_distribution<int>(500, 2000)(random)));
  const Long before = *Books().QueryValue<Long>("SELECT COUNT(*) FROM t_Voucher");
  ASSERT_EQ(std::system(FailOver()), 0);

  Long saved = 1, edited = 0, lost = 0;
  for (const auto& client : clients) {
    const std::string line = client->NextLine();
    int saves = 0, edits = 0, losses = 0;
    EXPECT_EQ(std::sscanf(line.c_str(), "saved %d edited %d", &saves, &edits), 2) << line;
    const std::string last = client->NextLine();
    EXPECT_EQ(std::sscanf(last.c_str(), "lost %d", &losses), 1) << last;
    EXPECT_EQ(client->Wait(), 0) << line;
    saved += saves;
    edited += edits;
    lost += losses;
  }
  Connections::OfThisThread().CloseAll();
  EXPECT_EQ(Breaches(), "");
  EXPECT_EQ(BalanceText(), RecomputedText());
  EXPECT_EQ(Books().QueryValue<Long>("SELECT COUNT(*) FROM t_Voucher"), saved);
  EXPECT_EQ(Books().QueryValue<Long>("SELECT COUNT(DISTINCT FReference) FROM t_Voucher"), saved)
      << "no voucher is there twice";
  EXPECT_EQ(CLng(Read(1)->Value("FAttachments")), edited) << "each edit counted";
  EXPECT_FALSE(
      Books().QueryRow<Long>("SELECT FYear FROM t_Voucher GROUP BY FYear, FPeriod, FGroupID"
                             " HAVING MIN(FNumber) <> 1 OR MAX(FNumber) <> COUNT(*)"))
      << "numbers have no gaps";
  EXPECT_GT(before, 1) << "clients worked before";
  EXPECT_GT(saved, before) << "and behind it";
  EXPECT_GE(lost, 1) << "somebody was in the middle of something";
  std::printf("%d vouchers before, %d in the end, %d edits, %d calls cut off\n",
              static_cast<int>(before), static_cast<int>(saved), static_cast<int>(edited),
              static_cast<int>(lost));
}

// ---- Such a pair ----

class Failover : public ::testing::TestWithParam<DatabaseKind> {};
QDCLGL_BOOKS_TEST_OF(Failover, kPostgreSQL);

TEST_P(Failover, BooksGoOnOnTheStandby) { ExpectToPassBeside("--standby", "*PairOfServers*", 1); }

}  // namespace
}  // namespace qdclgl::server::testing
