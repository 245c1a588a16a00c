// Settlement accounts: the accounts that settlements go through, with what is in them.
#include "qdclgl/server/records/settlement.h"

namespace qdclgl::server {

const MasterData& Accounts();

const MasterData& SettAccts() {
  using enum ColumnType;
  static const MasterData kKind(SettlementDictionary(
      {
          .component = "QDSVGLSettAcct.SettAcct",
          .noun = "settlement account",
          .nouns = "settlement accounts",
          .list = {"settlement-accounts", "Lists the settlement accounts",
                   "FNumber FName AcctNumber FBalance"},
          .table = "t_SettAcct",
          .id = "FItemID",
          .key = {.column = "FNumber", .ignores_case = true},
          .columns = {{{"FBrNo", kText}, Keeper::kCaller, "0"},
                      {{"FBalance", kDouble}},
                      {{"FStartPeriod", kText}},
                      {{"FBeforeEnable", kBoolean}}},
      },
      {{"FAcctID", "AcctNumber", Accounts}}));
  return kKind;
}

}  // namespace qdclgl::server
