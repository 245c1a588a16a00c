#include "qdclgl/server/access/audit.h"

#include <chrono>
#include <ctime>

#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/server/db/list.h"

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
};

// "2024-01-31T13:05:00Z"
std::string Now() {
  const std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
  std::tm parts{};
#ifdef _WIN32
  gmtime_s(&parts, &now);
#else
  gmtime_r(&now, &parts);
#endif
  char text[sizeof "2024-01-31T13:05:00Z"];
  std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &parts);
  return text;
}

}  // namespace

void WriteAudit(const Caller& caller, const Deed& deed) {
  const Session& session = *caller.session;
  const auto or_session = [](std::string_view given, const std::string& own) {
    return given.empty() ? std::string_view(own) : given;
  };
  caller.db.Execute(
      "INSERT INTO t_Audit (FTime, FUserID, FUserName, FMachineName, FIPAddress, FSubject,"
      " FRecordID, FRecord, FAction, FOrigin, FChanges)"
      " VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)",
      Now(), session.user_id, session.user_name,
      or_session(deed.machine_name, session.machine_name),
      or_session(deed.address, session.address), deed.subject, deed.record_id, deed.record,
      deed.action, deed.origin, deed.changes);
}

StoredTable AuditTable() { return {"t_Audit", {std::begin(kColumns), std::end(kColumns)}}; }

Ref<Recordset> AuditInfo::GetList(std::string_view PropsString, const String& Filter,
                                  const String& Sort) {
  const Caller caller = Enter(PropsString, RightTo<AuditInfo>("GetList"));
  static constexpr ListSource kSource{"SELECT * FROM t_Audit", kColumns, "FAuditID"};
  return FetchList(caller.db, kSource, Filter, Sort);
}

}  // namespace qdclgl::server
