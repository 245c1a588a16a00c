// Connection texts that ask for TLS, against a server that speaks it.
#include <cstdlib>

#include "tests/server/books_state.h"
#include "tests/server/own_cluster.h"

namespace qdclgl::server::testing {
namespace {

namespace key = connection_key;

// ---- In a cluster with certificates, which scripts/with-postgresql --tls makes ----

std::vector<std::string> TlsFolders() {
  const char* folder = std::getenv("QDCLGL_TEST_TLS");
  return folder != nullptr ? std::vector<std::string>{folder} : std::vector<std::string>();
}

class TlsCluster : public ::testing::TestWithParam<std::string> {
 protected:
  static std::string File(const char* name) { return GetParam() + "/" + name; }
  static ConnectionText Text() {
    return ConnectionText::Parse(std::getenv("QDCLGL_TEST_POSTGRESQL"));
  }
  // How a connection comes about: "plain", "encrypted", or the refusal.
  static std::string Connection(const ConnectionText& text) {
    std::string how;
    // As a program hands it on: written and read again.
    const std::string refusal = RefusalOf([&] {
      Database db(ConnectionText::Parse(text.ToText()));
      how = db.QueryValue<bool>("SELECT CASE WHEN ssl THEN 1 ELSE 0 END FROM pg_stat_ssl"
                                " WHERE pid = pg_backend_pid()")
                    .value_or(false)
                ? "encrypted"
                : "plain";
    });
    return refusal == "none" ? how : refusal;
  }
};
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(TlsCluster);
INSTANTIATE_TEST_SUITE_P(, TlsCluster, ::testing::ValuesIn(TlsFolders()),
                         [](const auto&) { return std::string("PostgreSQL"); });

TEST_P(TlsCluster, TheModeDecidesWhetherAConnectionIsEncrypted) {
  EXPECT_EQ(Connection(Text().With(key::kSslMode, "disable")), "plain");
  EXPECT_EQ(Connection(Text().With(key::kSslMode, "require")), "encrypted");
}

TEST_P(TlsCluster, TheServerIsWhoItsCertificateSays) {
  const ConnectionText full = Text().With(key::kSslMode, "verify-full");
  EXPECT_EQ(Connection(full.With(key::kSslRootCert, File("server.crt"))), "encrypted");
  EXPECT_EQ(Connection(full.With(key::kSslRootCert, File("client.crt"))), "ConnectionLost")
      << "another authority";
  EXPECT_EQ(
      Connection(full.With(key::kSslRootCert, File("server.crt")).With(key::kHost, "localhost")),
      "ConnectionLost")
      << "another name than the certificate's";
}

TEST_P(TlsCluster, TheClientShowsItsCertificate) {
  {
    Database db(Text());
    db.Execute("CREATE ROLE tls_client LOGIN");
  }
  const ConnectionText client =
      Text().With(key::kUser, "tls_client").With(key::kSslMode, "require");
  EXPECT_EQ(Connection(client), "ConnectionLost");
  EXPECT_EQ(
      Connection(
          client.With(key::kSslCert, File("client.crt")).With(key::kSslKey, File("client.key"))),
      "encrypted");
}

// ---- Such a cluster ----

class TlsTest : public ::testing::TestWithParam<DatabaseKind> {};
QDCLGL_BOOKS_TEST_OF(TlsTest, kPostgreSQL);

TEST_P(TlsTest, ConnectionTextsAskForIt) { ExpectToPassBeside("--tls", "*TlsCluster*", 3); }

TEST(SslModeTest, AnUnknownModeIsRefused) {
  const auto refusal = [](const std::string& mode) {
    return RefusalOf(
        [&] { ConnectionText::Parse("Provider=PostgreSQL;Initial catalog=a;Sslmode=" + mode); });
  };
  for (const char* mode :
       {"disable", "allow", "prefer", "require", "verify-ca", "verify-full", ""}) {
    EXPECT_EQ(refusal(mode), "none") << mode;
  }
  for (const char* mode : {"yes", "Require", "verify", "1"}) {
    EXPECT_EQ(refusal(mode), "BadConnectionText") << mode;
  }
}

}  // namespace
}  // namespace qdclgl::server::testing
