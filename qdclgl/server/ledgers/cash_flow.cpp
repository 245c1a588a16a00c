#include "qdclgl/server/ledgers/cash_flow.h"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>
#include <vector>

#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/server/access/session.h"
#include "qdclgl/server/db/columns.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/ledgers/account_lines.h"
#include "qdclgl/server/ledgers/accounts_below.h"
#include "qdclgl/server/ledgers/days.h"
#include "qdclgl/server/ledgers/ledger_sheet.h"

namespace qdclgl::server {

QD_DEFINE_MEMBERS(CashFlowInfo)

namespace {

constexpr std::string_view kItem = "Item", kAccount = "Account";

constexpr std::string_view kCash =
    "WITH cash AS (SELECT FAccountID FROM t_Account WHERE FDetail = 1"
    " AND (FIsCash = 1 OR FIsBank = 1 OR FIsCashFlow = 1))";

// Where money comes from or goes to: a cash flow item, or else accounts by their numbers.
struct Purpose {
  Long item = 0;
  std::string number = {}, name = {};

  friend bool operator<(const Purpose& left, const Purpose& right) {
    // Items come first.
    return std::tuple(left.item == 0, left.item, left.number) <
           std::tuple(right.item == 0, right.item, right.number);
  }
};

struct Flow {
  Units in = 0, out = 0, before = 0;

