#include "qdclgl/server/access/audit.h"

#include <algorithm>

#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/server/access/trail_seal.h"
#include "qdclgl/server/db/list.h"
#include "qdclgl/server/db/sha256.h"

namespace qdclgl::server {

QD_DEFINE_MEMBERS(AuditInfo)

namespace {

constexpr Column kColumns[] = {
    {"FAuditID", ColumnType::kLong},     {"FTime", ColumnType::kText},
    {"FUserID", ColumnType::kLong},      {"FUserName", ColumnType::kText},
    {"FMachineName", ColumnType::kText}, {"FIPAddress", ColumnType::kText},
    {"FSubject", ColumnType::kText},     {"FRecordID", ColumnType::kLong},
    {"FRecord", ColumnType::kText},      {"FAction", ColumnType::kText},
    {"FOrigin", ColumnType::kLong},      {"FChanges", ColumnType::kText},
    {"FConnection", ColumnType::kText},  {"FNumber", ColumnType::kLong},
    {"FHash", ColumnType::kText},
};

// A hash of what the writer of a row knows beforehand. Each value stands behind its length, so that
// no two rows have one text.
class Digest {
 public:
  Digest& Add(std::string_view value) {
    text_.append(std::to_string(value.size())).append(1, ':').append(value);
    return *this;
  }
  Digest& Add(Long value) { return Add(std::to_string(value)); }
  std::string Digits() const { return Sha256Of(text_); }

