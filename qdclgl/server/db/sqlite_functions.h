// What PostgreSQL's SQL can do and SQLite's can't, given to a connection as functions.
#pragma once

#include <sqlite3.h>

namespace qdclgl::server {

// sha256_digits(text), the SHA-256 of a text.
void DefineSQLiteFunctions(sqlite3* connection);

}  // namespace qdclgl::server
