#include "qdclgl/server/db/postgresql.h"
#include "qdclgl/server/db/refusals.h"

namespace qdclgl::server {

std::unique_ptr<Driver> ConnectToPostgreSQL(const ConnectionText&, Driver::OnBusy) {
  Refuse(refusal::kBadConnectionText,
         "Books in PostgreSQL can't be opened here: the server components for Windows know SQLite "
         "alone.");
}

std::string PostgreSQLBuiltIn() { return "no PostgreSQL"; }

}  // namespace qdclgl::server
