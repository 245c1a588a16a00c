// What a year ends with: its result is carried to the equity.
#pragma once

#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/server/access/component.h"

namespace qdclgl::server {

class YearEndInfo final : public Object {
  QD_MEMBERS(YearEndInfo, Object, Creatable, "What a year ends with.")

 public:
  static constexpr std::string_view kProgID = "QDSVGLYearEnd.YearEndInfo";
  static constexpr MethodRight kRights[] = {
      {"GetResultVouchers", {Role::kReader, "read what a year ends with"}}};

  QD_METHOD(Ref<Recordset>, GetResultVouchers,
            (std::string_view PropsString, Long nYear, Long AccountID),
            "The vouchers that carry the result of a year to an account of kind equity: a row for "
            "each, as VoucherUpdate.Create takes it, but for its group. They are of the year's "
            "last day and bring what stands on accounts of income and expense to zero, by currency "
            "and by items; FInternalInd marks them as TransferPL, so that income statements leave "
            "them out. No row when there is nothing to carry. NotAllPosted while such a voucher of "
            "the year is not posted; BadReference for an account of another kind; BadValue.")
};

}  // namespace qdclgl::server