 private:
  std::string text_;
};

std::string DigestOf(const AuditRow& row) {
  return Digest()
      .Add(row.user_id)
      .Add(row.user_name)
      .Add(row.machine_name)
      .Add(row.address)
      .Add(row.subject)
      .Add(row.record_id)
      .Add(row.record)
      .Add(row.action)
      .Add(row.origin)
      .Add(row.changes)
      .Digits();
}

// The database's time, that of the last row, the client's address as the database knows it, and
// number and hash of the record's last row.
std::string EndSql(bool is_sqlite) {
  return std::string("SELECT ") +
         (is_sqlite ? "strftime('%Y-%m-%dT%H:%M:%SZ', 'now')"
                    : "to_char(statement_timestamp() AT TIME ZONE 'UTC',"
                      " 'YYYY-MM-DD\"T\"HH24:MI:SS\"Z\"')") +
         ", (SELECT FTime FROM t_Audit ORDER BY FAuditID DESC LIMIT 1), " +
         (is_sqlite ? "''" : "COALESCE(host(inet_client_addr()), '')") +
         ", former.FNumber, former.FHash FROM (SELECT 1 AS FOne) AS one LEFT JOIN"
         " (SELECT FNumber, FHash FROM t_Audit WHERE FSubject = ? AND FRecordID = ?"
         " ORDER BY FNumber DESC LIMIT 1) AS former ON 1 = 1";
}

// Puts the row behind the record's last one. Two connections may do the same to a record within one
// second, on a server that dies and on the one in its place; the connection's id tells their rows
// apart.
void PutBehind(const Database& db, Statement& end, AuditRow& row) {
  end.Fetch();
  row.time = std::max(end.Text(0), end.Text(1));
  row.connection = end.Text(2);
  if (!db.IsSQLite()) row.connection.append(1, ' ').append(db.id());
  row.number = static_cast<Long>(end.Whole(3) + 1);
  row.hash = row.HashBehind(end.Text(4));
  end.Reset();
}

void Insert(Database& db, const AuditRow& row) {
  db.ExecuteLater(
      "INSERT INTO t_Audit (FTime, FUserID, FUserName, FMachineName, FIPAddress, FSubject,"
      " FRecordID, FRecord, FAction, FOrigin, FChanges, FConnection, FNumber, FHash)"
      " VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)",
      row.time, row.user_id, row.user_name, row.machine_name, row.address, row.subject,
      row.record_id, row.record, row.action, row.origin, row.changes, row.connection, row.number,
      row.hash);
}

}  // namespace

std::string AuditRow::HashBehind(std::string_view previous) const {
  return Sha256Of(std::string(previous) + " " + std::to_string(number) + " " + time + " " +
                  connection + " " + DigestOf(*this));
}

Statement& AskForTrailEnd(Database& db, std::string_view subject, Long record_id) {
  static const std::string kSQLite = EndSql(true), kPostgreSQL = EndSql(false);
  Statement& statement = db.Prepared(db.Dialect(kSQLite, kPostgreSQL));
  statement.Set(0, subject);
  statement.Set(1, std::int64_t{record_id});
  statement.Open();
  return statement;
}

void WriteAudit(const Caller& caller, const Deed& deed) {
  const Session& session = *caller.session;
  const auto or_session = [](std::string_view given, const std::string& own) {
    return given.empty() ? own : std::string(given);
  };
  AuditRow row;
  row.user_id = session.user_id;
  row.user_name = session.user_name;
  row.machine_name = or_session(deed.machine_name, session.machine_name);
  row.address = or_session(deed.address, session.address);
  row.subject = deed.subject;
  row.record_id = deed.record_id;
  row.record = deed.record;
  row.action = deed.action;
  row.origin = deed.origin;
  row.changes = deed.changes;
  PutBehind(
      caller.db,
      deed.end != nullptr ? *deed.end : AskForTrailEnd(caller.db, deed.subject, row.record_id),
      row);
  Insert(caller.db, row);
  if (!caller.db.IsSQLite()) {
    caller.db.ProveCommitBy("SELECT 1 FROM t_Audit WHERE FSubject = '" + row.subject +
                            "' AND FRecordID = " + std::to_string(row.record_id) +
                            " AND FNumber = " + std::to_string(row.number) + " AND FHash = '" +
                            row.hash + "'");
  }
  SealIfDue(caller.db);
}

std::vector<AuditRow> AuditRowsOf(Database& db, std::string_view subject, Long first, Long last) {
  static const std::string kSql = "SELECT " + NamesOf(kColumns) +
                                  " FROM t_Audit WHERE FSubject = ? AND FRecordID BETWEEN ? AND ?"
                                  " ORDER BY FRecordID, FNumber";
  Statement& statement = db.Prepared(kSql);
  statement.Set(0, subject);
  statement.Set(1, std::int64_t{first});
  statement.Set(2, std::int64_t{last});
  std::vector<AuditRow> rows;
  for (statement.Open(); statement.Fetch();) {
    const auto text = [&](std::size_t position) { return std::string(statement.Text(position)); };
    const auto whole = [&](std::size_t position) {
      return static_cast<Long>(statement.Whole(position));
    };
    rows.push_back({.id = whole(0),
                    .time = text(1),
                    .user_id = whole(2),
                    .user_name = text(3),
                    .machine_name = text(4),
                    .address = text(5),
                    .subject = text(6),
                    .record_id = whole(7),
                    .record = text(8),
                    .action = text(9),
                    .origin = whole(10),
                    .changes = text(11),
                    .connection = text(12),
                    .number = whole(13),
                    .hash = text(14)});
  }
  return rows;
}

std::vector<StoredTable> AuditTables() {
  return {{"t_Audit", {std::begin(kColumns), std::end(kColumns)}}, SealTable()};
}

Ref<Recordset> AuditInfo::GetList(std::string_view PropsString, const String& Filter,
                                  const String& Sort, const Variant& Page) {
  const Caller caller = Enter(PropsString, RightTo<AuditInfo>("GetList"));
  static constexpr ListSource kSource{"SELECT * FROM t_Audit", kColumns, "FAuditID"};
  return FetchList(caller.db, kSource, Filter, Sort, {}, PageIn(Page));
}

String AuditInfo::GetHead(std::string_view PropsString) {
  const Caller caller = Enter(PropsString, RightTo<AuditInfo>("GetHead"));
  Transaction transaction(caller.db, Transaction::Kind::kChangeRules);
  SealTrail(caller.db);
  transaction.Commit();
  return HeadOf(LastSeal(caller.db));
}

}  // namespace qdclgl::server
