#include "qdclgl/server/reports/revaluation.h"

#include <map>
#include <string>
#include <vector>

#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/periods/settings.h"
#include "qdclgl/server/records/account_kind.h"
#include "qdclgl/server/records/currency.h"
#include "qdclgl/server/records/exchange_rate.h"
#include "qdclgl/server/records/voucher_names.h"
#include "qdclgl/server/reports/standings.h"
#include "qdclgl/server/reports/voucher_marks.h"
#include "qdclgl/server/vouchers/exchange.h"

namespace qdclgl::server {

QD_DEFINE_MEMBERS(RevaluationInfo)

namespace {

struct Rate {
  std::string currency;  // its number
  RateOfDay of_day;
  Exchange exchange;
};

struct Revalued {
  StandingPlace place;
  const Rate* rate;
  Units worth;

  Units Difference() const { return worth - place.standing.amount; }
};

// The balances in other currencies at the end of a period, each at the rate of its last day.
class Revaluation {
 public:
  Revaluation(Database& db, AccountingPeriod period)
      : db_(db), last_day_(LedgerRules::Of(db).calendar.SpanOf(period).end), chart_(db) {
    for (StandingPlace& place : StandingsOf(db, chart_, period, IsRevalued)) {
      if (place.standing.amount == 0 && place.standing.amount_for == 0) continue;
      const Rate& rate = RateOf(place.currency);
      const Units worth =
          WorthOf(Currency::FromUnits(place.standing.amount_for), rate.of_day.rate, rate.exchange)
              .units();
      rows_.push_back({std::move(place), &rate, worth});
    }
  }

  DateTime last_day() const { return last_day_; }
  const std::vector<Revalued>& rows() const { return rows_; }
  const KindChart::Account& AccountOf(const Revalued& row) const {
    return chart_.accounts()[row.place.account];
  }

 private:
  // What comes in and goes out, and what the owners have, keeps the worth that it had.
  static bool IsRevalued(std::string_view kind, Long currency) {
    return currency != kBaseCurrency && kind != account_kind::kIncome &&
           kind != account_kind::kExpense && kind != account_kind::kEquity;
  }

  const Rate& RateOf(Long currency) {
    const auto known = rates_.find(currency);
    if (known != rates_.end()) return known->second;
    const auto [number, sign] =
        db_.QueryRow<std::string, std::string>(
               "SELECT FNumber, FOperator FROM t_Currency WHERE FCurrencyID = ?", currency)
            .value();
    const auto scale =
        db_.QueryValue<Long>("SELECT FScale FROM t_Currency WHERE FCurrencyID = ?", kBaseCurrency);
    const std::optional<RateOfDay> rate = RateOn(db_, currency, last_day_);
    if (!rate) {
      Refuse(refusal::kNotFound, "There is no exchange rate of " + number + " for " +
                                     last_day_.ToText() + " or before.");
    }
    return rates_[currency] = {number, *rate, {sign == "/", scale.value_or(2)}};
  }

  Database& db_;
  DateTime last_day_;
  KindChart chart_;
  std::map<Long, Rate> rates_;
  std::vector<Revalued> rows_;
};

std::string ItemsOf(Database& db, Long combination) {
  std::string numbers;
  for (const auto& [number] : db.Query<std::string>(
           "SELECT i.FNumber FROM t_ItemCombinationItem c JOIN t_Item i ON i.FItemID = c.FItemID"
           " WHERE c.FCombinationID = ? ORDER BY c.FItemClassID",
           combination)) {
    numbers += (numbers.empty() ? "" : ", ") + number;
  }
  return numbers;
}

void RequireNotRevalued(Database& db, AccountingPeriod period) {
  const auto done = db.QueryRow<Long, std::string>(
      "SELECT v.FVoucherID, " + std::string(kVoucherName) + std::string(kFromVouchers) +
          " WHERE v." + std::string(kWhereRevalues) +
          " AND v.FYear = ? AND v.FPeriod = ? AND v.FDeleted = 0 ORDER BY v.FVoucherID LIMIT 1",
      period.year, period.period);
  if (!done) return;
  const auto& [id, name] = *done;
  Refuse(refusal::kWrongStep, "Voucher " + name + " (id " + std::to_string(id) + ") revalues " +
                                  period.ToText() +
                                  " already; take it out of the books to do it again.");
}

}  // namespace

Ref<Recordset> RevaluationInfo::GetDifferences(std::string_view PropsString, Long nYear,
                                               Long Period) {
  const Caller caller = Enter(PropsString, kRead);
  Transaction transaction(caller.db, Transaction::Kind::kRead);
  const Revaluation revaluation(caller.db, {nYear, Period});
  const Ref<Recordset> rows = Recordset::Create(
      {"FAccountID", "FAccountNumber", "FAccountName", "FItems", "FCurrencyNumber", "FAmountFor",
       "FAmount", "FRateDate", "FExchangeRate", "FWorth", "FDifference"});
  for (const Revalued& row : revaluation.rows()) {
    const KindChart::Account& account = revaluation.AccountOf(row);
    const BalancingVouchers::Standing& standing = row.place.standing;
    rows->AddRow({account.id, account.number, account.name,
                  ItemsOf(caller.db, row.place.combination), row.rate->currency,
                  Currency::FromUnits(standing.amount_for), Currency::FromUnits(standing.amount),
                  DateFrom(row.rate->of_day.day), row.rate->of_day.rate,
                  Currency::FromUnits(row.worth), Currency::FromUnits(row.Difference())});
  }
  transaction.Commit();
  return rows;
}

Ref<Recordset> RevaluationInfo::GetRevaluationVouchers(std::string_view PropsString, Long nYear,
                                                       Long Period, Long AccountID) {
  const Caller caller = Enter(PropsString, kRead);
  Transaction transaction(caller.db, Transaction::Kind::kRead);
  const AccountingPeriod period{nYear, Period};
  const Revaluation revaluation(caller.db, period);
  RequireNotRevalued(caller.db, period);
  BalancingVouchers vouchers(revaluation.last_day(), kRevalues, "Revaluation of " + period.ToText(),
                             AccountID);
  for (const Revalued& row : revaluation.rows()) {
    if (row.Difference() == 0) continue;
    // What is too little goes there by taking away its opposite.
    BalancingVouchers::Standing excess = row.place.standing;
    excess.amount = -row.Difference();
    excess.amount_for = excess.quantity = 0;
    vouchers.Take(excess);
  }
  transaction.Commit();
  return vouchers.Finish();
}

}  // namespace qdclgl::server
