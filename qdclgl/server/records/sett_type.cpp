// Settlement types: how a line of a voucher was settled, and the settlement account that goes with
// it.
#include "qdclgl/server/records/settlement.h"

namespace qdclgl::server {

const MasterData& SettAccts();

const MasterData& SettTypes() {
  static const MasterData kKind(SettlementDictionary(
      {
          .component = "QDSVGLSettType.SettType",
          .noun = "settlement type",
          .nouns = "settlement types",
          .list = {"settlement-types", "Lists the settlement types", "FNumber FName AcctNumber"},
          .table = "t_SettType",
          .id = "FItemID",
          .key = {.column = "FNumber", .ignores_case = true},
          .columns = {{{"FBrNo", ColumnType::kText}, Keeper::kCaller, "0"}},
      },
      {{"FAcctID", "AcctNumber", SettAccts}}));
  return kKind;
}

}  // namespace qdclgl::server
