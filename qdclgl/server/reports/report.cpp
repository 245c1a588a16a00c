#include "qdclgl/server/reports/report.h"

#include <cmath>

#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/server/access/session.h"
#include "qdclgl/server/periods/settings.h"
#include "qdclgl/server/records/account_kind.h"
#include "qdclgl/server/reports/budget.h"
#include "qdclgl/server/reports/kind_sums.h"
#include "qdclgl/server/reports/spans.h"
#include "qdclgl/server/reports/voucher_marks.h"

namespace qdclgl::server {

QD_DEFINE_MEMBERS(ReportInfo)

namespace {

using namespace account_kind;
using Figures = std::vector<Units>;

constexpr std::string_view kWithoutKind = "";

Figures Less(Figures left, const Figures& right) {
  for (std::size_t i = 0; i < left.size(); ++i) left[i] -= right[i];
  return left;
}
Figures Plus(Figures left, const Figures& right) {
  for (std::size_t i = 0; i < left.size(); ++i) left[i] += right[i];
  return left;
}
Figures Negated(Figures figures) {
  for (Units& units : figures) units = -units;
  return figures;
}

// Takes (account's place, period, units) for what is posted up to a period, period by period.
template <class Take>
void EachMovement(Database& db, const KindChart& chart, AccountingPeriod first,
                  AccountingPeriod last, Take take) {
  for (const auto& [account, year, period, units] : db.Query<Long, Long, Long, Units>(
           "SELECT FAccountID, FYear, FPeriod, CAST(SUM(FDebit - FCredit) AS BIGINT)"
           " FROM t_Balance WHERE FYear BETWEEN ? AND ? GROUP BY FAccountID, FYear, FPeriod",
           first.year, last.year)) {
    take(chart.PlaceOf(account), AccountingPeriod{year, period}, units);
  }
}

// Likewise for what the vouchers have posted that carry results.
template <class Take>
void EachCarried(Database& db, const KindChart& chart, AccountingPeriod first,
                 AccountingPeriod last, Take take) {
  for (const auto& [account, year, period, units] : db.Query<Long, Long, Long, Units>(
           "SELECT e.FAccountID, v.FYear, v.FPeriod,"
           " CAST(SUM(e.FAmount * (2 * e.FDC - 1)) AS BIGINT)"
           " FROM t_Voucher v JOIN t_VoucherEntry e ON e.FVoucherID = v.FVoucherID"
           " WHERE v." +
               std::string(kWhereCarriesResult) +
               " AND v.FPosted = 1 AND v.FYear BETWEEN ? AND ?"
               " GROUP BY e.FAccountID, v.FYear, v.FPeriod",
           first.year, last.year)) {
    take(chart.PlaceOf(account), AccountingPeriod{year, period}, units);
  }
}

// What a statement has beside the amount of each span.
enum class Beside { kNothing, kBudget };

class Statement {
 public:
  Statement(const KindChart& chart, const std::vector<PeriodSpan>& spans,
            Beside beside = Beside::kNothing)
      : spans_(spans),
        has_budget_(beside == Beside::kBudget),
        sums_(chart, spans.size() * (has_budget_ ? 2 : 1)) {
    for (const char* name : {"FRow", "FKind", "FAccountID", "FAccountNumber", "FAccountName",
                             "FLevel", "FDetail", "FFrom", "FTo", "FAmount", "FPercent"}) {
      rows_->AppendField(name);
    }
    if (has_budget_) {
      for (const char* name : {"FBudget", "FDifference", "FBudgetPercent"}) {
        rows_->AppendField(name);
      }
    }
    rows_->Open();
  }

  // The amounts of all spans and, where there are budgets, behind them those.
  KindSums& sums() { return sums_; }
  // What shares are parts of; one of zero has none.
  void ShareOf(Figures whole) { whole_ = std::move(whole); }

  // The total of a kind, with the sign that a reader expects.
  Figures TotalOf(std::string_view kind) {
    const Figures& total = sums_.Total(kind);
    return IsDebitKind(kind) ? total : Negated(total);
  }
  void PutAccounts(std::string_view kind) {
    sums_.Each(kind, [&](const KindChart::Account& account, const Figures& figures) {
      Put({report_row::kAccount, kind, account.id, account.number, account.name, account.level,
           account.is_detail},
          IsDebitKind(kind) ? figures : Negated(figures));
    });
  }
  void PutSum(std::string_view row, std::string_view kind, const Figures& figures) {
    Put({row, kind, Long{0}, "", "", Long{0}, false}, figures);
  }

  Ref<Recordset> rows() const { return rows_; }

 private:
  void Put(const std::vector<Variant>& head, const Figures& figures) {
    for (std::size_t i = 0; i < spans_.size(); ++i) {
      std::vector<Variant> row = head;
      row.emplace_back(spans_[i].first.ToText());
      row.emplace_back(spans_[i].last.ToText());
      row.emplace_back(Currency::FromUnits(figures[i]));
      row.emplace_back(Percent(figures[i], whole_[i]));
      if (has_budget_) {
        const Units budget = figures[spans_.size() + i];
        row.emplace_back(Currency::FromUnits(budget));
        row.emplace_back(Currency::FromUnits(figures[i] - budget));
        row.emplace_back(Percent(figures[i], budget));
      }
      rows_->AddRow(std::move(row));
    }
  }

