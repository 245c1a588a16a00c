#include "qdclgl/server/ledgers/ledger_sheet.h"

#include <algorithm>
#include <tuple>
#include <unordered_map>
#include <unordered_set>

#include "qdclgl/frame/containers/vector.h"
#include "qdclgl/server/db/columns.h"
#include "qdclgl/server/ledgers/accounts_below.h"
#include "qdclgl/server/ledgers/days.h"
#include "qdclgl/server/records/currency.h"

namespace qdclgl::server {

namespace {

using Units = std::int64_t;

std::vector<Long> AccountsBelow(Database& db, Long account) {
  std::vector<Long> accounts;
  for (const auto& [id] :
       db.Query<Long>(std::string(kBelow) + " SELECT FAccountID FROM below", account)) {
    accounts.push_back(id);
  }
  return accounts;
}

// ---- What is asked for ----

// Which columns and sub-columns a line counts in.
class Layout {
 public:
  Layout(Database& db, const Dictionary& ledger) {
    for (const Long id : AccountsBelow(db, ledger.Value("FAccountID").As<Long>())) own_.insert(id);
    for (const Ref<Dictionary>& column : RowsUnder(ledger, "_Columns")) {
      const std::size_t place = sides_.size();
      sides_.push_back(column->Value("FDC").As<Long>());
      for (const Long id : AccountsBelow(db, column->Value("FAccountID").As<Long>())) {
        columns_[id].push_back(place);
        if (!own_.contains(id)) counts_others_ = true;
      }
    }
    for (const Ref<Dictionary>& sub : RowsUnder(ledger, "_SubColumns")) {
      currencies_.push_back(sub->Value("FCurrencyID").As<Long>());
    }
  }

  bool IsOwn(Long account) const { return own_.contains(account); }
  // Whether a column counts lines of other accounts than the ledger's.
  bool counts_others() const { return counts_others_; }
  std::size_t column_count() const { return sides_.size(); }
  std::span<const Long> currencies() const { return currencies_; }

  template <class Take>
  void EachColumnOf(Long account, Long side, Take take) const {
    const auto found = columns_.find(account);
    if (found == columns_.end()) return;
    for (const std::size_t column : found->second) {
      if (sides_[column] == side) take(column);
    }
  }

 private:
  std::unordered_set<Long> own_;
  std::unordered_map<Long, std::vector<std::size_t>> columns_;
  std::vector<Long> sides_;
  std::vector<Long> currencies_;
  bool counts_others_ = false;
};

// ---- Amounts ----

// An amount in base currency and in the line's own.
struct Amount {
  Long account = 0, side = 0, currency = 0;
  Units base = 0, own = 0;
};

// What a row of the sheet has in figures.
class Figures {
 public:
  explicit Figures(const Layout& layout)
      : layout_(&layout),
        subs_(layout.currencies().size()),
        columns_(layout.column_count() * (1 + subs_.size())) {}

  // A line of the ledger's own account.
  void AddOwn(const Amount& line) {
    (line.side == 1 ? debit_ : credit_) += line.base;
    EachSub(line, [&](std::size_t sub) {
      (line.side == 1 ? subs_[sub].debit : subs_[sub].credit) += line.own;
    });
    AddToColumns(line);
  }
  void AddToColumns(const Amount& line) {
    layout_->EachColumnOf(line.account, line.side, [&](std::size_t column) {
      const std::size_t first = column * (1 + subs_.size());
      columns_[first] += line.base;
      EachSub(line, [&](std::size_t sub) { columns_[first + 1 + sub] += line.own; });
    });
  }
  void Add(const Figures& other) {
    debit_ += other.debit_;
    credit_ += other.credit_;
    for (std::size_t i = 0; i < subs_.size(); ++i) {
      subs_[i].debit += other.subs_[i].debit;
      subs_[i].credit += other.subs_[i].credit;
    }
    for (std::size_t i = 0; i < columns_.size(); ++i) columns_[i] += other.columns_[i];
  }

  Units movement() const { return debit_ - credit_; }

  // The cells of a row. `rates` are those of a line, by sub-column.
  void AppendTo(std::vector<Variant>& row, Units balance, std::span<const Variant> rates) const {
    const auto amount = [&](Units units) { row.emplace_back(Currency::FromUnits(units)); };
    amount(debit_);
    amount(credit_);
    row.emplace_back(Long{balance > 0 ? 1 : balance < 0 ? -1 : 0});
    amount(balance < 0 ? -balance : balance);
    for (std::size_t i = 0; i < subs_.size(); ++i) {
      amount(subs_[i].debit);
      amount(subs_[i].credit);
      row.push_back(rates.empty() ? Variant() : rates[i]);
    }
    for (const Units column : columns_) amount(column);
  }

