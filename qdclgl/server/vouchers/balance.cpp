#include "qdclgl/server/vouchers/balance.h"

#include <algorithm>
#include <array>
#include <vector>

#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/server/access/session.h"
#include "qdclgl/server/db/list.h"
#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/periods/calendar.h"
#include "qdclgl/server/periods/settings.h"
#include "qdclgl/server/records/master_data.h"
#include "qdclgl/server/vouchers/line_items.h"
#include "qdclgl/server/vouchers/line_size.h"

namespace qdclgl::server {

const MasterData& ItemClasses();

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

// The columns that tell items, as many as a list can be split by.
constexpr std::size_t kMostClasses = 8;
constexpr std::array<std::array<Column, 3>, kMostClasses> kItemColumns = {{
#define QD_ITEM_COLUMNS(place)                                                          \
  {                                                                                     \
    {                                                                                   \
      {"FItemID" place, ColumnType::kLong}, {"FItemNumber" place, ColumnType::kText}, { \
        "FItemName" place, ColumnType::kText                                            \
      }                                                                                 \
    }                                                                                   \
  }
    QD_ITEM_COLUMNS("1"),
    QD_ITEM_COLUMNS("2"),
    QD_ITEM_COLUMNS("3"),
    QD_ITEM_COLUMNS("4"),
    QD_ITEM_COLUMNS("5"),
    QD_ITEM_COLUMNS("6"),
    QD_ITEM_COLUMNS("7"),
    QD_ITEM_COLUMNS("8"),
#undef QD_ITEM_COLUMNS
}};

// The item classes that a list is split by, none of a plain one.
using Classes = std::vector<Long>;

std::string IdColumn(std::size_t place) { return std::string(kItemColumns[place][0].name); }

// An alias of a table for each class.
std::string Alias(std::string_view table, std::size_t place) {
  return std::string(table) + std::to_string(place + 1);
}

// ", c1.FItemID AS FItemID1", and so for each class.
std::string ItemCells(const Classes& classes, std::string_view table) {
  std::string cells;
  for (std::size_t i = 0; i < classes.size(); ++i) {
    cells += ", COALESCE(" + Alias(table, i) + ".FItemID, 0) AS " + IdColumn(i);
  }
  return cells;
}

// That the account of a row asks for items of all the classes.
std::string AsksForAll(const Classes& classes, std::string_view row) {
  std::string condition;
  for (const Long item_class : classes) {
    condition += " AND EXISTS (SELECT 1 FROM t_AccountItem asked WHERE asked.FAccountID = " +
                 std::string(row) +
                 ".FAccountID AND asked.FItemClassID = " + std::to_string(item_class) + ")";
  }
  return condition;
}

constexpr const char* kDebitSide = "e.FDC";
constexpr const char* kCreditSide = "(1 - e.FDC)";

// Periods of a year, FYear * 1000 + FPeriod; without any, everything.
struct Span {
  Long year;
  std::int64_t first, last;
};

// What moved, a row for each account, currency and period, and by items for each combination of
// them.
struct Movements {
  std::string query;
  std::string years;    // of whole years, which stand before the span or, without one, within it
  bool is_kept;         // in rows that are read twice sooner than put aside
  bool may_be_earlier;  // than the span
};

// As posting keeps them.
Movements Stored(Database& db, const Classes& classes, const std::optional<Span>& span) {
  if (classes.empty()) {
    auto [summed, latest] =
        db.QueryRow<Long, Long>("SELECT FSummedYear,"
                                " (SELECT COALESCE(MAX(FYear), 0) FROM t_Balance) FROM t_Posted")
            .value_or(std::tuple(0, 0));
    if (span) {
      summed = std::min(summed, span->year - 1);
      latest = span->year;
    }
    // As a rule one year is left, whose rows come in the order that they are added up in.
    const bool is_one_year = latest == summed + 1;
    const std::string last = std::to_string(summed);
    return {"SELECT FAccountID, FCurrencyID, FYear * 1000 + FPeriod AS FAt, FDebit, FCredit,"
            " FDebitFor, FCreditFor, FDebitQty, FCreditQty FROM t_Balance WHERE FYear " +
                (is_one_year ? "= " + std::to_string(latest) : "> " + last),
            "t_YearBalance WHERE FYear <= " + last, true,
            !is_one_year || (span && span->first > std::int64_t{latest} * 1000 + 1)};
  }
  std::string joins;
  for (std::size_t i = 0; i < classes.size(); ++i) {
    const std::string item = Alias("item", i);
    joins += " LEFT JOIN t_ItemCombinationItem " + item + " ON " + item +
             ".FCombinationID = b.FCombinationID AND " + item +
             ".FItemClassID = " + std::to_string(classes[i]);
  }
  return {"SELECT b.FAccountID, b.FCurrencyID, b.FYear * 1000 + b.FPeriod AS FAt, b.FDebit,"
          " b.FCredit, b.FDebitFor, b.FCreditFor, b.FDebitQty, b.FCreditQty" +
              ItemCells(classes, "item") + " FROM t_ItemBalance b" + joins + " WHERE 1 = 1" +
              AsksForAll(classes, "b"),
          "", true, true};
}

// The same from the lines of posted vouchers.
Movements FromLines(Database& db, const Classes& classes, const std::optional<Span>&) {
  const std::string quantity = MillionthsSql(db, "(" + std::string(kCountedQuantity) + ")");
  const std::string amount_for = "CASE WHEN e.FCurrencyID = 1 THEN e.FAmount ELSE e.FAmountFor END";
  std::string joins;
  for (std::size_t i = 0; i < classes.size(); ++i) {
    const std::string item = Alias("item", i);
    joins += " LEFT JOIN (" + LineItemsQuery("d.FItemClassID = " + std::to_string(classes[i])) +
             ") AS " + item + " ON " + item + ".FVoucherID = e.FVoucherID AND " + item +
             ".FEntryID = e.FEntryID";
  }
  std::string sides;
  const auto add = [&](const std::string& value, const char* side, const char* name) {
    sides += ", SUM(" + value + " * " + side + ") AS " + name;
  };
  add("e.FAmount", kDebitSide, "FDebit");
  add("e.FAmount", kCreditSide, "FCredit");
  add(amount_for, kDebitSide, "FDebitFor");
  add(amount_for, kCreditSide, "FCreditFor");
  add(quantity, kDebitSide, "FDebitQty");
  add(quantity, kCreditSide, "FCreditQty");
  std::string items;
  for (std::size_t i = 0; i < classes.size(); ++i) items += ", " + Alias("item", i) + ".FItemID";
  return {"SELECT e.FAccountID, e.FCurrencyID, v.FYear * 1000 + v.FPeriod AS FAt" + sides +
              ItemCells(classes, "item") +
              " FROM t_Voucher v JOIN t_VoucherEntry e ON e.FVoucherID = v.FVoucherID" + joins +
              " WHERE v.FPosted = 1" + AsksForAll(classes, "e") +
              " GROUP BY e.FAccountID, e.FCurrencyID, v.FYear, v.FPeriod" + items,
          "", false, true};
}

// A quantity that is counted in millionths. In parts, since one of the databases divides real
// numbers and the other exact ones: large quantities would differ in their last digits.
std::string FromMillionths(const std::string& count) {
  const std::string rest = "(" + count + " % 1000000)";
  return "((" + count + " - " + rest + ") / 1000000 + " + rest + " / 1e6)";
}

// The list's query: what moved before the span and within it, added up by account, items and
// currency, then for every account over all that is below it, then for all currencies together.
std::string Query(const Movements& movements, const Classes& classes,
                  const std::optional<Span>& span) {
  struct Sum {
    std::string_view name, begin, debit, credit;
  };
  static constexpr Sum kSums[] = {
      {"", "FBegin", "FDebit", "FCredit"},
      {"For", "FBeginFor", "FDebitFor", "FCreditFor"},
      {"Qty", "FBeginQty", "FDebitQty", "FCreditQty"},
  };
  std::string before, within, over_accounts, over_currencies, present;
  for (const Sum& sum : kSums) {
    const auto add = [](std::string& text, const std::string& part) { text += ", " + part; };
    const std::string begin(sum.begin), debit(sum.debit), credit(sum.credit);
    add(before,
        "SUM(" + debit + " - " + credit + ") AS " + begin + ", 0 AS " + debit + ", 0 AS " + credit);
    add(within, "0 AS " + begin + ", SUM(" + debit + ") AS " + debit + ", SUM(" + credit + ") AS " +
                    credit);
    for (const std::string& name : {begin, debit, credit}) {
      add(over_accounts, "SUM(" + name + ") AS " + name);
      add(over_currencies, sum.name == "For" ? "0 AS " + name : "SUM(" + name + ") AS " + name);
      present += (present.empty() ? "" : " OR ") + name + " <> 0";
    }
  }
  std::string items, shown_items, item_names;
  for (std::size_t i = 0; i < classes.size(); ++i) {
    const std::string item = Alias("item", i);
    items += ", " + IdColumn(i);
    shown_items += ", r." + IdColumn(i);
    for (std::size_t text = 1; text < kItemColumns[i].size(); ++text) {
      shown_items += ", COALESCE(" + item + (text == 1 ? ".FNumber" : ".FName") + ", '') AS " +
                     std::string(kItemColumns[i][text].name);
    }
    item_names += " LEFT JOIN t_Item " + item + " ON " + item + ".FItemID = r." + IdColumn(i);
  }
  const std::string place = "FAccountID, FCurrencyID" + items;
  const auto added_up = [&](const std::string& sums, const std::string& rows) {
    return "SELECT " + place + sums + " FROM " + rows + " GROUP BY " + place;
  };
  std::string moved;
  if (!span) {
    moved = added_up(within, "movement");
  } else {
    const std::string first = std::to_string(span->first), last = std::to_string(span->last);
    moved = added_up(within, "movement WHERE FAt >= " + first + " AND FAt <= " + last);
    if (movements.may_be_earlier) {
      moved += " UNION ALL " + added_up(before, "movement WHERE FAt < " + first);
    }
  }
  if (!movements.years.empty()) {
    moved += " UNION ALL " + added_up(span ? before : within, movements.years);
  }
  return "WITH RECURSIVE above AS ("
         "  SELECT FAccountID, FAccountID AS FAboveID FROM t_Account"
         "  UNION ALL"
         "  SELECT above.FAccountID, a.FParentID FROM above"
         "  JOIN t_Account a ON a.FAccountID = above.FAboveID WHERE a.FParentID <> 0),"
         " movement AS " +
         std::string(movements.is_kept ? "NOT MATERIALIZED" : "MATERIALIZED") + " (" +
         movements.query + "), moved AS (" + moved +
         "),"
         " each AS ("
         "  SELECT above.FAboveID, moved.FCurrencyID" +
         items + over_accounts +
         "  FROM moved JOIN above ON above.FAccountID = moved.FAccountID"
         "  GROUP BY above.FAboveID, moved.FCurrencyID" +
         items +
         "),"
         " all_rows AS ("
         "  SELECT * FROM each"
         "  UNION ALL SELECT FAboveID, 0 AS FCurrencyID" +
         items + over_currencies + "  FROM each GROUP BY FAboveID" + items +
         ")"
         " SELECT a.FAccountID, a.FNumber AS FAccountNumber, a.FName AS FAccountName, a.FLevel,"
         " a.FDetail, a.FDC, r.FCurrencyID, COALESCE(c.FNumber, '') AS FCurrencyNumber" +
         shown_items +
         ","
         " CAST(FBegin AS BIGINT) AS FBeginBalance, CAST(FDebit AS BIGINT) AS FDebit,"
         " CAST(FCredit AS BIGINT) AS FCredit,"
         " CAST(FBegin + FDebit - FCredit AS BIGINT) AS FEndBalance,"
         " CAST(FBeginFor AS BIGINT) AS FBeginBalanceFor, CAST(FDebitFor AS BIGINT) AS FDebitFor,"
         " CAST(FCreditFor AS BIGINT) AS FCreditFor,"
         " CAST(FBeginFor + FDebitFor - FCreditFor AS BIGINT) AS FEndBalanceFor,"
         " " +
         FromMillionths("FBeginQty") + " AS FBeginQty, " + FromMillionths("FDebitQty") +
         " AS FDebitQty, " + FromMillionths("FCreditQty") + " AS FCreditQty, " +
         FromMillionths("(FBeginQty + FDebitQty - FCreditQty)") +
         " AS FEndQty"
         " FROM all_rows r JOIN t_Account a ON a.FAccountID = r.FAboveID"
         " LEFT JOIN t_Currency c ON c.FCurrencyID = r.FCurrencyID" +
         item_names + " WHERE " + present;
}

Classes ClassesIn(Database& db, const String& numbers) {
  Classes classes;
  for (std::size_t first = 0; first <= numbers.size();) {
    const std::size_t end = std::min(numbers.find(',', first), numbers.size());
    const std::string number = numbers.substr(first, end - first);
    const Long item_class = ItemClasses().IdWithKey(db, number);
    if (item_class == 0) {
      Refuse(refusal::kBadReference, "There is no item class \"" + number + "\".");
    }
    if (std::ranges::count(classes, item_class) != 0) {
      Refuse(refusal::kBadValue, "Item class " + number + " stands twice.");
    }
    classes.push_back(item_class);
    first = end + 1;
  }
  if (classes.size() > kMostClasses) {
    Refuse(refusal::kBadValue,
           "A list is by at most " + std::to_string(kMostClasses) + " item classes.");
  }
  return classes;
}

// The columns of a list, and how its rows are sorted.
struct Shape {
  std::vector<Column> columns{std::begin(kColumns), std::end(kColumns)};
  std::string order = "FAccountNumber";

