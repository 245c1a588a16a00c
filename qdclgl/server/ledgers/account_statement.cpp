#include "qdclgl/server/ledgers/account_statement.h"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>
#include <vector>

#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/server/access/session.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/ledgers/account_lines.h"
#include "qdclgl/server/ledgers/contra.h"
#include "qdclgl/server/ledgers/days.h"
#include "qdclgl/server/ledgers/ledger_sheet.h"
#include "qdclgl/server/ledgers/wanted.h"

namespace qdclgl::server {

QD_DEFINE_MEMBERS(StatementInfo)

namespace {

// ---- What is asked for ----

struct Wanted {
  AccountLines lines;
  Days days;
  bool with_unposted;
};

AccountLines LinesWanted(Database& db, const String& account, const String& item_class,
                         const String& item) {
  AccountLines lines;
  lines.account = AccountWanted(db, account);
  const WantedItem wanted = ItemWanted(db, item_class, item);
  lines.item_class = wanted.item_class;
  if (wanted.item != 0) lines.item = wanted.item;
  if (lines.item_class != 0 && !IsAskedFor(db, lines)) {
    Refuse(refusal::kBadReference, "Neither account " + account + " nor any below it asks for " +
                                       "items of item class " + item_class + ".");
  }
  return lines;
}

// ---- What there is ----

// Sums in one currency after the other, by their ids.
struct Sums {
  std::map<Long, std::pair<std::string, TwoSides>> by_currency;

  void Add(Long currency_id, const std::string& currency, const TwoSides& sides) {
    auto& [number, sum] = by_currency[currency_id];
    number = currency;
    sum.Add(sides);
  }
  void Add(const Sums& more) {
    for (const auto& [id, sum] : more.by_currency) Add(id, sum.first, sum.second);
  }
  void Add(const AccountLine& line) { Add(line.currency_id, line.currency, line.Sides()); }
  void Add(const PeriodSum& sum) { Add(sum.currency_id, sum.currency, sum.sides); }

  TwoSides All() const {
    TwoSides all;
    for (const auto& [id, sum] : by_currency) all.Add(sum.second);
    return all;
  }
  Units Balance() const {
    const TwoSides all = All();
    return all.debit - all.credit;
  }
  bool IsNothing() const {
    return std::ranges::all_of(by_currency, [](const auto& place) {
      const TwoSides& sum = place.second.second;
      return sum.debit == sum.credit && sum.debit_for == sum.credit_for;
    });
  }
};

// What a statement shows of an item, or of all together under the item 0.
struct Block {
  Sums opening;
  std::vector<AccountLine> lines;
  std::map<AccountingPeriod, Sums> periods;
};
using Blocks = std::map<Long, Block>;

DateTime DayBehind(DateTime day) { return DateTime(day.days + 1); }

std::vector<AccountLine> AllLines(Database& db, const Wanted& wanted, DateTime from,
                                  DateTime behind) {
  std::vector<AccountLine> lines = LinesOf(db, wanted.lines, LineState::kPosted, from, behind);
  if (wanted.with_unposted) {
    std::ranges::move(LinesOf(db, wanted.lines, LineState::kNotPosted, from, behind),
                      std::back_inserter(lines));
  }
  std::ranges::sort(lines, std::less());
  return lines;
}

// The balances when a period begins.
void AddOpenings(Database& db, const Wanted& wanted, AccountingPeriod period, Blocks& blocks) {
  for (const PeriodSum& sum : KeptSums(db, wanted.lines, {}, period, Split::kTogether)) {
    blocks[sum.item].opening.Add(sum);
  }
  if (!wanted.with_unposted) return;
  const DateTime start = wanted.days.calendar.SpanOf(period).start;
  for (const AccountLine& line :
       LinesOf(db, wanted.lines, LineState::kNotPosted, DateTime(), start)) {
    blocks[line.item].opening.Add(line);
  }
}

// ---- Line by line ----

// A part of a statement: at most so many lines, all with 0, from the one behind a line on.
struct LinePage {
  std::size_t count = 0;
  std::optional<AccountLine> after;

