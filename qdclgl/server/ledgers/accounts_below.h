// An account with all that are below it, and tables that a query reaches one from the other.
#pragma once

#include <string>
#include <string_view>

#include "qdclgl/server/db/database.h"

namespace qdclgl::server {

// The beginning of a query over `below`: the account of its first placeholder and all below it.
inline constexpr std::string_view kBelow =
    "WITH RECURSIVE below AS (SELECT FAccountID FROM t_Account WHERE FAccountID = ?"
    " UNION ALL SELECT a.FAccountID FROM below JOIN t_Account a ON a.FParentID = below.FAccountID)";

// The next table of a FROM, reached from those before it by this condition and read in no other
// order: the databases don't come upon the way from few rows to few by themselves. SQLite is told
// by CROSS JOIN, PostgreSQL by LATERAL, and by OFFSET to leave it at that.
inline std::string Reached(const Database& db, std::string_view table, std::string_view alias,
                           std::string_view condition) {
  const std::string name = std::string(table) + " " + std::string(alias);
  if (db.IsSQLite()) return " CROSS JOIN " + name + " ON " + std::string(condition);
  return " CROSS JOIN LATERAL (SELECT * FROM " + name + " WHERE " + std::string(condition) +
         " OFFSET 0) " + std::string(alias);
}

}  // namespace qdclgl::server
