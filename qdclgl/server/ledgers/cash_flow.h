// Cash flow: where the money on the cash accounts has come from and gone to.
#pragma once

#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/server/access/component.h"

namespace qdclgl::server {

// FRow says what a row is: Opening, Item (of a cash flow item), Account (of the account on the
// other side, where lines have no item), Closing. Cash accounts are those that are cash, are at a
// bank, or take part in the cash flow. FCashFlowItem, or FAccountNumber and FAccountName, is where
// the money goes to or comes from; FInflow, FOutflow, and FNet, which is the balance in the rows
// Opening and Closing; FNetBefore is FNet of the same days a year before, where it is asked for.
class CashFlowInfo final : public Object {
  QD_MEMBERS(CashFlowInfo, Object, Creatable, "Cash flow.")

 public:
  static constexpr std::string_view kProgID = "QDSVGLCashFlow.CashFlowInfo";
  static constexpr Right kRead{Role::kReader, "read the cash flow"};
  static constexpr MethodRight kRights[] = {{"GetCashFlow", kRead}};

  QD_METHOD(Ref<Recordset>, GetCashFlow,
            (std::string_view PropsString, DateTime DateFrom = {}, DateTime DateTo = {},
             Boolean WithYearBefore = {}),
            "The cash flow of what is posted from DateFrom (otherwise the first day of the current "
            "year) to DateTo (otherwise the last day of that year), by cash flow items and where "
            "lines have none by the accounts on the other side. BadValue for days; Required where "
            "no account is a cash account.")
};

}  // namespace qdclgl::server
