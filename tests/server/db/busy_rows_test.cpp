// Clients that wait for each other's rows on PostgreSQL, and for a server that says nothing.
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <filesystem>
#include <set>

#include "qdclgl/server/db/connections.h"
#include "tests/server/ledger_fixture.h"

namespace qdclgl::server::testing {
namespace {

class BusyRowsTest : public LedgerTest {};
QDCLGL_BOOKS_TEST_OF(BusyRowsTest, kPostgreSQL);

TEST_P(BusyRowsTest, ABatchGoesOnBehindASaveThatWaitedForTooLong) {
  const auto payment = [] { return LedgerTest::Sale(1, "2024-01-15", {{"FGroupID", Long{2}}}); };
  Save(payment());
  LoginWith(connection_key::kLockTimeout, "1");
  Call("QDSVGLBatch.BatchUpdate", "Begin", props);
  Save(Sale(2));
  {
    Database slow(ConnectionText::Parse(connection));
    const Transaction sleeping(slow, Transaction::Kind::kSave);
    slow.Execute("UPDATE t_Counter SET FNext = FNext WHERE FGroupID = 2");
    EXPECT_EQ(RefusalOf([&] { Save(payment()); }), "DatabaseBusy");
  }
  Save(Sale(3));
  Save(payment());
  Call("QDSVGLBatch.BatchUpdate", "Commit", props);
  EXPECT_EQ(Books().QueryValue<Long>("SELECT COUNT(*) FROM t_Voucher"), 4);
  EXPECT_EQ(Breaches(), "");
}

// What the sockets of this process to a port are set to: idle, interval, count, user timeout.
std::multiset<std::string> SocketsTo(int port) {
  std::multiset<std::string> sockets;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    const int file = std::stoi(entry.path().filename().string());
    sockaddr_in peer{};
    socklen_t size = sizeof peer;
    if (getpeername(file, reinterpret_cast<sockaddr*>(&peer), &size) != 0 ||
        peer.sin_family != AF_INET || ntohs(peer.sin_port) != port) {
      continue;
    }
    std::string settings;
    for (const int option : {TCP_KEEPIDLE, TCP_KEEPINTVL, TCP_KEEPCNT, TCP_USER_TIMEOUT}) {
      int value = 0;
      socklen_t value_size = sizeof value;
      getsockopt(file, IPPROTO_TCP, option, &value, &value_size);
      settings += std::to_string(value) + " ";
    }
    sockets.insert(settings);
  }
  return sockets;
}

TEST_P(BusyRowsTest, ASilentServerIsNoticedByWhatTheConnectionTextSays) {
  const ConnectionText text = ConnectionText::Parse(connection);
  const int port = std::stoi(std::string(text[connection_key::kPort]));
  const auto expect = [&](const ConnectionText& way, const std::string& settings) {
    std::multiset<std::string> sockets = SocketsTo(port);
    sockets.insert(settings);
    const Database db(way);
    EXPECT_EQ(SocketsTo(port), sockets);
  };
  expect(text, "30 10 3 60000 ");
  expect(text.With(connection_key::kKeepalivesIdle, "7")
             .With(connection_key::kKeepalivesInterval, "2")
             .With(connection_key::kKeepalivesCount, "4")
             .With(connection_key::kTcpUserTimeout, "9000"),
         "7 2 4 9000 ");
}

}  // namespace
}  // namespace qdclgl::server::testing