  explicit Shape(const Classes& classes) {
    auto place = std::ranges::find(columns, "FBeginBalance", &Column::name);
    for (std::size_t i = 0; i < classes.size(); ++i) {
      place = std::next(columns.insert(place, kItemColumns[i].begin(), kItemColumns[i].end()),
                        std::ssize(kItemColumns[i]));
      order += ", " + std::string(kItemColumns[i][1].name);
    }
    order += ", FCurrencyID";
  }
};

using MovementsOf = Movements (*)(Database&, const Classes&, const std::optional<Span>&);

// By items of the classes that a text names, where there is one.
Ref<Recordset> Balances(std::string_view props, MovementsOf movements,
                        const std::optional<String>& class_numbers, Long year, Long from, Long to,
                        const String& filter, const String& sort, const Variant& page) {
  const Caller caller = Enter(props, BalanceInfo::kRead);
  Transaction transaction(caller.db, Transaction::Kind::kRead);
  const Classes classes = class_numbers ? ClassesIn(caller.db, *class_numbers) : Classes();
  std::optional<Span> span;
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
    span = {year, std::int64_t{year} * 1000 + begin.period, std::int64_t{year} * 1000 + end.period};
  } else if (from != 0 || to != 0) {
    Refuse(refusal::kBadValue, "Periods without a year say nothing.");
  }
  const Shape shape(classes);
  const std::string query = Query(movements(caller.db, classes, span), classes, span);
  Ref<Recordset> list =
      FetchList(caller.db, {query, shape.columns, shape.order}, filter, sort, {}, PageIn(page));
  transaction.Commit();
  return list;
}

}  // namespace

