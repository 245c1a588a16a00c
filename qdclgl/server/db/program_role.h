// The role of a PostgreSQL database that programs log in with, where the tables belong to another
// one. It reads and writes rows; it changes no table, and on the audit trail it only adds.
#pragma once

#include <string_view>

#include "qdclgl/server/db/database.h"

namespace qdclgl::server {

// Gives a role what programs need of the books in the current schema. BadValue for SQLite, for a
// role that is not there, and for one that could do more by what else it is.
void GrantToProgramRole(Database& db, std::string_view role);

// Behind an upgrade: gives the roles that have worked on the books what they need of new tables.
void GrantToProgramRoles(Database& db);

}  // namespace qdclgl::server
