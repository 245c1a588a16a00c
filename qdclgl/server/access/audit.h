// The audit trail: who did what, and when, written in the transaction of the deed itself.
#pragma once

#include <string>
#include <string_view>

#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/frame/objects/members.h"
#include "qdclgl/server/access/component.h"
#include "qdclgl/server/db/columns.h"

namespace qdclgl::server {

struct Deed {
  std::string_view subject;  // "Voucher", "Account", "Currency", ...
  Long record_id = 0;
  std::string_view record;        // the record as people call it: "2024/1 Receipts 5"
  std::string_view action;        // "Create", "Update", "Delete", "Check", ...
  std::string_view changes = {};  // for an update what changed, key by key
  // Where the deed came from, when the caller says so; otherwise the session's.
  std::string_view machine_name = {};
  std::string_view address = {};
  int origin = 1;  // 2: an automatic save
};

void WriteAudit(const Caller& caller, const Deed& deed);

StoredTable AuditTable();

class AuditInfo final : public Object {
  QD_MEMBERS(AuditInfo, Object, Creatable, "The audit trail.")

 public:
  static constexpr std::string_view kProgID = "QDSVGLAudit.AuditInfo";
  static constexpr MethodRight kRights[] = {{"GetList", {Role::kReader, "read the audit trail"}}};
  static constexpr NamedList kList{"audit", "Tells who did what, and when",
                                   "FTime FUserName FSubject FRecordID FRecord FAction FChanges"};

  QD_METHOD(Ref<Recordset>, GetList,
            (std::string_view PropsString, const String& Filter = {}, const String& Sort = {}),
            "The deeds, the oldest first unless Sort says otherwise: FAuditID, FTime (UTC), "
            "FUserID, FUserName, FMachineName, FIPAddress, FSubject, FRecordID, FRecord, FAction, "
            "FOrigin, FChanges. BadFilter, BadSort.")
};

}  // namespace qdclgl::server
