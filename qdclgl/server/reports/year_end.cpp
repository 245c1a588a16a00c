#include "qdclgl/server/reports/year_end.h"

#include <algorithm>
#include <string>
#include <tuple>
#include <vector>

#include "qdclgl/frame/containers/dictionary.h"
#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/server/access/session.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/periods/settings.h"
#include "qdclgl/server/records/account_kind.h"
#include "qdclgl/server/reports/balancing_vouchers.h"
#include "qdclgl/server/reports/kind_sums.h"
#include "qdclgl/server/reports/voucher_marks.h"

namespace qdclgl::server {

QD_DEFINE_MEMBERS(YearEndInfo)

namespace {

using Standing = BalancingVouchers::Standing;

void RequireEquity(const KindChart& chart, Long account) {
  const std::size_t place = chart.PlaceOf(account);
  if (place == KindChart::kNone) {
    Refuse(refusal::kBadReference,
           "There is no account with the id " + std::to_string(account) + ".");
  }
  const KindChart::Account& found = chart.accounts()[place];
  if (found.kind == account_kind::kEquity) return;
  Refuse(refusal::kBadReference, "Account " + found.number + " (" + found.name + ") is of " +
                                     (found.kind.empty() ? "no kind" : "kind " + found.kind) +
                                     "; a year's result is carried to an account of kind equity.");
}

// What is made and not posted would be carried twice.
void RequireCarriedPosted(Database& db, Long year) {
  const auto open = db.QueryValue<Long>(
      "SELECT FVoucherID FROM t_Voucher WHERE " + std::string(kWhereCarriesResult) +
          " AND FYear = ? AND FPosted = 0 AND FDeleted = 0 ORDER BY FVoucherID LIMIT 1",
      year);
  if (!open) return;
  Refuse(refusal::kNotAllPosted, "The voucher with the id " + std::to_string(*open) +
                                     " carries the result of " + std::to_string(year) +
                                     " and is not posted; post or delete it.");
}

// The items of a combination as the details of a line.
Ref<Vector> DetailsOf(Database& db, Long combination) {
  auto details = Make<Vector>();
  for (const auto& [item_class, item] : db.Query<Long, Long>(
           "SELECT FItemClassID, FItemID FROM t_ItemCombinationItem WHERE FCombinationID = ?"
           " ORDER BY FItemClassID",
           combination)) {
    auto detail = Make<Dictionary>();
    detail->Put("FItemClassID", item_class);
    detail->Put("FItemID", item);
    details->Append(Variant(detail));
  }
  return details;
}

struct StandingPlace {
  std::size_t account;
  Long currency, combination;
  Standing standing;
};

// What stands on accounts of income and expense when a year has ended, in the order of the chart.
std::vector<StandingPlace> ResultsOf(Database& db, const KindChart& chart, Long year) {
  const auto sums = [](const char* table, const char* combination, const char* asks) {
    return "SELECT b.FAccountID AS FAccountID, b.FCurrencyID AS FCurrencyID, " +
           std::string(combination) +
           " AS FCombinationID, CAST(SUM(b.FDebit - b.FCredit) AS BIGINT) AS FAmount,"
           " CAST(SUM(b.FDebitFor - b.FCreditFor) AS BIGINT) AS FAmountFor,"
           " CAST(SUM(b.FDebitQty - b.FCreditQty) AS BIGINT) AS FQuantity FROM " +
           table + " b WHERE b.FYear <= ? AND " + asks +
           " (SELECT 1 FROM t_AccountItem i WHERE i.FAccountID = b.FAccountID)"
           " GROUP BY 1, 2, 3";
  };
  std::vector<StandingPlace> places;
  for (const auto& [account, currency, combination, amount, amount_for, quantity] :
       db.Query<Long, Long, Long, Units, Units, std::int64_t>(
           "SELECT * FROM (" + sums("t_Balance", "0", "NOT EXISTS") + " UNION ALL " +
               sums("t_ItemBalance", "b.FCombinationID", "EXISTS") +
               ") AS standing WHERE FAmount <> 0 OR FAmountFor <> 0 OR FQuantity <> 0",
           year, year)) {
    const std::size_t place = chart.PlaceOf(account);
    const std::string& kind = chart.accounts()[place].kind;
    if (kind != account_kind::kIncome && kind != account_kind::kExpense) continue;
    places.push_back({place,
                      currency,
                      combination,
                      {account, currency, combination == 0 ? nullptr : DetailsOf(db, combination),
                       amount, amount_for, quantity}});
  }
  std::ranges::sort(places, {}, [](const StandingPlace& place) {
    return std::tuple(place.account, place.currency, place.combination);
  });
  return places;
}

}  // namespace

Ref<Recordset> YearEndInfo::GetResultVouchers(std::string_view PropsString, Long nYear,
                                              Long AccountID) {
  const Caller caller = Enter(PropsString, RightTo<YearEndInfo>("GetResultVouchers"));
  Database& db = caller.db;
  Transaction transaction(db, Transaction::Kind::kRead);
  const Calendar calendar = LedgerRules::Of(db).calendar;
  const DateTime last_day = calendar.SpanOf({nYear, calendar.period_count()}).end;
  const KindChart chart(db);
  RequireEquity(chart, AccountID);
  RequireCarriedPosted(db, nYear);
  BalancingVouchers vouchers(last_day, kCarriesResult, "Result of " + std::to_string(nYear),
                             AccountID);
  for (const StandingPlace& place : ResultsOf(db, chart, nYear)) vouchers.Take(place.standing);
  transaction.Commit();
  return vouchers.Finish();
}

}  // namespace qdclgl::server
