// Balances of accounts over a span of periods.
#pragma once

#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/server/access/component.h"
#include "qdclgl/server/db/list.h"

namespace qdclgl::server {

// A row for each account with movement and all its currencies together (FCurrencyID 0), and one for
// each of its currencies. An account that has others below it carries their sums (FDetail False).
// FBeginBalance, FDebit, FCredit and FEndBalance are in base currency, debit minus credit; the
// columns ending in For are in the row's currency (0 in the rows of all currencies), those ending
// in Qty are quantities.
//
// Lists by items have a row for each account, each combination of an item of each class, and each
// currency, of accounts that ask for all of the classes, and of those above them. FItemID1,
// FItemNumber1 and FItemName1 are the item of the first class, and so on; those of lines that are
// older than the account's classes can be none, with the id 0.
class BalanceInfo final : public Object {
  QD_MEMBERS(BalanceInfo, Object, Creatable, "Balances of accounts.")

 public:
  static constexpr std::string_view kProgID = "QDSVGLBalance.BalanceInfo";
  static constexpr Right kRead{Role::kReader, "read balances"};
  static constexpr MethodRight kRights[] = {{"GetList", kRead},
                                            {"GetListFromLines", kRead},
                                            {"GetItemList", kRead},
                                            {"GetItemListFromLines", kRead}};

  QD_METHOD(Ref<Recordset>, GetList,
            (std::string_view PropsString, Long nYear = {}, Long PeriodFrom = {},
             Long PeriodTo = {}, const String& Filter = {}, const String& Sort = {},
             const Variant& Page = Missing),
            "The balances over periods of a year, from what posting keeps: year 0 is everything "
            "posted, period 0 the year's first or last. By account number and currency unless Sort "
            "says otherwise. " QDCLGL_PAGE_HELP
            " BadFilter, BadSort, BadValue, also for periods that the year does not have.")
  QD_METHOD(Ref<Recordset>, GetListFromLines,
            (std::string_view PropsString, Long nYear = {}, Long PeriodFrom = {},
             Long PeriodTo = {}, const String& Filter = {}, const String& Sort = {},
             const Variant& Page = Missing),
            "The same, added up from the lines of the posted vouchers.")
  QD_METHOD(Ref<Recordset>, GetItemList,
            (std::string_view PropsString, const String& ClassNumbers, Long nYear = {},
             Long PeriodFrom = {}, Long PeriodTo = {}, const String& Filter = {},
             const String& Sort = {}, const Variant& Page = Missing),
            "The balances by items of these classes, their numbers with commas between them, at "
            "most 8: \"CUSTOMER,DEP\". By account, items and currency unless Sort says "
            "otherwise. " QDCLGL_PAGE_HELP
            " BadReference for a class that there isn't, and the errors of GetList.")
  QD_METHOD(Ref<Recordset>, GetItemListFromLines,
            (std::string_view PropsString, const String& ClassNumbers, Long nYear = {},
             Long PeriodFrom = {}, Long PeriodTo = {}, const String& Filter = {},
             const String& Sort = {}, const Variant& Page = Missing),
            "The same, added up from the lines of the posted vouchers.")
};

}  // namespace qdclgl::server
