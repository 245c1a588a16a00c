// The statements of a year: what came in and went out, and what there is and is owed.
#pragma once

#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/server/access/component.h"

namespace qdclgl::server {

// What a row of a statement is, in its column FRow.
namespace report_row {
inline constexpr std::string_view kAccount = "Account";        // with all of its kind below it
inline constexpr std::string_view kTotal = "Total";            // of a kind
inline constexpr std::string_view kResult = "Result";          // income less expense
inline constexpr std::string_view kEarlier = "Earlier";        // of former years, not carried
inline constexpr std::string_view kSources = "Sources";        // liabilities and equity
inline constexpr std::string_view kDifference = "Difference";  // assets less those
}  // namespace report_row

// A statement has columns, the spans of periods that the caller names, "2024/1-2024/3,2024/4". Each
// of its rows comes once for each of them, in their order, with the span's periods (FFrom, FTo),
// the amount in base currency and its share of the income or of the assets in percent (FPercent, 0
// where there are none). Rows are FRow, FKind, FAccountID, FAccountNumber, FAccountName, FLevel,
// FDetail; accounts stand by kind, each behind the one above it, and one without any amount stays
// out. An account whose kind nobody has told, with all that is above it, is of kind "".
class ReportInfo final : public Object {
  QD_MEMBERS(ReportInfo, Object, Creatable, "The statements of a year.")

 public:
  static constexpr std::string_view kProgID = "QDSVGLReport.ReportInfo";
  static constexpr Right kRead{Role::kReader, "read statements"};
  static constexpr MethodRight kRights[] = {
      {"GetIncome", kRead}, {"GetIncomeWithBudget", kRead}, {"GetPosition", kRead}};

  QD_METHOD(Ref<Recordset>, GetIncome, (std::string_view PropsString, const String& Spans),
            "The income statement over spans of periods, each a year, a period or from one to "
            "another (2024, 2024/3, 2024/1-2024/3), commas between them: income positive, expense "
            "positive, the result. Vouchers that carry a year's result are left out. Accounts "
            "without a kind follow, debit positive. BadValue for spans that there are not.")
  QD_METHOD(Ref<Recordset>, GetIncomeWithBudget,
            (std::string_view PropsString, const String& Spans),
            "The same with what is budgeted: FBudget, the amount less it (FDifference), and the "
            "amount in percent of it (FBudgetPercent). Budgets add up; one of period 0 is spread "
            "evenly over the year's periods, one of year 0 is that of each year.")
  QD_METHOD(Ref<Recordset>, GetPosition, (std::string_view PropsString, const String& Spans),
            "The balance sheet at the ends of such spans: assets, liabilities, equity with the "
            "result that is not carried yet (of that year, and of earlier ones), liabilities and "
            "equity together, and what the assets differ from these by: 0, unless accounts without "
            "a kind, which stand before it, have balances. BadValue.")
};

}  // namespace qdclgl::server
