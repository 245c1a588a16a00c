#include "qdclgl/server/db/built_in.h"

#include <sqlite3.h>

#include "qdclgl/server/db/postgresql.h"

namespace qdclgl::server {

std::string DatabasesBuiltIn() {
  const std::string postgresql = PostgreSQLBuiltIn();
  return "SQLite " + std::string(sqlite3_libversion()) +
         (postgresql.empty() ? "" : ", " + postgresql);
}

}  // namespace qdclgl::server