  bool IsFull(std::size_t lines) const { return count != 0 && lines > count; }
};

// Reads on in ever longer spans until the page is full, so that a page costs what it shows,
// wherever the statement ends. True when there are more lines than the page takes.
bool ReadLines(Database& db, const Wanted& wanted, const LinePage& page, Blocks& blocks) {
  const Days& days = wanted.days;
  const DateTime first = page.after ? std::max(days.from, page.after->date) : days.from;
  const AccountingPeriod period = days.calendar.PeriodOf(first);
  AddOpenings(db, wanted, period, blocks);
  const auto is_before = [&](const AccountLine& line) {
    return line.date < days.from || (page.after && !(*page.after < line));
  };
  const DateTime end = DayBehind(days.to);
  DateTime at = days.calendar.SpanOf(period).start;
  std::size_t shown = 0;
  for (double span = page.count == 0 ? end.days - at.days : 32; at < end && !page.IsFull(shown);
       span *= 2) {
    const DateTime behind(std::min(at.days + span, end.days));
    for (AccountLine& line : AllLines(db, wanted, at, behind)) {
      Block& block = blocks[line.item];
      if (is_before(line)) {
        block.opening.Add(line);
      } else if (!page.IsFull(++shown)) {
        block.lines.push_back(std::move(line));
      } else {
        break;
      }
    }
    at = behind;
  }
  return page.IsFull(shown);
}

// ---- Period by period ----

// What days, not whole periods, have; those before the statement count for its opening.
void AddDays(Database& db, const Wanted& wanted, DateTime from, DateTime behind, Blocks& blocks) {
  for (const AccountLine& line : LinesOf(db, wanted.lines, LineState::kPosted, from, behind)) {
    Block& block = blocks[line.item];
    (line.date < wanted.days.from ? block.opening : block.periods[line.period]).Add(line);
  }
}

void ReadPeriods(Database& db, const Wanted& wanted, Blocks& blocks) {
  const Days& days = wanted.days;
  const Calendar& calendar = days.calendar;
  const AccountingPeriod first = calendar.PeriodOf(days.from);
  const Calendar::Span first_span = calendar.SpanOf(first), last_span = calendar.SpanOf(days.last);
  AddOpenings(db, wanted, first, blocks);
  // The whole periods among the days.
  const AccountingPeriod from = days.from == first_span.start ? first : calendar.After(first);
  const AccountingPeriod behind = days.to == last_span.end ? calendar.After(days.last) : days.last;
  if (from < behind) {
    for (const PeriodSum& sum : KeptSums(db, wanted.lines, from, behind, Split::kByPeriod)) {
      blocks[sum.item].periods[sum.period].Add(sum);
    }
  }
  if (from != first) {
    AddDays(db, wanted, first_span.start, DayBehind(std::min(first_span.end, days.to)), blocks);
  }
  if (behind == days.last && from <= behind) {
    AddDays(db, wanted, last_span.start, DayBehind(days.to), blocks);
  }
  if (!wanted.with_unposted) return;
  for (const AccountLine& line :
       LinesOf(db, wanted.lines, LineState::kNotPosted, first_span.start, DayBehind(days.to))) {
    Block& block = blocks[line.item];
    (line.date < days.from ? block.opening : block.periods[line.period]).Add(line);
  }
}

// ---- The rows ----

struct ItemName {
  std::string number, name;
};

class Rows {
 public:
  explicit Rows(const Days& days)
      : days_(days),
        rows_(Recordset::Create({"FRow",          "FItemNumber",  "FItemName",  "FDate",
                                 "FYear",         "FPeriod",      "FVoucherID", "FEntryID",
                                 "FGroup",        "FNumber",      "FPosted",    "FAccountNumber",
                                 "FContra",       "FExplanation", "FTransNo",   "FBeginBalance",
                                 "FDebit",        "FCredit",      "FBalance",   "FCurrencyNumber",
                                 "FExchangeRate", "FDebitFor",    "FCreditFor", "FBalanceFor"})) {}

