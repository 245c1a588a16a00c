// How the databases go about a query.
#pragma once

#include <string>
#include <string_view>

#include "qdclgl/server/db/database.h"

namespace qdclgl::server::testing {

// The plan for the ids of many vouchers and for a day. PostgreSQL goes about small tables in one way
// or another as it happens to, so it is made to believe that they are large, and is asked not to
// read them from end to end or in the order of their pages.
inline std::string PlanOf(Database& db, std::string sql) {
  const auto put = [&](std::string_view part, std::string_view values) {
    for (std::size_t at; (at = sql.find(part)) != sql.npos;) sql.replace(at, part.size(), values);
  };
  put("BETWEEN ? AND ?", "BETWEEN 1 AND 1000000");
  put("FDate >= ?", "FDate >= '2024-01-01'");
  put("FDate < ?", "FDate < '2024-01-01'");
  put("?", "1");
  std::string plan;
  if (db.IsSQLite()) {
    for (const auto& [id, parent, unused, detail] :
         db.Query<Long, Long, Long, std::string>("EXPLAIN QUERY PLAN " + sql)) {
      plan += detail + "\n";
    }
    return plan;
  }
  Transaction transaction(db, Transaction::Kind::kSave);  // never committed
  db.Execute("UPDATE pg_class SET reltuples = 1000000, relpages = 1"
             " WHERE relnamespace = current_schema()::regnamespace AND relkind = 'r'");
  db.Execute("SET LOCAL enable_seqscan = off");
  db.Execute("SET LOCAL enable_bitmapscan = off");
  for (const auto& [line] : db.Query<std::string>("EXPLAIN " + sql)) plan += line + "\n";
  return plan;
}

}  // namespace qdclgl::server::testing
