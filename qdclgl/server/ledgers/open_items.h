// Open items: what of the lines of customers, suppliers and the like is not settled.
#pragma once

#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/server/access/component.h"

namespace qdclgl::server {

// Lines on one account that name one item of the class and have one reference (FTransNo) settle
// each other; what is left of them is open since the day of the first. Lines without a reference
// settle the oldest of those that have none either, and each of which something is left is a row of
// its own.
//
// A row has FAccountNumber, FItemNumber, FItemName, FTransNo, FDate and FVoucherID of its first
// line, FDays since then, FDebit and FCredit of its lines, FOpen (debit minus credit), and FOpen
// once more in the one of FAge1, FAge2, ... whose days it is in. Amounts are in base currency.
class OpenItemInfo final : public Object {
  QD_MEMBERS(OpenItemInfo, Object, Creatable, "Open items.")

 public:
  static constexpr std::string_view kProgID = "QDSVGLOpenItem.OpenItemInfo";
  static constexpr Right kRead{Role::kReader, "read open items"};
  static constexpr MethodRight kRights[] = {{"GetOpenItems", kRead}};

  QD_METHOD(Ref<Recordset>, GetOpenItems,
            (std::string_view PropsString, const String& ItemClassNumber, DateTime OnDate,
             const String& AccountNumber = {}, const String& Ageing = {}),
            "What is open at the end of a day of all that is posted on the accounts that ask for "
            "items of a class, or on those of them that are the account or stand below it. Ageing "
            "tells the last day of each age but the last, \"30,60,90\". By account, item, day and "
            "reference. NotFound for the account; BadReference for a class that there isn't, and "
            "for one that no such account asks for; BadValue for ages that don't rise.")
};

}  // namespace qdclgl::server