  Units Net() const { return in - out; }
};

using Flows = std::map<Purpose, Flow>;

struct CashLine {
  bool is_cash;
  Long item;
  std::string number = {}, name = {};
  Units amount;  // debit minus credit
};

// What a voucher moves: each of its lines on other accounts stands for so much money the other way.
// Cash lines that have an item stand for themselves; then the others are told as one.
template <class Take>
void EachFlow(const std::vector<CashLine>& lines, Take take) {
  Units rest = 0;  // on cash lines without an item
  bool has_items = false;
  for (const CashLine& line : lines) {
    if (!line.is_cash) continue;
    if (line.item == 0) rest += line.amount;
    else take(Purpose{.item = line.item}, line.amount);
    has_items = has_items || line.item != 0;
  }
  if (!has_items) {
    for (const CashLine& line : lines) {
      if (line.is_cash) continue;
      const bool is_of_item = line.item != 0;
      take(is_of_item ? Purpose{.item = line.item} : Purpose{0, line.number, line.name},
           -line.amount);
    }
    return;
  }
  if (rest == 0) return;
  std::set<std::pair<std::string, std::string>> others;
  for (const CashLine& line : lines) {
    if (!line.is_cash) others.emplace(line.number, line.name);
  }
  Purpose purpose;
  for (const auto& [number, name] : others) {
    purpose.number += (purpose.number.empty() ? "" : ",") + number;
    purpose.name += (purpose.name.empty() ? "" : ", ") + name;
  }
  take(purpose, rest);
}

template <class Take>
void EachFlowBetween(Database& db, DateTime from, DateTime to, Take take) {
  const std::string sql =
      std::string(kCash) + ", moving AS (SELECT DISTINCT p.FVoucherID FROM cash" +
      Reached(db, "t_PostedLine", "p",
              "p.FAccountID = cash.FAccountID AND p.FDate >= ? AND p.FDate < ?") +
      ") SELECT e.FVoucherID, CASE WHEN e.FAccountID IN (SELECT FAccountID FROM cash) THEN 1 ELSE "
      "0 END, e.FCashFlowItem, a.FNumber, a.FName, (2 * e.FDC - 1) * e.FAmount FROM moving" +
      Reached(db, "t_VoucherEntry", "e", "e.FVoucherID = moving.FVoucherID") +
      Reached(db, "t_Account", "a", "a.FAccountID = e.FAccountID") +
      " ORDER BY e.FVoucherID, e.FEntryID";
  std::vector<CashLine> lines;
  Long voucher = 0;
  for (auto& [id, is_cash, item, number, name, amount] :
       db.Query<Long, bool, Long, std::string, std::string, Units>(
           sql, DateText(from), DateText(DateTime(to.days + 1)))) {
    if (id != voucher) {
      EachFlow(lines, take);
      lines.clear();
    }
    voucher = id;
    lines.push_back({is_cash, item, std::move(number), std::move(name), amount});
  }
  EachFlow(lines, take);
}

// What stands on the cash accounts when a day begins: the kept balances of the periods before, and
// the lines of its own period.
Units CashBefore(Database& db, const Calendar& calendar, DateTime day) {
  const AccountingPeriod period = calendar.PeriodOf(day);
  const Units kept =
      db.QueryValue<Units>(std::string(kCash) +
                               " SELECT CAST(COALESCE(SUM(b.FDebit - b.FCredit), 0) AS BIGINT)"
                               " FROM cash" +
                               Reached(db, "t_Balance", "b", "b.FAccountID = cash.FAccountID") +
                               " WHERE b.FYear * 1000 + b.FPeriod < ?",
                           std::int64_t{period.year} * 1000 + period.period)
          .value_or(0);
  const Units lines =
      db.QueryValue<Units>(
            std::string(kCash) +
                " SELECT CAST(COALESCE(SUM((2 * e.FDC - 1) * e.FAmount), 0) AS BIGINT) FROM cash" +
                Reached(db, "t_PostedLine", "p",
                        "p.FAccountID = cash.FAccountID AND p.FDate >= ? AND p.FDate < ?") +
                Reached(db, "t_VoucherEntry", "e",
                        "e.FVoucherID = p.FVoucherID AND e.FEntryID = p.FEntryID"),
            DateText(calendar.SpanOf(period).start), DateText(day))
          .value_or(0);
  return kept + lines;
}

// The same day a year before; the 29th of February is the 28th then.
DateTime YearBefore(DateTime day) {
  const DateTime::Parts parts = day.ToParts();
  const bool is_leap_day = parts.month == 2 && parts.day == 29;
  return DateTime::FromYmd(parts.year - 1, parts.month, is_leap_day ? 28 : parts.day);
}

Ref<Recordset> RowsOf(const Flows& flows, const Flow& opening, const Flow& closing) {
  auto rows = Recordset::Create({"FRow", "FCashFlowItem", "FAccountNumber", "FAccountName",
                                 "FInflow", "FOutflow", "FNet", "FNetBefore"});
  const auto put = [&](std::string_view what, const Purpose& purpose, const Flow& flow) {
    const auto amount = [](Units units) { return Variant(Currency::FromUnits(units)); };
    rows->AddRow({Variant(what), Variant(purpose.item), Variant(purpose.number),
                  Variant(purpose.name), amount(flow.in), amount(flow.out), amount(flow.Net()),
                  amount(flow.before)});
  };
  put(sheet_row::kOpening, {}, opening);
  for (const auto& [purpose, flow] : flows) {
    put(purpose.item != 0 ? kItem : kAccount, purpose, flow);
  }
  put(sheet_row::kClosing, {}, closing);
  return rows;
}

}  // namespace

Ref<Recordset> CashFlowInfo::GetCashFlow(std::string_view PropsString, DateTime DateFrom,
                                         DateTime DateTo, Boolean WithYearBefore) {
  const Caller caller = Enter(PropsString, kRead);
  Transaction transaction(caller.db, Transaction::Kind::kRead);
  Database& db = caller.db;
  if (!db.QueryValue<Long>(std::string(kCash) + " SELECT FAccountID FROM cash LIMIT 1")) {
    Refuse(refusal::kRequired,
           "No account is a cash account: set FIsCash or FIsBank of those that are.");
  }
  const Days days = Days::Of(db, DateFrom, DateTo);
  Flows flows;
  Flow opening, closing;
  opening.in = CashBefore(db, days.calendar, days.from);
  closing.in = opening.in;
  EachFlowBetween(db, days.from, days.to, [&](const Purpose& purpose, Units amount) {
    Flow& flow = flows[purpose];
    (amount > 0 ? flow.in : flow.out) += amount > 0 ? amount : -amount;
    closing.in += amount;
  });
  if (WithYearBefore) {
    opening.before = CashBefore(db, days.calendar, YearBefore(days.from));
    closing.before = opening.before;
    EachFlowBetween(db, YearBefore(days.from), YearBefore(days.to),
                    [&](const Purpose& purpose, Units amount) {
                      flows[purpose].before += amount;
                      closing.before += amount;
                    });
  }
  Ref<Recordset> rows = RowsOf(flows, opening, closing);
  transaction.Commit();
  return rows;
}

}  // namespace qdclgl::server