 private:
  struct Sub {
    Units debit = 0, credit = 0;
  };

  template <class Take>
  void EachSub(const Amount& line, Take take) const {
    const std::span<const Long> currencies = layout_->currencies();
    for (std::size_t i = 0; i < currencies.size(); ++i) {
      if (currencies[i] == line.currency) take(i);
    }
  }

  const Layout* layout_;
  Units debit_ = 0, credit_ = 0;
  std::vector<Sub> subs_;
  std::vector<Units> columns_;  // each with its sub-columns
};

// ---- Lines ----

// Names and numbers by ids, which many lines share.
using Texts = std::unordered_map<Long, std::string>;

template <class... Values>
Texts TextsOf(Database& db, const std::string& sql, const Values&... values) {
  Texts texts;
  for (auto& [id, text] : db.Query<Long, std::string>(sql, values...)) {
    texts.emplace(id, std::move(text));
  }
  return texts;
}

struct Line {
  Long voucher, entry;
  DateTime date;
  AccountingPeriod period;
  const std::string* group;
  Long number;
  std::string explanation;
  const std::string* account_number;
  double rate;
  Amount amount;

  // By day, group and number.
  bool operator<(const Line& other) const {
    return std::tie(date, *group, period, number, entry) <
           std::tie(other.date, *other.group, other.period, other.number, other.entry);
  }
};

constexpr std::string_view kAmountColumns =
    "e.FAccountID, e.FDC, e.FCurrencyID, e.FAmount,"
    " CASE WHEN e.FCurrencyID = 1 THEN e.FAmount ELSE e.FAmountFor END";
static_assert(kBaseCurrency == 1);

// The posted lines of an account and those below it, of the days between two: line by line from the
// accounts, within the ids that the vouchers of those years have. The databases don't come upon
// this way by themselves. SQLite is told by CROSS JOIN; it gets the places of the lines in the
// order of the vouchers, to read each page once, and sorts them for the sake of a limit. PostgreSQL
// is told by LATERAL, and by OFFSET to leave it at that.
std::string WithLines(const Database& db) {
  return std::string(kBelow) +
         std::string(db.Dialect(", place AS MATERIALIZED (SELECT e.FVoucherID, e.FEntryID"
                                " FROM below CROSS JOIN t_VoucherEntry e"
                                " WHERE e.FAccountID = below.FAccountID"
                                " AND e.FVoucherID BETWEEN ? AND ?"
                                " ORDER BY e.FVoucherID, e.FEntryID LIMIT -1)",
                                ""));
}
std::string FromLines(const Database& db) {
  return std::string(
      db.Dialect(" FROM place CROSS JOIN t_VoucherEntry e CROSS JOIN t_Voucher v"
                 " WHERE e.FVoucherID = place.FVoucherID AND e.FEntryID = place.FEntryID"
                 " AND v.FVoucherID = place.FVoucherID"
                 " AND v.FPosted = 1 AND v.FDate >= ? AND v.FDate < ?",
                 " FROM below"
                 " CROSS JOIN LATERAL (SELECT * FROM t_VoucherEntry"
                 "  WHERE FAccountID = below.FAccountID AND FVoucherID BETWEEN ? AND ? OFFSET 0) e"
                 " CROSS JOIN LATERAL (SELECT * FROM t_Voucher WHERE FVoucherID = e.FVoucherID"
                 "  AND FPosted = 1 AND FDate >= ? AND FDate < ? OFFSET 0) v"));
}

struct Bounds {
  Long account, first_id, last_id;
  std::string first_day, day_behind;

  static Bounds Of(Database& db, Long account, const Days& days) {
    Bounds bounds{account, INT32_MAX, 0, DateText(days.year_start),
                  DateText(DateTime(days.to.days + 1))};
    for (Long year = days.first_year; year <= days.last.year; ++year) {
      // Each of them is one look into an index.
      const auto [first, last] =
          *db.QueryRow<Long, Long>("SELECT COALESCE((SELECT MIN(FVoucherID) FROM t_Voucher"
                                   " WHERE FYear = ?), ?), COALESCE((SELECT MAX(FVoucherID)"
                                   " FROM t_Voucher WHERE FYear = ?), 0)",
                                   year, bounds.first_id, year);
      bounds.first_id = std::min(bounds.first_id, first);
      bounds.last_id = std::max(bounds.last_id, last);
    }
    return bounds;
  }

