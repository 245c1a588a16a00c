// What PostgreSQL's SQL can do and SQLite's can't, given to a connection as functions.
#pragma once

namespace soci {
class session;
}

namespace qdclgl::server {

// To a session of SQLite alone: sha256_digits(text), the SHA-256 of a text.
void DefineSQLiteFunctions(soci::session& session);

}  // namespace qdclgl::server
