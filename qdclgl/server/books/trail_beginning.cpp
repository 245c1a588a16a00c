#include "qdclgl/server/books/trail_beginning.h"

#include "qdclgl/server/access/audit.h"
#include "qdclgl/server/access/trail_seal.h"
#include "qdclgl/server/books/trailed_kinds.h"
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

}  // namespace

void TrailRecords(const Caller& caller, std::string_view action, const TrailedKind& kind) {
  InRanges([&](Long from) { return NextId(caller.db, kind.table, kind.id, from); },
           [&](Long first, Long last) {
             for (const auto& [id, record] : kind.read(caller.db, first, last)) {
               WriteWhole(caller, action, kind.subject, id, record.name, record.state);
             }
           });
}

void BeginTrail(const Caller& caller, std::string_view action) {
  Database& db = caller.db;
  for (const auto& [subject] : db.Query<std::string>("SELECT DISTINCT FSubject FROM t_Audit")) {
    LinkRows(db, subject);
  }
  WriteWhole(caller, action, kSettingSubject, 0, "", TrailedSettings(db).row());
  for (const TrailedKind& kind : TrailedKinds()) TrailRecords(caller, action, kind);
  SealTrail(db);
}

bool HasTrailBegun(Database& db) { return LastSeal(db).number > 0; }

}  // namespace qdclgl::server
