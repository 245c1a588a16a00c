// Books for one test: empty ones in a file or a PostgreSQL schema of their own, with somebody
// logged in. The suites run on every database; see Databases().
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "qdclgl/frame/objects/late_bound.h"
#include "qdclgl/frame/session/server_gateway.h"

namespace qdclgl::server::testing {

enum class DatabaseKind { kSQLite, kPostgreSQL };

// SQLite, and PostgreSQL where QDCLGL_TEST_POSTGRESQL holds the connection text of a database that
// tests may make schemas in (scripts/with-postgresql starts one).
std::vector<DatabaseKind> Databases();
std::string NameOf(const ::testing::TestParamInfo<DatabaseKind>& info);

// A connection text for books that are not there yet, and will be removed by RemoveBooks.
std::string NewConnectionText(DatabaseKind kind);
void RemoveBooks(const std::string& connection);
// Gives books the content of others: a copy of the file, with this thread's connections closed
// before, or, in a schema that has books already, of the rows.
void CopyBooks(const std::string& from, const std::string& to);
// SQLite: copies the file with the saves that wait beside it, as they are at the moment.
void CopyFilesOf(const std::string& from, const std::string& to);

class TestBooks {
 public:
  // Books that begin in 2024, base currency EUR; "administrator" without a password is logged in.
  explicit TestBooks(DatabaseKind database);
  ~TestBooks();
  TestBooks(const TestBooks&) = delete;
  TestBooks& operator=(const TestBooks&) = delete;

  // Logs somebody in, in place of who was; returns the PropsString.
  std::string Login(const std::string& user, const std::string& password = "");
  // A user with these roles, no password.
  void AddUser(const std::string& name, const std::string& roles);

  // A new component, and what one call of a new component gives.
  static Ref<Object> Component(std::string_view prog_id) { return CreateObject(prog_id); }
  template <class... Args>
  static Variant Call(std::string_view prog_id, std::string_view method, Args&&... args) {
    return CreateObject(prog_id)->Call(method, std::forward<Args>(args)...);
  }

  std::string connection;  // as Login takes it
  std::string props;       // of the last login

 private:
  DatabaseKind database_;
};

#define QDCLGL_BOOKS_TEST(Suite) \
  INSTANTIATE_TEST_SUITE_P(, Suite, ::testing::ValuesIn(Databases()), NameOf)

// For what one database alone can do; nothing runs where that one is not at hand.
std::vector<DatabaseKind> DatabasesOf(DatabaseKind kind);
#define QDCLGL_BOOKS_TEST_OF(Suite, kind)               \
  GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(Suite); \
  INSTANTIATE_TEST_SUITE_P(, Suite, ::testing::ValuesIn(DatabasesOf(DatabaseKind::kind)), NameOf)

}  // namespace qdclgl::server::testing
