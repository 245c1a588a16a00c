// A pooler between clients and the server, which gives a connection of the server's to many clients
// in turn: for as long as a client stays, or for one transaction each.
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "qdclgl/server/db/connections.h"
#include "tests/server/ledger_fixture.h"
#include "tests/server/own_cluster.h"

namespace qdclgl::server::testing {
namespace {

namespace key = connection_key;

// ---- By way of one, which scripts/with-postgresql --pooler starts ----

std::vector<std::string> Ways() {
  return std::getenv("QDCLGL_TEST_POOLER") != nullptr
             ? std::vector<std::string>{"session", "transaction"}
             : std::vector<std::string>();
}

std::string ByPooler(const std::string& connection, const std::string& way) {
  return ConnectionText::Parse(connection)
      .With(key::kPort, std::getenv("QDCLGL_TEST_POOLER"))
      .With(key::kCatalog, way)
      .ToText();
}

class Pooled : public ::testing::TestWithParam<std::string>, protected TestBooks {
 protected:
  Pooled() : TestBooks(DatabaseKind::kPostgreSQL) {
    other_ = NewConnectionText(DatabaseKind::kPostgreSQL);
    Call("QDSVGLBooks.BooksUpdate", "Create", other_, "USD", Long{2024}, Named("NoPassword", true));
    Connections::OfThisThread().CloseAll();
  }
  ~Pooled() override { RemoveBooks(other_); }

  static Long Backend(Database& db) {
    return db.QueryValue<Long>("SELECT pg_backend_pid()").value_or(0);
  }
  static std::string Setting(Database& db, const std::string& name) {
    return db.QueryValue<std::string>("SELECT current_setting('" + name + "')").value_or("");
  }
  static std::string BaseCurrency(Database& db) {
    return db.QueryValue<std::string>("SELECT FNumber FROM t_Currency WHERE FCurrencyID = 1")
        .value_or("");
  }
  Database Here() const {
    return Database(ConnectionText::Parse(ByPooler(connection, GetParam())));
  }
  Database There() const { return Database(ConnectionText::Parse(ByPooler(other_, GetParam()))); }
  bool SharesBackends() const { return GetParam() == "transaction"; }

