#include "qdclgl/server/vouchers/balance.h"

#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/server/access/session.h"
#include "qdclgl/server/db/list.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/periods/calendar.h"
#include "qdclgl/server/periods/settings.h"
#include "qdclgl/server/vouchers/line_size.h"

namespace qdclgl::server {

QD_DEFINE_MEMBERS(BalanceInfo)

namespace {

constexpr Column kColumns[] = {
    {"FAccountID", ColumnType::kLong},           {"FAccountNumber", ColumnType::kText},
    {"FAccountName", ColumnType::kText},         {"FLevel", ColumnType::kLong},
    {"FDetail", ColumnType::kBoolean},           {"FDC", ColumnType::kLong},
    {"FCurrencyID", ColumnType::kLong},          {"FCurrencyNumber", ColumnType::kText},
    {"FBeginBalance", ColumnType::kCurrency},    {"FDebit", ColumnType::kCurrency},
    {"FCredit", ColumnType::kCurrency},          {"FEndBalance", ColumnType::kCurrency},
    {"FBeginBalanceFor", ColumnType::kCurrency}, {"FDebitFor", ColumnType::kCurrency},
    {"FCreditFor", ColumnType::kCurrency},       {"FEndBalanceFor", ColumnType::kCurrency},
    {"FBeginQty", ColumnType::kDouble},          {"FDebitQty", ColumnType::kDouble},
    {"FCreditQty", ColumnType::kDouble},         {"FEndQty", ColumnType::kDouble},
};

// Balances as posting keeps them, one row for each account, currency and period.
std::string Stored(const Database&) {
  return "SELECT FAccountID, FCurrencyID, FYear * 1000 + FPeriod AS FAt, FDebit, FCredit, "
         "FDebitFor,"
         " FCreditFor, FDebitQty, FCreditQty FROM t_Balance";
}

// The same from the lines of posted vouchers.
std::string FromLines(const Database& db) {
  const std::string quantity = MillionthsSql(db, "(" + std::string(kCountedQuantity) + ")");
  return "SELECT e.FAccountID, e.FCurrencyID, v.FYear * 1000 + v.FPeriod AS FAt,"
         " e.FAmount * e.FDC AS FDebit, e.FAmount * (1 - e.FDC) AS FCredit,"
         " CASE WHEN e.FCurrencyID = 1 THEN e.FAmount ELSE e.FAmountFor END * e.FDC AS FDebitFor,"
         " CASE WHEN e.FCurrencyID = 1 THEN e.FAmount ELSE e.FAmountFor END * (1 - e.FDC)"
         " AS FCreditFor, " +
         quantity + " * e.FDC AS FDebitQty, " + quantity +
         " * (1 - e.FDC) AS FCreditQty FROM t_Voucher v"
         " JOIN t_VoucherEntry e ON e.FVoucherID = v.FVoucherID WHERE v.FPosted = 1";
}

// The list's query: what moved, added up by account and currency, then for every account over all
// that is below it, then for all currencies together.
std::string Query(std::string_view movements) {
  struct Sum {
    std::string_view name, begin, debit, credit;
  };
  static constexpr Sum kSums[] = {
      {"", "FBegin", "FDebit", "FCredit"},
      {"For", "FBeginFor", "FDebitFor", "FCreditFor"},
      {"Qty", "FBeginQty", "FDebitQty", "FCreditQty"},
  };
  std::string moved, over_accounts, over_currencies, present;
  for (const Sum& sum : kSums) {
    const auto add = [](std::string& text, const std::string& part) { text += ", " + part; };
    const std::string begin(sum.begin), debit(sum.debit), credit(sum.credit);
    add(moved, "SUM(CASE WHEN FAt < span.FFirst THEN " + debit + " - " + credit +
                   " ELSE 0 END) AS " + begin);
    for (const std::string& side : {debit, credit}) {
      add(moved, "SUM(CASE WHEN FAt < span.FFirst THEN 0 ELSE " + side + " END) AS " + side);
    }
    for (const std::string& name : {begin, debit, credit}) {
      add(over_accounts, "SUM(" + name + ") AS " + name);
      add(over_currencies, sum.name == "For" ? "0 AS " + name : "SUM(" + name + ") AS " + name);
      present += (present.empty() ? "" : " OR ") + name + " <> 0";
    }
  }
  return "WITH RECURSIVE span AS (SELECT CAST(? AS BIGINT) AS FFirst, CAST(? AS BIGINT) AS FLast),"
         " above AS ("
         "  SELECT FAccountID, FAccountID AS FAboveID FROM t_Account"
         "  UNION ALL"
         "  SELECT above.FAccountID, a.FParentID FROM above"
         "  JOIN t_Account a ON a.FAccountID = above.FAboveID WHERE a.FParentID <> 0),"
         " moved AS ("
         "  SELECT FAccountID, FCurrencyID" +
         moved + "  FROM (" + std::string(movements) +
         ") AS movement CROSS JOIN span"
         "  WHERE FAt <= span.FLast GROUP BY FAccountID, FCurrencyID),"
         " each AS ("
         "  SELECT above.FAboveID, moved.FCurrencyID" +
         over_accounts +
         "  FROM moved JOIN above ON above.FAccountID = moved.FAccountID"
         "  GROUP BY above.FAboveID, moved.FCurrencyID),"
         " all_rows AS ("
         "  SELECT * FROM each"
         "  UNION ALL SELECT FAboveID, 0 AS FCurrencyID" +
         over_currencies +
         "  FROM each GROUP BY FAboveID)"
         " SELECT a.FAccountID, a.FNumber AS FAccountNumber, a.FName AS FAccountName, a.FLevel,"
         " a.FDetail, a.FDC, r.FCurrencyID, COALESCE(c.FNumber, '') AS FCurrencyNumber,"
         " CAST(FBegin AS BIGINT) AS FBeginBalance, CAST(FDebit AS BIGINT) AS FDebit,"
         " CAST(FCredit AS BIGINT) AS FCredit,"
         " CAST(FBegin + FDebit - FCredit AS BIGINT) AS FEndBalance,"
         " CAST(FBeginFor AS BIGINT) AS FBeginBalanceFor, CAST(FDebitFor AS BIGINT) AS FDebitFor,"
         " CAST(FCreditFor AS BIGINT) AS FCreditFor,"
         " CAST(FBeginFor + FDebitFor - FCreditFor AS BIGINT) AS FEndBalanceFor,"
         " FBeginQty / 1e6 AS FBeginQty, FDebitQty / 1e6 AS FDebitQty,"
         " FCreditQty / 1e6 AS FCreditQty, (FBeginQty + FDebitQty - FCreditQty) / 1e6 AS FEndQty"
         " FROM all_rows r JOIN t_Account a ON a.FAccountID = r.FAboveID"
         " LEFT JOIN t_Currency c ON c.FCurrencyID = r.FCurrencyID"
         " WHERE " +
         present;
}

Ref<Recordset> Balances(std::string_view props, std::string (*movements)(const Database&),
                        Long year, Long from, Long to, const String& filter, const String& sort) {
  const Caller caller = Enter(props, BalanceInfo::kRead);
  Transaction transaction(caller.db, Transaction::Kind::kRead);
  std::int64_t first = INT64_MIN, last = INT64_MAX;
  if (year != 0) {
    const Calendar calendar = LedgerRules::Of(caller.db).calendar;
    const AccountingPeriod begin{year, from != 0 ? from : 1};
    const AccountingPeriod end{year, to != 0 ? to : calendar.period_count()};
    calendar.SpanOf(begin);
    calendar.SpanOf(end);
    if (end < begin) {
      Refuse(refusal::kBadValue,
             "Periods go forward, not from " + begin.ToText() + " to " + end.ToText() + ".");
    }
    first = std::int64_t{begin.year} * 1000 + begin.period;
    last = std::int64_t{end.year} * 1000 + end.period;
  } else if (from != 0 || to != 0) {
    Refuse(refusal::kBadValue, "Periods without a year say nothing.");
  }
  const std::string query = Query(movements(caller.db));
  const BoundValue span[] = {first, last};
  Ref<Recordset> list =
      FetchList(caller.db, {query, kColumns, "FAccountNumber, FCurrencyID"}, filter, sort, span);
  transaction.Commit();
  return list;
}

}  // namespace

Ref<Recordset> BalanceInfo::GetList(std::string_view PropsString, Long nYear, Long PeriodFrom,
                                    Long PeriodTo, const String& Filter, const String& Sort) {
  return Balances(PropsString, Stored, nYear, PeriodFrom, PeriodTo, Filter, Sort);
}

Ref<Recordset> BalanceInfo::GetListFromLines(std::string_view PropsString, Long nYear,
                                             Long PeriodFrom, Long PeriodTo, const String& Filter,
                                             const String& Sort) {
  return Balances(PropsString, FromLines, nYear, PeriodFrom, PeriodTo, Filter, Sort);
}

}  // namespace qdclgl::server
