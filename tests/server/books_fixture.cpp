#include "tests/server/books_fixture.h"

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>

#include "qdclgl/frame/containers/dictionary.h"
#include "qdclgl/frame/session/startup.h"
#include "qdclgl/server/access/password.h"
#include "qdclgl/server/db/connections.h"
#include "qdclgl/server/server.h"
#include "tests/support/process.h"

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
      "qdclgl_test_" + std::to_string(qdclgl::testing::ProcessId()) + "_" + std::to_string(++count);
  if (kind == DatabaseKind::kPostgreSQL) {
    return ConnectionText::Parse(PostgreSQLText()).With(connection_key::kSchema, name).ToText();
  }
  const auto file = std::filesystem::temp_directory_path() / (name + ".db");
  return "Provider=SQLite;Data Source=" + file.string() +
         ";Synchronous=Normal;Initial catalog=TEST;";
}

void RemoveBooks(const std::string& connection) {
  Connections::OfThisThread().CloseAll();
  const ConnectionText text = ConnectionText::Parse(connection);
  if (text.IsSQLite()) {
    for (const char* ending : {"", "-wal", "-shm"}) {
      std::error_code ignored;
      std::filesystem::remove(std::string(text[connection_key::kDataSource]) + ending, ignored);
    }
  } else {
    Database db(text.Without(connection_key::kSchema));
    db.ExecuteScript("DROP SCHEMA IF EXISTS " + std::string(text[connection_key::kSchema]) +
                     " CASCADE;");
  }
}

namespace {

std::string Part(const std::string& text, std::string_view key) {
  return std::string(ConnectionText::Parse(text)[key]);
}

// Gives all tables and counters of ids of a schema the rows of another one, and drops the tables
// that a test has made besides, in one message to the server.
void CopySchema(Database& db, const std::string& from_books, const std::string& to_books) {
  const std::string from = Part(from_books, connection_key::kSchema) + ".";
  const std::string to = Part(to_books, connection_key::kSchema) + ".";
  std::string sql = "DO $$ BEGIN SET LOCAL session_replication_role = replica; ";
  for (const auto& [table] : db.Query<std::string>(
           "SELECT table_name FROM information_schema.tables WHERE table_schema = '" +
           Part(to_books, connection_key::kSchema) +
           "' AND table_name NOT IN (SELECT table_name FROM information_schema.tables"
           " WHERE table_schema = current_schema())")) {
    sql += "DROP TABLE " + to + table + " CASCADE; ";
  }
  for (const auto& [table] :
       db.Query<std::string>("SELECT table_name FROM information_schema.tables"
                             " WHERE table_schema = current_schema()")) {
    sql += "DELETE FROM " + to + table + "; INSERT INTO " + to + table + " SELECT * FROM " + from +
           table + "; ";
  }
  for (const auto& [sequence] : db.Query<std::string>(
           "SELECT sequencename FROM pg_sequences WHERE schemaname = current_schema()")) {
    sql += "PERFORM setval('" + to + sequence + "', last_value, is_called) FROM " + from +
           sequence + "; ";
  }
  db.Execute(sql + "END $$");
}

}  // namespace

void CopyBooks(const std::string& from, const std::string& to) {
  const ConnectionText text = ConnectionText::Parse(from);
  if (!text.IsSQLite()) {
    return CopySchema(*Connections::OfThisThread().To(text.Canonical().ToText(), nullptr), from,
                      to);
  }
  RemoveBooks(to);
  CopyFilesOf(from, to);
}

void CopyFilesOf(const std::string& from, const std::string& to) {
  for (const char* ending : {"", "-wal"}) {
    const std::string file = Part(from, connection_key::kDataSource) + ending;
    if (!std::filesystem::exists(file)) continue;
    std::filesystem::copy_file(file, Part(to, connection_key::kDataSource) + ending);
  }
}

// ---- New books ----

namespace {

// Making books costs more than most tests do. So a process makes them once on each database, and
// tests get copies: of the file, or of the rows in a schema that a test before has done with.
class NewBooks {
 public:
  explicit NewBooks(DatabaseKind kind) : kind_(kind) {}
  ~NewBooks() {
    refiller_.reset();
    for (const std::string& books : done_with_) RemoveBooks(books);
    if (!model_.empty()) RemoveBooks(model_);
  }

  std::string Take() {
    if (kind_ == DatabaseKind::kSQLite) {
      std::string copy = NewConnectionText(kind_);
      CopyBooks(Model(), copy);
      return copy;
    }
    if (done_with_.empty()) return Made();
    std::string books = std::move(done_with_.back());
    done_with_.pop_back();
    if (!refiller_) refiller_ = std::make_unique<Database>(ConnectionText::Parse(Model()));
    CopySchema(*refiller_, Model(), books);
    return books;
  }

  void GiveBack(const std::string& books) {
    if (kind_ == DatabaseKind::kSQLite) {
      RemoveBooks(books);
    } else {
      Connections::OfThisThread().CloseAll();
      done_with_.push_back(books);
    }
  }

 private:
  std::string Made() const {
    std::string text = NewConnectionText(kind_);
    CreateObject("QDSVGLBooks.BooksUpdate")
        ->Call("Create", text, "EUR", Long{2024}, Named("NoPassword", true));
    return text;
  }

  // The books that copies are made of; a process that runs one test needs none on PostgreSQL.
  const std::string& Model() {
    if (model_.empty()) model_ = Made();
    return model_;
  }

  DatabaseKind kind_;
  std::string model_;
  std::vector<std::string> done_with_;  // PostgreSQL
  std::unique_ptr<Database> refiller_;  // PostgreSQL, from the model
};

// They are removed before the process ends.
class NewBooksOfAllDatabases final : public ::testing::Environment {
 public:
  void TearDown() override { by_database_.clear(); }
  NewBooks& On(DatabaseKind kind) { return by_database_.try_emplace(kind, kind).first->second; }

 private:
  std::map<DatabaseKind, NewBooks> by_database_;
};

NewBooks& NewBooksOn(DatabaseKind kind) {
  static auto& all = dynamic_cast<NewBooksOfAllDatabases&>(
      *::testing::AddGlobalTestEnvironment(new NewBooksOfAllDatabases));
  return all.On(kind);
}

}  // namespace

TestBooks::TestBooks(DatabaseKind database) : database_(database) {
  SetApartmentStarted(true);
  RegisterServerComponents();
  SetPasswordCost(PasswordCost::kLeast);
  connection = NewBooksOn(database).Take();
  Login("administrator");
}

TestBooks::~TestBooks() { NewBooksOn(database_).GiveBack(connection); }

std::string TestBooks::Login(const std::string& user, const std::string& password) {
  props = Call("QDSVGLSession.SessionUpdate", "Login", connection, user, password).As<String>();
  return props;
}

void TestBooks::AddUser(const std::string& name, const std::string& roles) {
  auto user = Make<Dictionary>();
  user->Value("FName", name);
  user->Value("FRoles", roles);
  user->Value("FPassword", "");
  Call("QDSVGLUser.UserUpdate", "Create", props, user);
}

}  // namespace qdclgl::server::testing
