#include "qdclgl/server/records/record_tree.h"

#include <string>

namespace qdclgl::server {

bool RecordTree::HasBelow(Database& db, Long record, bool deleted_too) const {
  // That 0 is none is said for indexes that leave out what stands at the top.
  std::string sql =
      "SELECT 1 FROM " + std::string(table) + " WHERE FParentID = ? AND FParentID <> 0";
  if (!deleted_too) sql += " AND " + std::string(deleted) + " = 0";
  return db.QueryValue<int>(sql + " LIMIT 1", record).has_value();
}

void RecordTree::KeepDetailFlag(Database& db, Long record) const {
  if (record == 0) return;
  const std::string is_heading = heading.empty() ? "" : std::string(heading) + " <> 0 OR ";
  db.Execute("UPDATE " + std::string(table) + " SET FDetail = CASE WHEN " + is_heading +
                 "EXISTS (SELECT 1 FROM " + std::string(table) +
                 " below WHERE below.FParentID = " + std::string(table) + "." + std::string(id) +
                 " AND below.FParentID <> 0) THEN 0 ELSE 1 END WHERE " + std::string(id) + " = ?",
             record);
}

}  // namespace qdclgl::server
