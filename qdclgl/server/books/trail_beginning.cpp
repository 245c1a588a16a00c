#include "qdclgl/server/books/trail_beginning.h"

#include <algorithm>

#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/access/audit.h"
#include "qdclgl/server/access/trail_seal.h"
#include "qdclgl/server/books/id_ranges.h"
#include "qdclgl/server/books/work_progress.h"
#include "qdclgl/server/db/schema.h"
#include "qdclgl/server/periods/settings.h"

namespace qdclgl::server {

namespace {

void LinkRows(Database& db, std::string_view subject) {
  const auto next = [&](Long from) {
    return db.QueryValue<Long>("SELECT FRecordID FROM t_Audit WHERE FSubject = ? AND FRecordID >= ?"
                               " ORDER BY FRecordID LIMIT 1",
                               subject, from);
  };
  InRanges(next, [&](Long first, Long last) {
    std::string hash;
    for (const AuditRow& row : AuditRowsOf(db, subject, first, last)) {
      hash = row.HashBehind(row.number == 1 ? "" : hash);
      db.Execute("UPDATE t_Audit SET FHash = ? WHERE FAuditID = ?", hash, row.id);
    }
  });
}

void WriteWhole(const Caller& caller, std::string_view action, std::string_view subject, Long id,
                std::string_view name, const TrailRow& state) {
  const std::string changes = ChangesText(nullptr, &state);
  WriteAudit(
      caller,
      {.subject = subject, .record_id = id, .record = name, .action = action, .changes = changes});
}

void WriteWhole(const Caller& caller, std::string_view action, const TrailedKind& kind,
                const WorkProgress& progress) {
  const double last_id = LastId(caller.db, kind.table, kind.id);
  InRanges([&](Long from) { return NextId(caller.db, kind.table, kind.id, from); },
           [&](Long first, Long last) {
             for (const auto& [id, record] : kind.read(caller.db, first, last)) {
               WriteWhole(caller, action, kind.subject, id, record.name, record.state);
             }
             progress.Tell("Writing the audit trail", std::min(1.0, last / last_id));
           });
}

// Which of these kinds have records: most have none in new books, and are asked for in one message.
std::vector<const TrailedKind*> WithRecords(Database& db,
                                            const std::vector<const TrailedKind*>& kinds) {
  std::string sql;
  for (std::size_t i = 0; i < kinds.size(); ++i) {
    sql += (i == 0 ? "SELECT " : " UNION ALL SELECT ") + std::to_string(i) +
           " AS kind WHERE EXISTS (SELECT 1 FROM " + std::string(kinds[i]->table) + ")";
  }
  std::vector<const TrailedKind*> found;
  if (sql.empty()) return found;
  for (const auto& [kind] : db.Query<std::size_t>(sql + " ORDER BY kind")) {
    found.push_back(kinds[kind]);
  }
  return found;
}

}  // namespace

void BeginTrail(const Caller& caller, std::string_view action) {
  Database& db = caller.db;
  for (const auto& [subject] : db.Query<std::string>("SELECT DISTINCT FSubject FROM t_Audit")) {
    LinkRows(db, subject);
  }
  WriteWhole(caller, action, kSettingSubject, 0, "", TrailedSettings(db).row());
  std::vector<const TrailedKind*> all;
  for (const TrailedKind& kind : TrailedKinds()) all.push_back(&kind);
  TrailWhole(caller, action, all);
  SealTrail(db);
}

bool HasTrailBegun(Database& db) { return LastSeal(db).number > 0; }

std::vector<const TrailedKind*> KindsToCome(Database& db) {
  std::vector<const TrailedKind*> kinds;
  for (const TrailedKind& kind : TrailedKinds()) {
    if (!HasTable(db, FoldAsciiCase(kind.table))) kinds.push_back(&kind);
  }
  return kinds;
}

void TrailWhole(const Caller& caller, std::string_view action,
                const std::vector<const TrailedKind*>& kinds) {
  const std::vector<const TrailedKind*> present = WithRecords(caller.db, kinds);
  double done = 0;
  for (const TrailedKind* kind : present) {
    const double share = 1 / static_cast<double>(present.size());
    WriteWhole(caller, action, *kind, WorkProgress().Part(done, done + share));
    done += share;
  }
}

}  // namespace qdclgl::server
