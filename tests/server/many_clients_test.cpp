// Clients in processes of their own: killed at any moment, and many at once.
#include <csignal>
#include <cstdio>
#include <thread>

#include "tests/server/client.h"
#include "tests/server/ledger_fixture.h"
#include "tests/support/random_seed.h"

namespace qdclgl::server::testing {
namespace {

using ::qdclgl::testing::RandomSeed;

class ManyClients : public LedgerTest {
 protected:
  ManyClients() { Save(Sale(1)); }

  // What must hold whatever has happened.
  void ExpectSoundBooks() {
    EXPECT_EQ(Breaches(), "");
    EXPECT_EQ(BalanceText(), RecomputedText());
    const auto zero = Books().QueryRow<std::int64_t, std::int64_t>(
        "SELECT COALESCE(SUM(FDebit), 0), COALESCE(SUM(FCredit), 0) FROM t_Balance");
    EXPECT_EQ(std::get<0>(*zero), std::get<1>(*zero)) << "the trial balance is zero";
    EXPECT_FALSE(
        Books().QueryRow<Long>("SELECT FYear FROM t_Voucher GROUP BY FYear, FPeriod, FGroupID"
                               " HAVING MIN(FNumber) <> 1 OR MAX(FNumber) <> COUNT(*)"))
        << "numbers have no gaps";
  }
};
QDCLGL_BOOKS_TEST(ManyClients);

TEST_P(ManyClients, AClientKilledAtAnyMomentLeavesWholeVouchersAndTrueBalances) {
  const auto seed = RandomSeed();
  SCOPED_TRACE("QDCLGL_SEED=" + std::to_string(seed));
  std::mt19937 random(seed);
  Long before = 1;
  for (int round = 0; round < 15; ++round) {
    Client client(connection, random(), 60);
    ASSERT_EQ(client.NextLine(), "ready\n");
    std::this_thread::sleep_for(
        std::chrono::microseconds(std::uniform_int_distribution<int>(0, 120'000)(random)));
    client.Kill();
    EXPECT_EQ(client.Wait(), qdclgl::testing::Process::kKilled);
    ExpectSoundBooks();
    const Long now = *Books().QueryValue<Long>("SELECT COUNT(*) FROM t_Voucher");
    EXPECT_GE(now, before);
    before = now;
  }
  EXPECT_GT(before, 3) << "some of the clients came to work before they were killed";
}

TEST_P(ManyClients, EightClientsAtOnceLoseNothing) {
  const auto seed = RandomSeed();
  SCOPED_TRACE("QDCLGL_SEED=" + std::to_string(seed));
  std::mt19937 random(seed);
  std::vector<std::unique_ptr<Client>> clients;
  for (int i = 0; i < 8; ++i) {
    clients.push_back(std::make_unique<Client>(connection, random(), 3));
  }
  Long saved = 1, edited = 0;
  for (const auto& client : clients) {
    ASSERT_EQ(client->NextLine(), "ready\n");
    const std::string line = client->NextLine();
    int saves = 0, edits = 0;
    EXPECT_EQ(std::sscanf(line.c_str(), "saved %d edited %d", &saves, &edits), 2) << line;
    EXPECT_EQ(client->Wait(), 0) << line;
    EXPECT_GT(saves, 0);
    saved += saves;
    edited += edits;
  }
  ExpectSoundBooks();
  EXPECT_EQ(Books().QueryValue<Long>("SELECT COUNT(*) FROM t_Voucher"), saved);
  EXPECT_EQ(CLng(Read(1)->Value("FAttachments")), edited) << "each edit counted";
  EXPECT_GT(edited, 0);
}

}  // namespace
}  // namespace qdclgl::server::testing
