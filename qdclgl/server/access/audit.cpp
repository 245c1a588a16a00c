#include "qdclgl/server/access/audit.h"

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

// One statement finds the row before, takes the time and makes the hash as HashBehind does. So the
// trail costs a save one message, and what stands in a row belongs to one moment.
std::string InsertSql(bool is_sqlite) {
  const auto dialect = [&](const std::string& sqlite, const std::string& postgresql) {
    return is_sqlite ? sqlite : postgresql;
  };
  const auto former = [](const std::string& column) {
    return "(SELECT " + column +
           " FROM t_Audit WHERE FSubject = ? AND FRecordID = ? ORDER BY FNumber DESC LIMIT 1)";
  };
  const std::string clock = dialect(
      "strftime('%Y-%m-%dT%H:%M:%SZ', 'now')",
      "to_char(statement_timestamp() AT TIME ZONE 'UTC', 'YYYY-MM-DD\"T\"HH24:MI:SS\"Z\"')");
  const std::string time =
      dialect("MAX", "GREATEST") + "(" + clock +
      ", COALESCE((SELECT FTime FROM t_Audit ORDER BY FAuditID DESC LIMIT 1), ''))";
  const std::string address = dialect("''", "COALESCE(host(inet_client_addr()), '')");
  const std::string hashed = "COALESCE(" + former("FHash || ' ' || CAST(FNumber + 1 AS TEXT)") +
                             ", ' 1') || ' ' || " + time + " || ' ' || " + address +
                             " || ' ' || CAST(? AS TEXT)";
  return "INSERT INTO t_Audit (FUserID, FUserName, FMachineName, FIPAddress, FSubject, FRecordID,"
         " FRecord, FAction, FOrigin, FChanges, FTime, FConnection, FNumber, FHash)"
         " VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, " +
         time + ", " + address + ", COALESCE(" + former("FNumber") + ", 0) + 1, " +
         dialect("sha256_digits(" + hashed + ")",
                 "encode(sha256(convert_to(" + hashed + ", 'UTF8')), 'hex')") +
         ")";
}

}  // namespace

std::string AuditRow::HashBehind(std::string_view previous) const {
  return Sha256Of(std::string(previous) + " " + std::to_string(number) + " " + time + " " +
                  connection + " " + DigestOf(*this));
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
  const auto with_values = [&](const auto& run) {
    return run(row.user_id, row.user_name, row.machine_name, row.address, row.subject,
               row.record_id, row.record, row.action, row.origin, row.changes, row.subject,
               row.record_id, row.subject, row.record_id, DigestOf(row));
  };
  if (caller.db.IsSQLite()) {
    static const std::string kSql = InsertSql(true);
    with_values([&](const auto&... values) { caller.db.Execute(kSql, values...); });
  } else {
    static const std::string kSql = InsertSql(false) + " RETURNING FAuditID, FHash";
    const auto [id, hash] = *with_values([&](const auto&... values) {
      return caller.db.QueryRow<Long, std::string>(kSql, values...);
    });
    caller.db.ProveCommitBy("SELECT 1 FROM t_Audit WHERE FAuditID = " + std::to_string(id) +
                            " AND FHash = '" + hash + "'");
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
                                  const String& Sort) {
  const Caller caller = Enter(PropsString, RightTo<AuditInfo>("GetList"));
  static constexpr ListSource kSource{"SELECT * FROM t_Audit", kColumns, "FAuditID"};
  return FetchList(caller.db, kSource, Filter, Sort);
}

String AuditInfo::GetHead(std::string_view PropsString) {
  const Caller caller = Enter(PropsString, RightTo<AuditInfo>("GetHead"));
  Transaction transaction(caller.db, Transaction::Kind::kChangeRules);
  SealTrail(caller.db);
  transaction.Commit();
  return HeadOf(LastSeal(caller.db));
}

}  // namespace qdclgl::server
