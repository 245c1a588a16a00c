#include "qdclgl/server/records/voucher_group.h"

#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/records/record.h"

namespace qdclgl::server {

QD_DEFINE_MEMBERS(VoucherGroupInfo)
QD_DEFINE_MEMBERS(VoucherGroupUpdate)

namespace {

constexpr std::string_view kChange = "change voucher groups";
constexpr std::string_view kRead = "read voucher groups";

const RecordTable& Groups() {
  using enum ColumnType;
  static const RecordTable kTable({
      .subject = "VoucherGroup",
      .noun = "Voucher group",
      .table = "t_VoucherGroup",
      .id = "FGroupID",
      .query = "SELECT * FROM t_VoucherGroup",
      .order = "FGroupID",
      .deleted = "FDeleted",
      .columns = {{{"FName", kText}},
                  {{"FStandard", kInteger}},
                  {{"FLimitMulti", kInteger}},
                  {{"FDRange", kText}},
                  {{"FCRange", kText}},
                  {{"FDCRange", kText}},
                  {{"FNDRange", kText}},
                  {{"FNCRange", kText}},
                  {{"FNDCRange", kText}},
                  {{"FDeleted", kBoolean}},
                  {{"UUID", kText}}},
  });
  return kTable;
}

void Save(RecordSave& save) {
  save.RequireText("FName");
  save.RequireUnique("FName");
  save.Write();
  save.Commit();
}

}  // namespace

Ref<Dictionary> VoucherGroupInfo::GetDetail(std::string_view PropsString,
                                            const Long& VoucherGroupID) {
  const Caller caller = Enter(PropsString, Role::kReader, kRead);
  return Groups().Read(caller.db, VoucherGroupID);
}

Ref<Dictionary> VoucherGroupInfo::GetDetailByNumber(std::string_view PropsString,
                                                    std::string_view Name) {
  const Caller caller = Enter(PropsString, Role::kReader, kRead);
  return Groups().Read(caller.db, Groups().IdWith(caller.db, "FName", Name));
}

Ref<Recordset> VoucherGroupInfo::GetList(std::string_view PropsString, const Long& ListOptions,
                                         const String& Filter, const String& Sort) {
  const Caller caller = Enter(PropsString, Role::kReader, kRead);
  return Groups().List(caller.db, ListOptions, Filter, Sort);
}

Long VoucherGroupInfo::ExistenceCheck(std::string_view PropsString, const Variant& VoucherGroupID,
                                      const Variant& Name) {
  const Caller caller = Enter(PropsString, Role::kReader, kRead);
  if (!VoucherGroupID.IsMissing()) {
    const auto id = VoucherGroupID.As<Long>();
    return Groups().Read(caller.db, id) ? id : 0;
  }
  if (Name.IsMissing()) return 0;
  return Groups().IdWith(caller.db, "FName", Name.As<String>());
}

Long VoucherGroupUpdate::Create(std::string_view PropsString, const Ref<Dictionary>& dict) {
  const Caller caller = Enter(PropsString, Role::kAdministrator, kChange);
  RecordSave save(caller, Groups(), dict);
  Save(save);
  return save.id();
}

void VoucherGroupUpdate::Update(std::string_view PropsString, const Long& VoucherGroupID,
                                const Ref<Dictionary>& dict) {
  const Caller caller = Enter(PropsString, Role::kAdministrator, kChange);
  RecordSave save(caller, Groups(), dict, VoucherGroupID);
  Save(save);
}

void VoucherGroupUpdate::Delete(std::string_view PropsString, const Long& VoucherGroupID,
                                std::string_view MachineName, std::string_view IPAddress,
                                const Long& lngDelSign) {
  const Caller caller = Enter(PropsString, Role::kAdministrator, kChange);
  Transaction transaction(caller.db, Transaction::Kind::kChangeRules);
  const Ref<Dictionary> group = Groups().Require(caller.db, VoucherGroupID);
  if (lngDelSign != 0) {
    caller.db.Execute(
        "UPDATE t_VoucherGroup SET FDeleted = 1, FVersion = FVersion + 1 WHERE FGroupID = ?",
        VoucherGroupID);
  } else {
    if (caller.db.QueryValue<int>("SELECT 1 FROM t_Voucher WHERE FGroupID = ? LIMIT 1",
                                  VoucherGroupID)) {
      Refuse(refusal::kInUse, Groups().Called(*group) + ": vouchers are filed under it.");
    }
    caller.db.Execute("DELETE FROM t_Counter WHERE FGroupID = ?", VoucherGroupID);
    Groups().Remove(caller.db, VoucherGroupID);
  }
  AuditDeletion(caller, Groups(), *group, MachineName, IPAddress);
  transaction.Commit();
}

}  // namespace qdclgl::server
