#include "qdclgl/server/access/trail_seal.h"

#include <regex>

#include "qdclgl/server/access/audit.h"
#include "qdclgl/server/db/connections.h"
#include "tests/server/ledger_fixture.h"

namespace qdclgl::server::testing {
namespace {

// A seal is due with each ten minutes on the clock: books begin here with one that was just made.
class TrailSealTest : public LedgerTest {
 protected:
  TrailSealTest() {
    made_with_ = Seals();
    Break("DELETE FROM t_AuditSeal");
    Transaction transaction(Books(), Transaction::Kind::kChangeRules);
    SealTrail(Books());
    transaction.Commit();
    first_ = LastDeed();
  }

  // Number, last row, rows, and whether it is only marked; a line for each.
  std::string Seals() {
    std::string text;
    for (const TrailSeal& seal : AllSeals(Books())) {
      text += std::to_string(seal.number) + " " + std::to_string(seal.last_id) + " " +
              std::to_string(seal.count) + (seal.hash.empty() ? " marked\n" : "\n");
    }
    return text;
  }
  Long LastDeed() { return *Books().QueryValue<Long>("SELECT MAX(FAuditID) FROM t_Audit"); }
  // As if the last seal were of another day; what it seals is broken by that.
  void LetTimePass() {
    Break("UPDATE t_AuditSeal SET FTime = '2000-01-01T00:00:00Z'");
    // A connection that looked just now doesn't look again for a while.
    Connections::OfThisThread().CloseAll();
  }
  // The first seal, and so many deeds up to the last one behind it.
  std::string FirstSeal() const {
    return "1 " + std::to_string(first_) + " " + std::to_string(first_) + "\n";
  }
  std::string SealUpTo(Long number, Long last, Long former) const {
    return std::to_string(number) + " " + std::to_string(last) + " " +
           std::to_string(last - former) + "\n";
  }

  std::string made_with_;
  Long first_ = 0;
};

TEST_P(TrailSealTest, TheMakingOfBooksIsSealed) {
  EXPECT_TRUE(made_with_.starts_with("1 8 8\n")) << made_with_;
}

TEST_P(TrailSealTest, ClosingSealsAllThatWasDone) {
  const Long before = LastDeed();
  Call("QDSVGLPeriod.PeriodUpdate", "Close", props);
  EXPECT_EQ(Seals(), FirstSeal() + SealUpTo(2, before + 1, first_));
  EXPECT_EQ(Breaches(), "");
}

TEST_P(TrailSealTest, TheHeadIsThatOfASealBehindEverything) {
  const auto head = [&] { return Call("QDSVGLAudit.AuditInfo", "GetHead", props).As<String>(); };
  const std::string first = head();
  EXPECT_EQ(first, "1-" + LastSeal(Books()).hash);
  EXPECT_EQ(LastSeal(Books()).last_id, LastDeed());
  EXPECT_EQ(head(), first) << "nothing was done in between";
  Save(Sale(1));
  EXPECT_TRUE(head().starts_with("2-"));
  EXPECT_EQ(Breaches(), "");
}

TEST_P(TrailSealTest, ASealIsDueAfterAThousandDeedsAndWithTheNextTenMinutes) {
  const std::string_view at = "2024-01-31T13:09:59Z";
  EXPECT_FALSE(IsSealDue(1500, at, 501, "2024-01-31T13:00:00Z"));
  EXPECT_TRUE(IsSealDue(1501, at, 501, "2024-01-31T13:00:00Z"));
  EXPECT_TRUE(IsSealDue(502, "2024-01-31T13:10:00Z", 501, at));
  EXPECT_TRUE(IsSealDue(502, "2024-02-01T13:09:59Z", 501, at));
  EXPECT_FALSE(IsSealDue(5000, at, 0, "")) << "books begin with a seal";
}

TEST_P(TrailSealTest, WhoeverWritesWhenASealIsDueSeals) {
  Save(Sale(1));
  EXPECT_EQ(Seals(), FirstSeal());
  LetTimePass();
  Save(Sale(1));
  EXPECT_EQ(Seals(), FirstSeal() + SealUpTo(2, LastDeed(), first_));
  Save(Sale(1));
  EXPECT_EQ(AllSeals(Books()).size(), 2u);
}

TEST_P(TrailSealTest, WhatIsTakenBackTakesItsSealAlong) {
  LetTimePass();
  const std::string before = State();
  Call("QDSVGLBatch.BatchUpdate", "Begin", props);
  Save(Sale(1));
  EXPECT_EQ(AllSeals(Books()).size(), 2u);
  Call("QDSVGLBatch.BatchUpdate", "RollBack", props);
  EXPECT_EQ(State(), before);
}

TEST_P(TrailSealTest, TheTimeIsTheDatabasesAndNeverGoesBack) {
  const auto now = [&] {
    return *Books().QueryValue<std::string>(Books().Dialect(
        "SELECT strftime('%Y-%m-%dT%H:%M:%SZ', 'now')",
        "SELECT to_char(clock_timestamp() AT TIME ZONE 'UTC', 'YYYY-MM-DD\"T\"HH24:MI:SS\"Z\"')"));
  };
  const auto last_time = [&] {
    return *Books().QueryValue<std::string>(
        "SELECT FTime FROM t_Audit ORDER BY FAuditID DESC LIMIT 1");
  };
  const std::string before = now();
  Save(Sale(1));
  EXPECT_LE(before, last_time());
  EXPECT_GE(now(), last_time());
  Break("UPDATE t_Audit SET FTime = '2999-01-01T00:00:00Z' WHERE FAuditID = " +
        std::to_string(LastDeed()));
  Save(Sale(1));
  EXPECT_EQ(last_time(), "2999-01-01T00:00:00Z");
}

QDCLGL_BOOKS_TEST(TrailSealTest);

// Only there can others be at work meanwhile, and only there has a connection an address.
class SharedTrailTest : public TrailSealTest {
 protected:
  // Another program that saves something, as far as the trail.
  class Other {
   public:
    explicit Other(const std::string& connection)
        : db_(ConnectionText::Parse(connection)), transaction_(db_, Transaction::Kind::kSave) {
      auto session = std::make_shared<Session>();
      session->user_name = "other";
      WriteAudit({session, nullptr, db_, false, {Role::kPreparer, "save"}},
                 {.subject = "Test", .record_id = 1, .record = "", .action = "Create"});
    }
    void Commit() { transaction_.Commit(); }
    // Time and hash of its row.
    std::tuple<std::string, std::string> Row() {
      return *db_.QueryRow<std::string, std::string>(
          "SELECT FTime, FHash FROM t_Audit WHERE FSubject = 'Test'");
    }

