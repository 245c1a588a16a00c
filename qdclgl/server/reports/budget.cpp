// Budgets: what is meant to come in or to go out on an account. They add up.
#include "qdclgl/server/reports/budget.h"

#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/periods/settings.h"
#include "qdclgl/server/records/account_kind.h"
#include "qdclgl/server/records/record_save.h"
#include "qdclgl/server/vouchers/line_size.h"

namespace qdclgl::server {

const MasterData& Accounts();

namespace {

// All budgets together add up, so that those of whatever accounts and periods of a year do.
void RequireSum(RecordSave& save) {
  constexpr Units kMost = INT64_MAX / 2;
  const Units amount = save.record().Value("FAmount").As<Currency>().units();
  const auto others = save.db().QueryValue<Units>(
      "SELECT COALESCE(SUM(ABS(FAmount)), 0) FROM t_Budget WHERE FBudgetID <> ?", save.id());
  if (amount > kMost || amount < -kMost || (amount < 0 ? -amount : amount) > kMost - *others) {
    save.Refuse(refusal::kTooLarge, "with it, all budgets would be too large to add up.");
  }
}

void Check(RecordSave& save) {
  CheckKey(save);
  const Long year = save.Number("FYear"), period = save.Number("FPeriod");
  const Calendar calendar = LedgerRules::Of(save.db()).calendar;
  if (year < 0 || period < 0 || period > calendar.period_count()) {
    save.Refuse(refusal::kBadValue,
                "FYear is 0 (each year) or a year, FPeriod 0 (all periods) to " +
                    std::to_string(calendar.period_count()) + ".");
  }
  RequireSum(save);
}

// Ten-thousandths in a unit of the base currency's last decimal.
Units SmallestUnit(Database& db) {
  constexpr Long kDecimals = 4;
  Units unit = 1;
  const auto scale = db.QueryValue<Long>("SELECT FScale FROM t_Currency WHERE FCurrencyID = 1");
  for (Long decimals = scale.value_or(kDecimals); decimals < kDecimals; ++decimals) unit *= 10;
  return unit;
}

struct Budget {
  Long year, period;
  Units amount;

  // What of it falls on a period.
  Units In(AccountingPeriod at, Long periods, Units unit) const {
    if (year != 0 && year != at.year) return 0;
    if (period != 0) return period == at.period ? amount : 0;
    return ShareOf(amount, periods, at.period, unit);
  }
};

}  // namespace

Units ShareOf(Units amount, Long count, Long number, Units unit) {
  const Units whole = amount / unit, rest = whole % count;
  const Units more = number <= (rest < 0 ? -rest : rest) ? (rest < 0 ? -1 : 1) : 0;
  return (whole / count + more) * unit + (number == count ? amount % unit : 0);
}

void AddBudgets(Database& db, const KindChart& chart, const Calendar& calendar,
                const std::vector<PeriodSpan>& spans, KindSums& sums, std::size_t first) {
  const Units unit = SmallestUnit(db);
  for (const auto& [account, year, period, amount] : db.Query<Long, Long, Long, Units>(
           "SELECT FAccountID, FYear, FPeriod, FAmount FROM t_Budget ORDER BY FBudgetID")) {
    const Budget budget{year, period, amount};
    const std::size_t place = chart.PlaceOf(account);
    const bool is_credit = !IsDebitKind(chart.accounts()[place].kind);
    for (std::size_t i = 0; i < spans.size(); ++i) {
      Units units = 0;
      for (AccountingPeriod at = spans[i].first; at <= spans[i].last; at = calendar.After(at)) {
        AddChecked(units, budget.In(at, calendar.period_count(), unit), "budgets");
      }
      if (units != 0) sums.Add(place, first + i, is_credit ? -units : units);
    }
  }
}

const MasterData& Budgets() {
  using enum ColumnType;
  static const MasterData kKind({
      .component = "QDSVGLBudget.Budget",
      .noun = "budget",
      .nouns = "budgets",
      .list = {"budgets", "Lists the budgets of accounts",
               "FNumber FAccountNumber FAccountName FYear FPeriod FAmount"},
      .table = "t_Budget",
      .id = "FBudgetID",
      .key = {.column = "FNumber", .ignores_case = true},
      .columns = {{{"FNumber", kText}},
                  {{"FName", kText}},
                  {.column = {"FAccountID", kLong},
                   .refers = {.kind = Accounts, .is_required = true}},
                  {{"FAccountNumber", kText}, Keeper::kJoined},
                  {{"FAccountName", kText}, Keeper::kJoined},
                  {{"FYear", kLong}},
                  {{"FPeriod", kLong}},
                  {{"FAmount", kCurrency}}},
      .query = "SELECT b.*, a.FNumber AS FAccountNumber, a.FName AS FAccountName"
               " FROM t_Budget b JOIN t_Account a ON a.FAccountID = b.FAccountID",
      .order = "FNumber",
      .check = Check,
      .errors = "Required, NumberTaken, BadReference, BadValue, TooLarge",
  });
  return kKind;
}

}  // namespace qdclgl::server