  template <class... Columns>
  auto Query(Database& db, const std::string& sql) const {
    return db.Query<Columns...>(sql, account, first_id, last_id, first_day, day_behind);
  }
};

// In the order of their days. Groups and accounts are those of the books.
std::vector<Line> LinesOf(Database& db, const Bounds& bounds, const Texts& groups,
                          const Texts& accounts) {
  std::vector<Line> lines;
  for (auto& [voucher, entry, date, year, period, group, number, explanation, rate, account, side,
              currency, base, own] :
       bounds.Query<Long, Long, std::string, Long, Long, Long, Long, std::string, double, Long,
                    Long, Long, Units, Units>(
           db, WithLines(db) +
                   " SELECT v.FVoucherID, e.FEntryID, v.FDate, v.FYear, v.FPeriod, v.FGroupID,"
                   " v.FNumber, e.FExplanation, e.FExchangeRate, " +
                   std::string(kAmountColumns) + FromLines(db))) {
    lines.push_back({voucher,
                     entry,
                     DateFrom(date),
                     {year, period},
                     &groups.at(group),
                     number,
                     std::move(explanation),
                     &accounts.at(account),
                     rate,
                     {account, side, currency, base, own}});
  }
  std::ranges::sort(lines, std::less());
  return lines;
}

// What the vouchers of those lines have on other accounts, by voucher.
std::unordered_map<Long, std::vector<Amount>> OtherLinesOf(Database& db, const Bounds& bounds,
                                                           const Layout& layout) {
  std::unordered_map<Long, std::vector<Amount>> others;
  for (const auto& [voucher, account, side, currency, base, own] :
       bounds.Query<Long, Long, Long, Long, Units, Units>(
           db,
           WithLines(db) + ", shown AS (SELECT DISTINCT v.FVoucherID" + FromLines(db) +
               ") SELECT e.FVoucherID, " + std::string(kAmountColumns) +
               std::string(db.Dialect(" FROM shown CROSS JOIN t_VoucherEntry e"
                                      " WHERE e.FVoucherID = shown.FVoucherID",
                                      " FROM shown CROSS JOIN LATERAL (SELECT * FROM t_VoucherEntry"
                                      "  WHERE FVoucherID = shown.FVoucherID OFFSET 0) e")))) {
    if (!layout.IsOwn(account)) others[voucher].push_back({account, side, currency, base, own});
  }
  return others;
}

// What stands on the account when its first year begins.
Units BalanceBefore(Database& db, Long account, Long year) {
  return db
      .QueryValue<Units>(std::string(kBelow) +
                             " SELECT CAST(COALESCE(SUM(b.FDebit - b.FCredit), 0) AS BIGINT)"
                             " FROM below JOIN t_Balance b ON b.FAccountID = below.FAccountID"
                             " WHERE b.FYear < ?",
                         account, year)
      .value_or(0);
}

// ---- The sheet ----

class Sheet {
 public:
  Sheet(const Layout& layout, const Days& days, Units balance)
      : layout_(layout),
        days_(days),
        balance_(balance),
        period_(layout),
        year_(layout),
        all_(layout) {
    for (const char* name :
         {"FRow", "FDate", "FYear", "FPeriod", "FVoucherID", "FEntryID", "FGroup", "FNumber",
          "FAccountNumber", "FExplanation", "FDebit", "FCredit", "FDC", "FBalance"}) {
      rows_->AppendField(name);
    }
    const std::size_t subs = layout.currencies().size();
    for (std::size_t i = 1; i <= subs; ++i) {
      for (const char* part : {"Debit", "Credit", "Rate"}) {
        rows_->AppendField("FSub" + std::to_string(i) + part);
      }
    }
    for (std::size_t i = 1; i <= layout.column_count(); ++i) {
      const std::string column = "FColumn" + std::to_string(i);
      rows_->AppendField(column);
      for (std::size_t j = 1; j <= subs; ++j) {
        rows_->AppendField(column + "Sub" + std::to_string(j));
      }
    }
    rows_->Open();
    width_ = static_cast<std::size_t>(rows_->FieldCount());
    at_ = {days.first_year, 0};
  }