   private:
    Database db_;
    Transaction transaction_;
  };
};

TEST_P(SharedTrailTest, ABlockIsSealedOnceAllAreDoneWhoCouldStillWriteIntoIt) {
  Other other(connection);
  LetTimePass();
  Save(Sale(1));  // does not wait, and finds that it is not alone
  const Long marked = LastDeed();
  EXPECT_EQ(Seals(), FirstSeal() + "2 " + std::to_string(marked) + " 0 marked\n");
  LetTimePass();
  Save(Sale(1));
  const Long longer = LastDeed();
  EXPECT_EQ(Seals(), FirstSeal() + "2 " + std::to_string(longer) + " 0 marked\n")
      << "still not alone";
  other.Commit();
  LetTimePass();
  Save(Sale(1));
  EXPECT_EQ(Seals(), FirstSeal() + SealUpTo(2, longer, first_) + SealUpTo(3, longer + 1, longer))
      << "with the row of the other";
}

TEST_P(SharedTrailTest, OneProgramSealsAndTheOthersGoOn) {
  LetTimePass();
  Database sealing(ConnectionText::Parse(connection));
  Transaction transaction(sealing, Transaction::Kind::kSave);
  sealing.QueryValue<std::string>(
      "SELECT CAST(pg_advisory_xact_lock(hashtext(current_schema()), 2) AS TEXT)");
  Save(Sale(1));
  EXPECT_EQ(Seals(), FirstSeal());
}

// A server dies with the first one's commit, and on the one in its place the second does the same:
// the first must not take the second's row for its own.
TEST_P(SharedTrailTest, TheSameDeedByTwoConnectionsInOneSecondIsToldApart) {
  std::tuple<std::string, std::string> lost, kept;
  do {
    lost = Other(connection).Row();
    kept = Other(connection).Row();
  } while (std::get<0>(lost) != std::get<0>(kept));
  EXPECT_NE(std::get<1>(lost), std::get<1>(kept));
}

TEST_P(SharedTrailTest, TheAddressOfTheConnectionIsTheDatabases) {
  Save(Sale(1, "2024-01-15", {{"IPAddress", "203.0.113.9"}}));
  const auto row = Books().QueryRow<std::string, std::string, std::string>(
      "SELECT FIPAddress, FConnection, COALESCE(host(inet_client_addr()), '') FROM t_Audit"
      " ORDER BY FAuditID DESC LIMIT 1");
  const auto& [told, connected, address] = *row;
  EXPECT_EQ(told, "203.0.113.9");
  EXPECT_NE(address, "");
  EXPECT_TRUE(std::regex_match(connected, std::regex(address + " [0-9a-f]{16}"))) << connected;
}

QDCLGL_BOOKS_TEST_OF(SharedTrailTest, kPostgreSQL);

}  // namespace
}  // namespace qdclgl::server::testing
