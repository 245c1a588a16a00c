// Clients that keep their transactions open, and what others are told who wait for them.
#include <regex>
#include <thread>

#include "qdclgl/frame/platform/machine.h"
#include "qdclgl/server/db/connections.h"
#include "tests/server/ledger_fixture.h"
#include "tests/support/process.h"

namespace qdclgl::server::testing {
namespace {

class BusyTest : public LedgerTest {};
QDCLGL_BOOKS_TEST(BusyTest);

TEST_P(BusyTest, WhoWaitsForTooLongIsRefusedAndToldWhoIsInTheWay) {
  Save(Sale(1));
  LoginWith(connection_key::kLockTimeout, "1");
  Database slow(ConnectionText::Parse(connection));
  std::string in_the_way;
  const std::string before = State();
  {
    const Transaction sleeping(slow, Transaction::Kind::kChangeRules);
    if (!slow.IsSQLite()) {
      in_the_way = " A transaction has been open for [1-9][0-9]* s: user \"postgres\","
                   " \"QDCLGL on " +
                   GetMachineName() + ", process " + std::to_string(qdclgl::testing::ProcessId()) +
                   "\" at 127.0.0.1, backend " +
                   std::to_string(*slow.QueryValue<Long>("SELECT pg_backend_pid()")) + "\\.";
    }
    const std::string error = ErrorText([&] { Save(Sale(2)); });
    EXPECT_TRUE(std::regex_match(error, std::regex("80044208: Others were in the way for more than "
                                                   "1 s; try again\\." +
                                                   in_the_way)))
        << error;
  }
  EXPECT_EQ(State(), before);
  EXPECT_EQ(ErrorText([&] { Save(Sale(2)); }), "no error") << "once the way is free";
}

TEST_P(BusyTest, WhoIsWaitedForShorterIsNotInTheWay) {
  LoginWith(connection_key::kLockTimeout, "20");
  std::thread slow([text = connection] {
    Database db(ConnectionText::Parse(text));
    const Transaction sleeping(db, Transaction::Kind::kChangeRules);
    std::this_thread::sleep_for(std::chrono::milliseconds(1500));
  });
  EXPECT_EQ(ErrorText([&] { Save(Sale(1)); }), "no error");
  slow.join();
}

}  // namespace
}  // namespace qdclgl::server::testing
