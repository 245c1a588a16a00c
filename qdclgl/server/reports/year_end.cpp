#include "qdclgl/server/reports/year_end.h"

#include <string>

#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/server/access/session.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/periods/settings.h"
#include "qdclgl/server/records/account_kind.h"
#include "qdclgl/server/reports/balancing_vouchers.h"
#include "qdclgl/server/reports/kind_sums.h"
#include "qdclgl/server/reports/standings.h"
#include "qdclgl/server/reports/voucher_marks.h"

namespace qdclgl::server {

QD_DEFINE_MEMBERS(YearEndInfo)

namespace {

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

bool IsOfResult(std::string_view kind, Long) {
  return kind == account_kind::kIncome || kind == account_kind::kExpense;
}

}  // namespace

Ref<Recordset> YearEndInfo::GetResultVouchers(std::string_view PropsString, Long nYear,
                                              Long AccountID) {
  const Caller caller = Enter(PropsString, RightTo<YearEndInfo>("GetResultVouchers"));
  Database& db = caller.db;
  Transaction transaction(db, Transaction::Kind::kRead);
  const Calendar calendar = LedgerRules::Of(db).calendar;
  const AccountingPeriod last{nYear, calendar.period_count()};
  const DateTime last_day = calendar.SpanOf(last).end;
  const KindChart chart(db);
  RequireEquity(chart, AccountID);
  RequireCarriedPosted(db, nYear);
  BalancingVouchers vouchers(last_day, kCarriesResult, "Result of " + std::to_string(nYear),
                             AccountID);
  for (const StandingPlace& place : StandingsOf(db, chart, last, IsOfResult)) {
    vouchers.Take(place.standing);
  }
  transaction.Commit();
  return vouchers.Finish();
}

}  // namespace qdclgl::server