  // With 4 decimals.
  static double Percent(Units part, Units whole) {
    if (whole == 0) return 0;
    const double percent = 100.0 * static_cast<double>(part) / static_cast<double>(whole);
    return std::round(percent * 1e4) / 1e4;
  }

  const std::vector<PeriodSpan>& spans_;
  bool has_budget_;
  KindSums sums_;
  Figures whole_;
  Ref<Recordset> rows_ = Make<Recordset>();
};

// From the first to the last period that any of the spans has.
PeriodSpan Whole(const std::vector<PeriodSpan>& spans) {
  PeriodSpan whole = spans.front();
  for (const PeriodSpan& span : spans) {
    whole.first = std::min(whole.first, span.first);
    whole.last = std::max(whole.last, span.last);
  }
  return whole;
}

Ref<Recordset> Income(Database& db, const Calendar& calendar, const std::vector<PeriodSpan>& spans,
                      Beside beside) {
  const KindChart chart(db);
  Statement statement(chart, spans, beside);
  const auto add = [&](std::size_t account, AccountingPeriod at, Units units) {
    for (std::size_t i = 0; i < spans.size(); ++i) {
      if (spans[i].first <= at && at <= spans[i].last) statement.sums().Add(account, i, units);
    }
  };
  const auto [first, last] = Whole(spans);
  EachMovement(db, chart, first, last, add);
  EachCarried(db, chart, first, last, [&](std::size_t account, AccountingPeriod at, Units units) {
    add(account, at, -units);
  });
  if (beside == Beside::kBudget) {
    AddBudgets(db, chart, calendar, spans, statement.sums(), spans.size());
  }
  const Figures income = statement.TotalOf(kIncome), expense = statement.TotalOf(kExpense);
  statement.ShareOf(income);
  statement.PutAccounts(kIncome);
  statement.PutSum(report_row::kTotal, kIncome, income);
  statement.PutAccounts(kExpense);
  statement.PutSum(report_row::kTotal, kExpense, expense);
  statement.PutSum(report_row::kResult, "", Less(income, expense));
  statement.PutAccounts(kWithoutKind);
  return statement.rows();
}

Ref<Recordset> Position(Database& db, const std::vector<PeriodSpan>& spans) {
  const KindChart chart(db);
  Statement statement(chart, spans);
  Figures result(spans.size()), earlier(spans.size());
  EachMovement(db, chart, {INT32_MIN, 0}, Whole(spans).last,
               [&](std::size_t account, AccountingPeriod at, Units units) {
                 const std::string& kind = chart.accounts()[account].kind;
                 const bool is_result = kind == kIncome || kind == kExpense;
                 for (std::size_t i = 0; i < spans.size(); ++i) {
                   if (spans[i].last < at) continue;
                   if (!is_result) statement.sums().Add(account, i, units);
                   else (at.year == spans[i].last.year ? result : earlier)[i] -= units;
                 }
               });
  const Figures assets = statement.TotalOf(kAsset), liabilities = statement.TotalOf(kLiability);
  const Figures equity = Plus(statement.TotalOf(kEquity), Plus(result, earlier));
  const Figures sources = Plus(liabilities, equity);
  statement.ShareOf(assets);
  statement.PutAccounts(kAsset);
  statement.PutSum(report_row::kTotal, kAsset, assets);
  statement.PutAccounts(kLiability);
  statement.PutSum(report_row::kTotal, kLiability, liabilities);
  statement.PutAccounts(kEquity);
  statement.PutSum(report_row::kEarlier, kEquity, earlier);
  statement.PutSum(report_row::kResult, kEquity, result);
  statement.PutSum(report_row::kTotal, kEquity, equity);
  statement.PutSum(report_row::kSources, "", sources);
  statement.PutAccounts(kWithoutKind);
  statement.PutSum(report_row::kDifference, "", Less(assets, sources));
  return statement.rows();
}

// `make(database, calendar, spans)` makes the statement.
template <class MakeStatement>
Ref<Recordset> Made(std::string_view props, const String& spans, MakeStatement make) {
  const Caller caller = Enter(props, ReportInfo::kRead);
  Transaction transaction(caller.db, Transaction::Kind::kRead);
  const Calendar calendar = LedgerRules::Of(caller.db).calendar;
  Ref<Recordset> rows = make(caller.db, calendar, SpansFrom(spans, calendar));
  transaction.Commit();
  return rows;
}

}  // namespace

Ref<Recordset> ReportInfo::GetIncome(std::string_view PropsString, const String& Spans) {
  return Made(PropsString, Spans, [](Database& db, const Calendar& calendar, const auto& spans) {
    return Income(db, calendar, spans, Beside::kNothing);
  });
}

Ref<Recordset> ReportInfo::GetIncomeWithBudget(std::string_view PropsString, const String& Spans) {
  return Made(PropsString, Spans, [](Database& db, const Calendar& calendar, const auto& spans) {
    return Income(db, calendar, spans, Beside::kBudget);
  });
}

Ref<Recordset> ReportInfo::GetPosition(std::string_view PropsString, const String& Spans) {
  return Made(PropsString, Spans,
              [](Database& db, const Calendar&, const auto& spans) { return Position(db, spans); });
}

}  // namespace qdclgl::server
