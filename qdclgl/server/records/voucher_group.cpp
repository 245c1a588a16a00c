// Voucher groups: the words that vouchers are filed under.
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/records/record_save.h"

namespace qdclgl::server {

namespace {

class VoucherGroupUpdate final : public RecordUpdate {
  QD_BASE_MEMBERS(RecordUpdate)

 public:
  using RecordUpdate::RecordUpdate;

  QD_INHERITED(Create)
  QD_INHERITED(Update)
  QD_METHOD(void, Delete,
            (std::string_view PropsString, const Long& VoucherGroupID,
             std::string_view MachineName = "", std::string_view IPAddress = "",
             const Long& lngDelSign = {}),
            "With sign 0 removes a group, InUse when vouchers are filed under it; with any other "
            "marks it deleted. NotFound.")
};

void VoucherGroupUpdate::Delete(std::string_view PropsString, const Long& VoucherGroupID,
                                std::string_view MachineName, std::string_view IPAddress,
                                const Long& lngDelSign) {
  const Caller caller = EnterUnconfirmed(PropsString, kind().writing());
  RecordRemoval removal(caller, kind(), VoucherGroupID);
  if (lngDelSign != 0) {
    removal.Mark();
  } else {
    if (caller.db.QueryValue<int>("SELECT 1 FROM t_Voucher WHERE FGroupID = ? LIMIT 1",
                                  VoucherGroupID)) {
      removal.Refuse(refusal::kInUse, "vouchers are filed under it.");
    }
    caller.db.Execute("DELETE FROM t_Counter WHERE FGroupID = ?", VoucherGroupID);
    removal.Remove();
  }
  removal.Commit(MachineName, IPAddress);
}

}  // namespace

const MasterData& VoucherGroups() {
  using enum ColumnType;
  static const MasterData kKind({
      .component = "QDSVGLVoucherGroup.VoucherGroup",
      .noun = "voucher group",
      .nouns = "voucher groups",
      .brief = "group",
      .list = {"groups", "Lists the voucher groups", "FGroupID FName"},
      .table = "t_VoucherGroup",
      .id = "FGroupID",
      .key = {"FName"},
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
      .update = RecordClassOf<VoucherGroupUpdate>(),
  });
  return kKind;
}

}  // namespace qdclgl::server
