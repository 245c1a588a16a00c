// What balances in other currencies are worth at the end of a period.
#pragma once

#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/server/access/component.h"

namespace qdclgl::server {

class RevaluationInfo final : public Object {
  QD_MEMBERS(RevaluationInfo, Object, Creatable,
             "What balances in other currencies are worth at the end of a period.")

 public:
  static constexpr std::string_view kProgID = "QDSVGLRevaluation.RevaluationInfo";
  static constexpr Right kRead{Role::kReader, "read what a revaluation books"};
  static constexpr MethodRight kRights[] = {{"GetDifferences", kRead},
                                            {"GetRevaluationVouchers", kRead}};

  QD_METHOD(
      Ref<Recordset>, GetDifferences, (std::string_view PropsString, Long nYear, Long Period),
      "What stands at the end of a period on accounts that are not of kind income, expense "
      "or equity in other currencies than the base currency, by currency and by items, and "
      "what it is worth at the rate of the period's last day: FAccountID, FAccountNumber, "
      "FAccountName, FItems (their numbers), FCurrencyNumber, FAmountFor, FAmount, FRateDate, "
      "FExchangeRate, FWorth, FDifference, debits positive. NotFound for a currency without "
      "a rate; BadValue.")
  QD_METHOD(Ref<Recordset>, GetRevaluationVouchers,
            (std::string_view PropsString, Long nYear, Long Period, Long AccountID),
            "The vouchers that book these differences against an account: a row for each, as "
            "VoucherUpdate.Create takes it, but for its group. They are of the period's last day, "
            "and FInternalInd marks them as Revaluation. No row when there is no difference. "
            "WrongStep when the period has such a voucher; the errors of GetDifferences.")
};

}  // namespace qdclgl::server