  void Add(const Block& block, const ItemName& item, const ContraAccounts& contra, bool has_more) {
    Sums balance = block.opening, moved;
    PutSums(sheet_row::kOpening, days_.from, item, block.opening.Balance(), Sums(), balance);
    for (const AccountLine& line : block.lines) {
      const Units begin = balance.Balance();
      balance.Add(line);
      moved.Add(line);
      PutLine(line, item, contra.Of(line), begin, balance);
    }
    for (const auto& [period, sums] : block.periods) {
      const Units begin = balance.Balance();
      balance.Add(sums);
      moved.Add(sums);
      const DateTime end = std::min(days_.calendar.SpanOf(period).end, days_.to);
      PutSums(sheet_row::kPeriod, end, item, begin, sums, balance);
    }
    const bool is_more = has_more && !block.lines.empty();
    PutSums(is_more ? statement_row::kMore : sheet_row::kClosing,
            is_more ? block.lines.back().date : days_.to, item, block.opening.Balance(), moved,
            balance, is_more ? &block.lines.back() : nullptr);
    opening_.Add(block.opening);
    moved_.Add(moved);
  }

  // Behind all items.
  void AddTotal() {
    Sums balance = opening_;
    balance.Add(moved_);
    PutSums(statement_row::kTotal, days_.to, {}, opening_.Balance(), moved_, balance);
  }

  Ref<Recordset> Take() { return rows_; }

 private:
  static Variant Amount(Units units) { return Variant(Currency::FromUnits(units)); }

  void PutLine(const AccountLine& line, const ItemName& item, const std::string& contra,
               Units begin, const Sums& balance) {
    const TwoSides sides = line.Sides();
    const TwoSides& own = balance.by_currency.at(line.currency_id).second;
    rows_->AddRow({Variant(sheet_row::kLine),
                   Variant(item.number),
                   Variant(item.name),
                   Variant(line.date),
                   Variant(line.period.year),
                   Variant(line.period.period),
                   Variant(line.voucher),
                   Variant(line.entry),
                   Variant(line.group),
                   Variant(line.number),
                   Variant(Boolean{line.is_posted}),
                   Variant(line.account),
                   Variant(contra),
                   Variant(line.explanation),
                   Variant(line.reference),
                   Amount(begin),
                   Amount(sides.debit),
                   Amount(sides.credit),
                   Amount(balance.Balance()),
                   Variant(line.currency),
                   Variant(line.rate),
                   Amount(sides.debit_for),
                   Amount(sides.credit_for),
                   Amount(own.debit_for - own.credit_for)});
  }

  // `at` is the line that a row stands behind, where somebody goes on from there.
  void PutSums(std::string_view what, DateTime day, const ItemName& item, Units begin,
               const Sums& moved, const Sums& balance, const AccountLine* at = nullptr) {
    const AccountingPeriod period = days_.calendar.PeriodOf(day);
    const TwoSides sides = moved.All();
    const bool is_of_one = balance.by_currency.size() == 1;
    const TwoSides own = is_of_one ? balance.All() : TwoSides();
    const auto in_currency = [&](Units units) { return Amount(is_of_one ? units : 0); };
    rows_->AddRow({Variant(what),
                   Variant(item.number),
                   Variant(item.name),
                   Variant(day),
                   Variant(period.year),
                   Variant(period.period),
                   Variant(Long{at != nullptr ? at->voucher : 0}),
                   Variant(Long{at != nullptr ? at->entry : 0}),
                   Variant(""),
                   Variant(Long{0}),
                   Variant(Boolean{true}),
                   Variant(""),
                   Variant(""),
                   Variant(""),
                   Variant(""),
                   Amount(begin),
                   Amount(sides.debit),
                   Amount(sides.credit),
                   Amount(balance.Balance()),
                   Variant(is_of_one ? balance.by_currency.begin()->second.first : std::string()),
                   Variant(0.0),
                   in_currency(sides.debit_for),
                   in_currency(sides.credit_for),
                   Amount(own.debit_for - own.credit_for)});
  }

