#include "qdclgl/server/db/built_in.h"

#include <libpq-fe.h>
#include <sqlite3.h>

namespace qdclgl::server {

std::string DatabasesBuiltIn() {
  const int libpq = PQlibVersion();  // 150014
  return "SQLite " + std::string(sqlite3_libversion()) + ", PostgreSQL (libpq " +
         std::to_string(libpq / 10000) + "." + std::to_string(libpq % 10000) + ")";
}

}  // namespace qdclgl::server
