#include "tests/server/books_fixture.h"

#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>

#include "qdclgl/frame/containers/dictionary.h"
#include "qdclgl/frame/session/startup.h"
#include "qdclgl/server/access/login.h"
#include "qdclgl/server/db/database.h"
#include "qdclgl/server/server.h"

namespace qdclgl::server::testing {

namespace {

const char* PostgreSQLText() { return std::getenv("QDCLGL_TEST_POSTGRESQL"); }

}  // namespace

std::vector<DatabaseKind> Databases() {
  std::vector<DatabaseKind> kinds = {DatabaseKind::kSQLite};
  if (PostgreSQLText() != nullptr) kinds.push_back(DatabaseKind::kPostgreSQL);
  return kinds;
}

std::vector<DatabaseKind> DatabasesOf(DatabaseKind kind) {
  std::vector<DatabaseKind> kinds = Databases();
  std::erase_if(kinds, [&](DatabaseKind other) { return other != kind; });
  return kinds;
}

std::string NameOf(const ::testing::TestParamInfo<DatabaseKind>& info) {
  return info.param == DatabaseKind::kSQLite ? "SQLite" : "PostgreSQL";
}

std::string NewConnectionText(DatabaseKind kind) {
  static std::atomic<int> count{0};
  const std::string name =
      "qdclgl_test_" + std::to_string(getpid()) + "_" + std::to_string(++count);
  if (kind == DatabaseKind::kPostgreSQL) {
    return ConnectionText::Parse(PostgreSQLText()).With(connection_key::kSchema, name).ToText();
  }
  const auto file = std::filesystem::temp_directory_path() / (name + ".db");
  return "Provider=SQLite;Data Source=" + file.string() +
         ";Synchronous=Normal;Initial catalog=TEST;";
}

void RemoveBooks(const std::string& connection) {
  Database::CloseAll();
  const ConnectionText text = ConnectionText::Parse(connection);
  if (text.IsSQLite()) {
    for (const char* ending : {"", "-wal", "-shm"}) {
      std::error_code ignored;
      std::filesystem::remove(std::string(text[connection_key::kDataSource]) + ending, ignored);
    }
  } else {
    Database db(text.Without(connection_key::kSchema), Database::Opening::kExisting);
    db.ExecuteScript("DROP SCHEMA IF EXISTS " + std::string(text[connection_key::kSchema]) +
                     " CASCADE;");
  }
}

BooksTest::BooksTest() : connection(NewConnectionText(GetParam())) {
  SetApartmentStarted(true);
  RegisterServerComponents();
  SetPasswordCost(PasswordCost::kLeast);
  Call("QDSVGLBooks.BooksUpdate", "Create", connection, "EUR", Long{2024});
  Login("administrator");
}

BooksTest::~BooksTest() { RemoveBooks(connection); }

std::string BooksTest::Login(const std::string& user, const std::string& password) {
  props = Call("QDSVGLSession.SessionUpdate", "Login", connection, user, password).As<String>();
  return props;
}

void BooksTest::AddUser(const std::string& name, const std::string& roles) {
  auto user = Make<Dictionary>();
  user->Value("FName", name);
  user->Value("FRoles", roles);
  Call("QDSVGLUser.UserUpdate", "Create", props, user);
}

}  // namespace qdclgl::server::testing