  const Days& days_;
  Ref<Recordset> rows_;
  Sums opening_, moved_;
};

// The items of a statement, by their numbers. One that has nothing is left out.
std::map<std::string, std::pair<Long, std::string>> ItemsOf(Database& db, const Blocks& blocks) {
  std::map<std::string, std::pair<Long, std::string>> items;
  for (const auto& [id, block] : blocks) {
    if (block.opening.IsNothing() && block.lines.empty() && block.periods.empty()) continue;
    const auto item = db.QueryRow<std::string, std::string>(
        "SELECT FNumber, FName FROM t_Item WHERE FItemID = ?", id);
    items[item ? std::get<0>(*item) : ""] = {id, item ? std::get<1>(*item) : ""};
  }
  return items;
}

Ref<Recordset> RowsOf(Database& db, const Wanted& wanted, const Blocks& blocks, bool has_more) {
  std::vector<AccountLine> lines;
  for (const auto& [id, block] : blocks) {
    lines.insert(lines.end(), block.lines.begin(), block.lines.end());
  }
  const ContraAccounts contra(db, lines);
  Rows rows(wanted.days);
  const bool is_by_items = wanted.lines.item_class != 0 && !wanted.lines.item;
  if (is_by_items) {
    for (const auto& [number, item] : ItemsOf(db, blocks)) {
      rows.Add(blocks.at(item.first), {number, item.second}, contra, has_more);
    }
    rows.AddTotal();
    return rows.Take();
  }
  ItemName item;
  if (wanted.lines.item) {
    std::tie(item.number, item.name) = *db.QueryRow<std::string, std::string>(
        "SELECT FNumber, FName FROM t_Item WHERE FItemID = ?", *wanted.lines.item);
  }
  rows.Add(blocks.empty() ? Block() : blocks.begin()->second, item, contra, has_more);
  return rows.Take();
}

}  // namespace

Ref<Recordset> StatementInfo::GetStatement(std::string_view PropsString,
                                           const String& AccountNumber, DateTime DateFrom,
                                           DateTime DateTo, Boolean WithUnposted,
                                           const String& ItemClassNumber, const String& ItemNumber,
                                           Long Count, Long AfterVoucherID, Long AfterEntryID) {
  const Caller caller = Enter(PropsString, kRead);
  Transaction transaction(caller.db, Transaction::Kind::kRead);
  const Wanted wanted{LinesWanted(caller.db, AccountNumber, ItemClassNumber, ItemNumber),
                      Days::Of(caller.db, DateFrom, DateTo), WithUnposted};
  LinePage page;
  if (Count < 0) Refuse(refusal::kBadValue, "A page has at least one line.");
  page.count = static_cast<std::size_t>(Count);
  if (AfterVoucherID != 0) page.after = PlaceOfLine(caller.db, AfterVoucherID, AfterEntryID);
  if ((page.count != 0 || page.after) && wanted.lines.item_class != 0 && !wanted.lines.item) {
    Refuse(refusal::kBadValue, "A statement item by item has no pages.");
  }
  Blocks blocks;
  const bool has_more = ReadLines(caller.db, wanted, page, blocks);
  Ref<Recordset> rows = RowsOf(caller.db, wanted, blocks, has_more);
  transaction.Commit();
  return rows;
}

Ref<Recordset> StatementInfo::GetPeriods(std::string_view PropsString, const String& AccountNumber,
                                         DateTime DateFrom, DateTime DateTo, Boolean WithUnposted,
                                         const String& ItemClassNumber, const String& ItemNumber) {
  const Caller caller = Enter(PropsString, kRead);
  Transaction transaction(caller.db, Transaction::Kind::kRead);
  const Wanted wanted{LinesWanted(caller.db, AccountNumber, ItemClassNumber, ItemNumber),
                      Days::Of(caller.db, DateFrom, DateTo), WithUnposted};
  Blocks blocks;
  ReadPeriods(caller.db, wanted, blocks);
  Ref<Recordset> rows = RowsOf(caller.db, wanted, blocks, false);
  transaction.Commit();
  return rows;
}

}  // namespace qdclgl::server
