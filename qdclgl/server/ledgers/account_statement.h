// Statements: what is posted on an account, line by line or period by period, with the balance
// behind each.
#pragma once

#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/server/access/component.h"

namespace qdclgl::server {

// What a row of a statement is, in its column FRow, besides what rows of ledgers' sheets are
// (sheet_row).
namespace statement_row {
inline constexpr std::string_view kMore = "More";    // in place of Closing: there are more lines
inline constexpr std::string_view kTotal = "Total";  // behind the last item, of all of them
}  // namespace statement_row

// FRow says what a row is: Opening, Line or Period, Closing or More, and behind a statement by
// items Total. Then come the item that it is of (FItemNumber, FItemName), the line (FDate, FYear,
// FPeriod, FVoucherID, FEntryID, FGroup, FNumber, FPosted, FAccountNumber, FContra, FExplanation,
// FTransNo), FBeginBalance, FDebit, FCredit and FBalance, debit minus credit, and the same in the
// currency FCurrencyNumber at FExchangeRate: FDebitFor, FCreditFor, FBalanceFor. Rows of sums are
// in the currency that all they hold is in, or in none.
class StatementInfo final : public Object {
  QD_MEMBERS(StatementInfo, Object, Creatable, "Statements of accounts.")

 public:
  static constexpr std::string_view kProgID = "QDSVGLStatement.StatementInfo";
  static constexpr Right kRead{Role::kReader, "read statements"};
  static constexpr MethodRight kRights[] = {{"GetStatement", kRead}, {"GetPeriods", kRead}};

  QD_METHOD(Ref<Recordset>, GetStatement,
            (std::string_view PropsString, const String& AccountNumber, DateTime DateFrom = {},
             DateTime DateTo = {}, Boolean WithUnposted = {}, const String& ItemClassNumber = {},
             const String& ItemNumber = {}, Long Count = {}, Long AfterVoucherID = {},
             Long AfterEntryID = {}),
            "The lines on an account and those below it from DateFrom (otherwise the first day of "
            "the current year) to DateTo (otherwise the last day of that year), with the balance "
            "behind each; with an item class item by item, with ItemNumber of that item alone. "
            "With Count at most so many lines, and a last row More whose FVoucherID and FEntryID "
            "are the AfterVoucherID and AfterEntryID of the page behind. NotFound; BadReference "
            "for a class or an item that there isn't, and for one that no such account asks for; "
            "BadValue for days, and for a page of a statement item by item.")
  QD_METHOD(Ref<Recordset>, GetPeriods,
            (std::string_view PropsString, const String& AccountNumber, DateTime DateFrom = {},
             DateTime DateTo = {}, Boolean WithUnposted = {}, const String& ItemClassNumber = {},
             const String& ItemNumber = {}),
            "The same with a row for each period in which something moved, in place of the lines. "
            "Whole periods come from the balances that posting keeps.")
};

}  // namespace qdclgl::server