  std::string other_;  // books in the same database whose currency is another
};
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(Pooled);
INSTANTIATE_TEST_SUITE_P(, Pooled, ::testing::ValuesIn(Ways()),
                         [](const auto& way) { return way.param; });

TEST_P(Pooled, BooksThatShareABackendStayApart) {
  Database here = Here(), there = There();
  ASSERT_EQ(Backend(here) == Backend(there), SharesBackends());
  for (int round = 0; round < 3; ++round) {
    EXPECT_EQ(BaseCurrency(here), "EUR");
    EXPECT_EQ(BaseCurrency(there), "USD");
  }
  // The same statement, and one that only one of them has run.
  EXPECT_EQ(here.QueryValue<Long>("SELECT 17"), 17);
  EXPECT_EQ(there.QueryValue<Long>("SELECT 18"), 18);
  EXPECT_EQ(here.QueryValue<Long>("SELECT 17"), 17);
}

TEST_P(Pooled, BooksStayApartInTransactionsToo) {
  Database here = Here(), there = There();
  for (const auto kind : {Transaction::Kind::kRead, Transaction::Kind::kSave}) {
    Transaction in_here(here, kind), in_there(there, kind);
    EXPECT_NE(Backend(here), Backend(there));
    EXPECT_EQ(BaseCurrency(here), "EUR");
    EXPECT_EQ(BaseCurrency(there), "USD");
    in_there.Commit();
    in_here.Commit();
  }
}

TEST_P(Pooled, ATransactionBringsItsSettingsAlong) {
  const ConnectionText text = ConnectionText::Parse(ByPooler(connection, GetParam()));
  Database here(text);
  Database other(text.Without(key::kSchema).With(key::kLockTimeout, "7"));
  // As any other program may leave a backend behind.
  other.ExecuteScript("SET jit = on; SET extra_float_digits = 0; SET lock_timeout = 0");
  ASSERT_EQ(Backend(other) == Backend(here), SharesBackends());
  for (const bool in_transaction : {false, true}) {
    std::optional<Transaction> transaction;
    if (in_transaction) transaction.emplace(here, Transaction::Kind::kRead);
    EXPECT_EQ(Setting(here, "jit"), "off");
    EXPECT_EQ(Setting(here, "extra_float_digits"), "3");
    EXPECT_EQ(Setting(here, "lock_timeout"), "1min");
    EXPECT_EQ(Setting(here, "client_min_messages"), "warning");
  }
  const Transaction reading(other, Transaction::Kind::kRead);
  EXPECT_EQ(Setting(other, "lock_timeout"), "7s");
}

TEST_P(Pooled, NothingOfATransactionStaysBehindOnASharedBackend) {
  Database here = Here();
  EXPECT_EQ(BaseCurrency(here), "EUR");
  Database plain(ConnectionText::Parse(ByPooler(connection, GetParam())).Without(key::kSchema));
  ASSERT_EQ(Backend(plain) == Backend(here), SharesBackends());
  EXPECT_EQ(Setting(plain, "search_path"), "\"$user\", public");
}

TEST_P(Pooled, BooksAreWorkedInByTheComponents) {
  const auto log_in = [&](const std::string& books) {
    return Call("QDSVGLSession.SessionUpdate", "Login", ByPooler(books, GetParam()),
                "administrator", "")
        .As<String>();
  };
  // Logged in at once, as two clients are.
  const std::string here = log_in(connection), there = log_in(other_);
  const auto add = [&](const std::string& to, const char* number) {
    auto currency = Make<Dictionary>();
    currency->Value("FNumber", number);
    currency->Value("FName", number);
    currency->Value("FExchangeRate", 1.25);
    currency->Value("FScale", Long{2});
    Call("QDSVGLCurrency.CurrencyUpdate", "Create", to, currency);
  };
  const auto numbers = [&](const std::string& of) {
    return TextOf(Call("QDSVGLCurrency.CurrencyInfo", "GetList", of).As<Recordset>(), {"FNumber"});
  };
  add(here, "CHF");
  Call("QDSVGLBatch.BatchUpdate", "Begin", there);
  add(there, "JPY");
  add(here, "NOK");
  EXPECT_EQ(numbers(here), "EUR\nCHF\nNOK\n");
  add(there, "SEK");
  Call("QDSVGLBatch.BatchUpdate", "RollBack", there);
  add(there, "DKK");
  EXPECT_EQ(numbers(here), "EUR\nCHF\nNOK\n");
  EXPECT_EQ(numbers(there), "USD\nDKK\n");
}

TEST_P(Pooled, WhoWaitsForTooLongIsToldWhoIsInTheWay) {
  Database slow = Here();
  const Transaction sleeping(slow, Transaction::Kind::kChangeRules);
  const Long backend = Backend(slow);
  Database waiting(
      ConnectionText::Parse(ByPooler(connection, GetParam())).With(key::kLockTimeout, "1"));
  try {
    const Transaction save(waiting, Transaction::Kind::kSave);
    ADD_FAILURE() << "nobody was in the way";
  } catch (const Error& error) {
    EXPECT_TRUE(error.description().ends_with(", backend " + std::to_string(backend) + "."))
        << error.description();
  }
}

// ---- Such a pooler ----

class PoolerTest : public ::testing::TestWithParam<DatabaseKind> {};
QDCLGL_BOOKS_TEST_OF(PoolerTest, kPostgreSQL);

TEST_P(PoolerTest, BooksAreReachedByWayOfOne) { ExpectToPassBeside("--pooler", "*Pooled*", 12); }

}  // namespace
}  // namespace qdclgl::server::testing
