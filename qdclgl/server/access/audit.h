// The audit trail: who did what, and when, written in the transaction of the deed itself.
//
// The rows of one record (subject and id) are numbered from 1 without gaps, and each holds a hash
// of itself and of the row before it. The lock that a writer has on the record keeps others from
// its rows meanwhile, so that writers of different records never wait for each other. Blocks of the
// whole trail are sealed besides, see trail_seal.h.
#pragma once

#include <string>
#include <string_view>

#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/frame/objects/members.h"
#include "qdclgl/server/access/component.h"
#include "qdclgl/server/access/trail_row.h"
#include "qdclgl/server/db/columns.h"
#include "qdclgl/server/db/list.h"

namespace qdclgl::server {

struct Deed {
  std::string_view subject;  // "Voucher", "Account", "Currency", ...
  Long record_id = 0;
  std::string_view record;        // the record as people call it: "2024/1 Receipts 5"
  std::string_view action;        // "Create", "Update", "Delete", "Check", ...
  std::string_view changes = {};  // of the record, as ChangesText has them
  // Where the deed came from, when the caller says so; otherwise the session's.
  std::string_view machine_name = {};
  std::string_view address = {};
  int origin = 1;  // 2: an automatic save
  // What AskForTrailEnd gave for the record, where it was asked along with something else.
  Statement* end = nullptr;
};

// Asks where the rows of a record end, which the row behind them goes by; for who holds the record,
// so that nobody adds to them. 0 is a new record, which has none.
Statement& AskForTrailEnd(Database& db, std::string_view subject, Long record_id);

// The time is the database's own, and no earlier than that of the rows before.
void WriteAudit(const Caller& caller, const Deed& deed);

// A row of the trail as it is kept.
struct AuditRow {
  Long id = 0;
  std::string time;
  Long user_id = 0;
  std::string user_name, machine_name, address, subject;
  Long record_id = 0;
  std::string record, action;
  Long origin = 0;
  std::string changes, connection;
  Long number = 0;
  std::string hash;

  // The hash that it should have behind a row with the hash `previous`, "" before the first one.
  std::string HashBehind(std::string_view previous) const;
};

// The rows of the records `first` to `last` of a subject, each record's by their numbers.
std::vector<AuditRow> AuditRowsOf(Database& db, std::string_view subject, Long first, Long last);

// The tables of the trail.
std::vector<StoredTable> AuditTables();

class AuditInfo final : public Object {
  QD_MEMBERS(AuditInfo, Object, Creatable, "The audit trail.")

 public:
  static constexpr std::string_view kProgID = "QDSVGLAudit.AuditInfo";
  static constexpr Right kReadTrail{Role::kReader, "read the audit trail"};
  static constexpr MethodRight kRights[] = {{"GetList", kReadTrail}, {"GetHead", kReadTrail}};
  static constexpr NamedList kList{"audit", "Tells who did what, and when",
                                   "FTime FUserName FSubject FRecordID FRecord FAction FChanges"};

  QD_METHOD(Ref<Recordset>, GetList,
            (std::string_view PropsString, const String& Filter = {}, const String& Sort = {},
             const Variant& Page = Missing),
            "The deeds, the oldest first unless Sort says otherwise: FAuditID, FTime (UTC), "
            "FUserID, FUserName, FMachineName, FIPAddress, FSubject, FRecordID, FRecord, FAction, "
            "FOrigin, FChanges, FConnection (the client's address as the database knows it, and "
            "the connection's id), "
            "FNumber (from 1 for each record), FHash. " QDCLGL_PAGE_HELP
            " BadFilter, BadSort, BadValue.")
  QD_METHOD(String, GetHead, (std::string_view PropsString),
            "Seals the trail as far as it has come, and gives the number and the hash of the last "
            "seal: \"12-0f3a...\". Kept elsewhere, it lets Check of BooksInfo find a trail that "
            "was cut off or written anew.")
};

}  // namespace qdclgl::server
