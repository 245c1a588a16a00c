// Check types, with the accounts of the parts that checks play.
#include "qdclgl/server/records/settlement.h"

namespace qdclgl::server {

const MasterData& Accounts();

const MasterData& CheckTypes() {
  static const MasterData kKind(SettlementDictionary(
      {
          .component = "QDSVGLCheckType.CheckType",
          .noun = "check type",
          .nouns = "check types",
          .list = {"check-types", "Lists the check types", "FNumber FName CheckAcctNumber"},
          .table = "t_CheckType",
          .id = "FItemID",
          .key = {.column = "FNumber", .ignores_case = true},
          .columns = {},
      },
      {{"FAdjustAcctID", "AdjustAcctNumber", Accounts},
       {"FCheckAcctID", "CheckAcctNumber", Accounts},
       {"FCostAcctID", "CostAcctNumber", Accounts},
       {"FIncomAcctID", "IncomAcctNumber", Accounts},
       {"FSellAcctID", "SellAcctNumber", Accounts},
       {"FZZCXAcctID", "ZZCXAcctNumber", Accounts}}));
  return kKind;
}

}  // namespace qdclgl::server
