#include "qdclgl/server/db/built_in.h"

#include <sqlite3.h>

#include "qdclgl/server/db/postgresql.h"

namespace qdclgl::server {

std::string DatabasesBuiltIn() {
  return "SQLite " + std::string(sqlite3_libversion()) + ", " + PostgreSQLBuiltIn();
}

}  // namespace qdclgl::server