  // Lines come in the order of their days.
  void Add(const Line& line, const Figures& figures) {
    if (line.date < days_.from) {
      balance_ += figures.movement();
      year_.Add(figures);
      return;
    }
    Open();
    if (line.period != at_) Turn(line.period);
    balance_ += figures.movement();
    for (Figures* sums : {&period_, &year_, &all_}) sums->Add(figures);
    std::vector<Variant> row =
        NewRow(sheet_row::kLine, line.date, line.period, line.voucher, line.entry, *line.group,
               line.number, *line.account_number, line.explanation);
    std::vector<Variant> rates;
    for (const Long currency : layout_.currencies()) {
      rates.push_back(currency == line.amount.currency ? Variant(line.rate) : Variant());
    }
    Put(std::move(row), figures, rates);
  }

  Ref<Recordset> Finish() {
    Open();
    EndPeriod();
    PutSums(sheet_row::kClosing, days_.to, days_.last, all_);
    return rows_;
  }

 private:
  void Open() {
    if (is_open_) return;
    is_open_ = true;
    PutSums(sheet_row::kOpening, days_.from, days_.calendar.PeriodOf(days_.from), all_);
  }

  void Turn(AccountingPeriod period) {
    EndPeriod();
    if (period.year != at_.year) year_ = Figures(layout_);
    at_ = period;
    period_ = Figures(layout_);
    has_lines_ = true;
  }

  void EndPeriod() {
    if (!has_lines_) return;
    const DateTime end = std::min(days_.calendar.SpanOf(at_).end, days_.to);
    PutSums(sheet_row::kPeriod, end, at_, period_);
    PutSums(sheet_row::kYear, end, at_, year_);
  }

  void PutSums(std::string_view what, DateTime day, AccountingPeriod period, const Figures& sums) {
    Put(NewRow(what, day, period, 0, 0, "", 0, "", ""), sums, {});
  }

  // A row up to its figures.
  std::vector<Variant> NewRow(std::string_view what, DateTime day, AccountingPeriod period,
                              Long voucher, Long entry, std::string_view group, Long number,
                              std::string_view account_number, std::string_view explanation) const {
    std::vector<Variant> row;
    row.reserve(width_);
    row.emplace_back(what);
    row.emplace_back(day);
    row.emplace_back(period.year);
    row.emplace_back(period.period);
    row.emplace_back(voucher);
    row.emplace_back(entry);
    row.emplace_back(group);
    row.emplace_back(number);
    row.emplace_back(account_number);
    row.emplace_back(explanation);
    return row;
  }

  void Put(std::vector<Variant> row, const Figures& figures, std::span<const Variant> rates) {
    figures.AppendTo(row, balance_, rates);
    rows_->AddRow(std::move(row));
  }

  const Layout& layout_;
  const Days& days_;
  Ref<Recordset> rows_ = Make<Recordset>();
  std::size_t width_ = 0;
  Units balance_;
  AccountingPeriod at_;
  bool is_open_ = false;
  bool has_lines_ = false;
  Figures period_, year_, all_;
};

}  // namespace

std::vector<Ref<Dictionary>> RowsUnder(const Dictionary& ledger, std::string_view key) {
  std::vector<Ref<Dictionary>> rows;
  const auto list = ledger.Value(key).As<Vector>();
  for (std::size_t i = 0; i < list->size(); ++i) rows.push_back(list->at(i).As<Dictionary>());
  return rows;
}

Ref<Recordset> LedgerSheet(Database& db, const Dictionary& ledger, DateTime from, DateTime to) {
  const Days days = Days::Of(db, from, to);
  const Layout layout(db, ledger);
  const auto account = ledger.Value("FAccountID").As<Long>();
  const Bounds bounds = Bounds::Of(db, account, days);
  auto others = layout.counts_others() ? OtherLinesOf(db, bounds, layout)
                                       : std::unordered_map<Long, std::vector<Amount>>();
  Sheet sheet(layout, days, BalanceBefore(db, account, days.first_year));
  const Texts groups = TextsOf(db, "SELECT FGroupID, FName FROM t_VoucherGroup");
  const Texts accounts =
      TextsOf(db,
              std::string(kBelow) + " SELECT a.FAccountID, a.FNumber FROM below"
                                    " JOIN t_Account a ON a.FAccountID = below.FAccountID",
              account);
  for (const Line& line : LinesOf(db, bounds, groups, accounts)) {
    Figures figures(layout);
    figures.AddOwn(line.amount);
    if (const auto rest = others.find(line.voucher); rest != others.end()) {
      for (const Amount& other : rest->second) figures.AddToColumns(other);
      others.erase(rest);  // they count once
    }
    sheet.Add(line, figures);
  }
  return sheet.Finish();
}

}  // namespace qdclgl::server