Ref<Recordset> BalanceInfo::GetList(std::string_view PropsString, Long nYear, Long PeriodFrom,
                                    Long PeriodTo, const String& Filter, const String& Sort,
                                    const Variant& Page) {
  return Balances(PropsString, Stored, std::nullopt, nYear, PeriodFrom, PeriodTo, Filter, Sort,
                  Page);
}

Ref<Recordset> BalanceInfo::GetListFromLines(std::string_view PropsString, Long nYear,
                                             Long PeriodFrom, Long PeriodTo, const String& Filter,
                                             const String& Sort, const Variant& Page) {
  return Balances(PropsString, FromLines, std::nullopt, nYear, PeriodFrom, PeriodTo, Filter, Sort,
                  Page);
}

Ref<Recordset> BalanceInfo::GetItemList(std::string_view PropsString, const String& ClassNumbers,
                                        Long nYear, Long PeriodFrom, Long PeriodTo,
                                        const String& Filter, const String& Sort,
                                        const Variant& Page) {
  return Balances(PropsString, Stored, ClassNumbers, nYear, PeriodFrom, PeriodTo, Filter, Sort,
                  Page);
}

Ref<Recordset> BalanceInfo::GetItemListFromLines(std::string_view PropsString,
                                                 const String& ClassNumbers, Long nYear,
                                                 Long PeriodFrom, Long PeriodTo,
                                                 const String& Filter, const String& Sort,
                                                 const Variant& Page) {
  return Balances(PropsString, FromLines, ClassNumbers, nYear, PeriodFrom, PeriodTo, Filter, Sort,
                  Page);
}

}  // namespace qdclgl::server
