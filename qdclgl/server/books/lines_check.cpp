#include "qdclgl/server/books/lines_check.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <tuple>
#include <vector>

#include "qdclgl/server/books/each_row.h"
#include "qdclgl/server/books/id_ranges.h"
#include "qdclgl/server/books/row_sum.h"
#include "qdclgl/server/books/wide_sum.h"
#include "qdclgl/server/periods/calendar.h"
#include "qdclgl/server/records/currency.h"
#include "qdclgl/server/vouchers/exchange.h"
#include "qdclgl/server/vouchers/line_items.h"
#include "qdclgl/server/vouchers/line_size.h"

namespace qdclgl::server {

namespace {

// Debit, credit, both in the currency, both quantities, as t_Balance has them.
using Balance = std::array<WideSum, 6>;
using BalanceKey = std::array<Long, 4>;  // account, currency, year, period
using ItemBalances = std::map<std::pair<BalanceKey, LineItems>, Balance>;

struct Voucher {
  std::string name, date;
  Long year = 0, period = 0, entry_count = 0;
  std::int64_t debit_total = 0, credit_total = 0;
  bool posted = false;
  Long lines = 0;
  WideSum debit = {}, credit = {};  // of its lines
  std::int64_t size = 0;
  bool is_too_large = false;
};

struct Line {
  Long voucher, number, account, currency, side;
  std::int64_t amount, amount_for;
  double rate, quantity;
};

class LinesCheck {
 public:
  LinesCheck(Database& db, Findings& findings) : db_(db), findings_(findings) {}

  void Run(const WorkProgress& progress) {
    const double last_voucher = LastId(db_, "t_Voucher", "FVoucherID");
    ReadExchanges();
    ReadAskingAccounts();
    InRanges([&](Long from) { return NextId(db_, "t_Voucher", "FVoucherID", from); },
             [&](Long first, Long last) {
               CheckRange(first, last);
               progress.Tell("Checking vouchers", std::min(1.0, last / last_voucher));
             });
    CheckPosted();
    CheckPostedLines();
    SumYears();
    TakeAwayStoredBalances();
    CheckBalances();
    CheckYearBalances();
    TakeAwayStoredItemBalances();
    CheckItemBalances();
  }

 private:
  // The vouchers with these ids and their lines.
  void CheckRange(Long first, Long last) {
    std::map<Long, Voucher> vouchers = ReadVouchers(first, last);
    items_ = db_.Query<Long, Long, Long, Long>(LineItemsQuery("d.FVoucherID BETWEEN ? AND ?"),
                                               first, last);
    next_item_ = 0;
    ReadLines(vouchers, first, last);
    for (const auto& [id, voucher] : vouchers) CheckVoucher(id, voucher);
  }

  std::map<Long, Voucher> ReadVouchers(Long first, Long last) {
    static const std::string kSql =
        "SELECT v.FVoucherID, " + std::string(kVoucherName) +
        ", v.FYear, v.FPeriod, v.FDate, v.FEntryCount, v.FDebitTotal, v.FCreditTotal, v.FPosted" +
        std::string(kFromVouchers) + " WHERE v.FVoucherID BETWEEN ? AND ?";
    std::map<Long, Voucher> vouchers;
    for (const auto& [id, name, year, period, date, count, debit, credit, posted] :
         db_.Query<Long, std::string, Long, Long, std::string, Long, std::int64_t, std::int64_t,
                   bool>(kSql, first, last)) {
      vouchers[id] = {.name = name,
                      .date = date,
                      .year = year,
                      .period = period,
                      .entry_count = count,
                      .debit_total = debit,
                      .credit_total = credit,
                      .posted = posted};
    }
    return vouchers;
  }

  void ReadExchanges() {
    const Long scale =
        db_.QueryValue<Long>("SELECT FScale FROM t_Currency WHERE FCurrencyID = ?", kBaseCurrency)
            .value_or(0);
    for (const auto& [id, sign] :
         db_.Query<Long, std::string>("SELECT FCurrencyID, FOperator FROM t_Currency")) {
      exchanges_[id] = {.divides = sign == "/", .scale = scale};
    }
  }

  void ReadAskingAccounts() {
    for (const auto& [account] : db_.Query<Long>("SELECT FAccountID FROM t_AccountItem")) {
      asking_.insert(account);
    }
  }

  // The items of a line; lines come in their order.
  LineItems ItemsOf(const Line& line) {
    const auto place = [&] {
      const auto& [voucher, number, item_class, item] = items_[next_item_];
      return std::pair(voucher, number);
    };
    const std::pair own(line.voucher, line.number);
    while (next_item_ < items_.size() && place() < own) ++next_item_;
    LineItems items;
    for (; next_item_ < items_.size() && place() == own; ++next_item_) {
      items[std::get<2>(items_[next_item_])] = std::get<3>(items_[next_item_]);
    }
    return items;
  }

  void ReadLines(std::map<Long, Voucher>& vouchers, Long first, Long last) {
    static const std::string kSql =
        "SELECT e.FVoucherID, e.FEntryID, e.FAccountID, e.FCurrencyID, e.FDC, e.FAmount,"
        " e.FAmountFor, e.FExchangeRate, " +
        std::string(kCountedQuantity) +
        " FROM t_VoucherEntry e WHERE e.FVoucherID BETWEEN ? AND ?"
        " ORDER BY e.FVoucherID, e.FEntryID";
    for (const auto& [voucher, number, account, currency, side, amount, amount_for, rate,
                      quantity] :
         db_.Query<Long, Long, Long, Long, Long, std::int64_t, std::int64_t, double, double>(
             kSql, first, last)) {
      const auto found = vouchers.find(voucher);
      if (found == vouchers.end()) continue;  // the foreign keys are another rule
      Add(found->second,
          {voucher, number, account, currency, side, amount, amount_for, rate, quantity});
    }
  }

  void Add(Voucher& voucher, const Line& line) {
    ++voucher.lines;
    (line.side == 1 ? voucher.debit : voucher.credit).Add(line.amount);
    if (!IsAmountInRange(line.amount) || !IsAmountInRange(line.amount_for) ||
        !IsQuantityInRange(line.quantity)) {
      Report("LineSize", voucher, line, "Its amount or its quantity is too large.");
    } else if (!AddLine(voucher.size, line.amount, line.amount_for, line.quantity)) {
      voucher.is_too_large = true;
    }
    const auto exchange = exchanges_.find(line.currency);
    if (line.currency != kBaseCurrency && exchange != exchanges_.end() &&
        !IsAtRate(Currency::FromUnits(line.amount), Currency::FromUnits(line.amount_for), line.rate,
                  exchange->second)) {
      Report("LineRate", voucher, line, "Its amount is not its foreign amount at its rate.");
    }
    if (!voucher.posted) return;
    posted_lines_.Add({line.account, line.voucher, line.number}, voucher.date);
    const BalanceKey key = {line.account, line.currency, voucher.year, voucher.period};
    AddTo(balances_[key], line);
    if (asking_.contains(line.account)) AddTo(item_balances_[{key, ItemsOf(line)}], line);
  }

  static void AddTo(Balance& balance, const Line& line) {
    const std::size_t credit = line.side == 1 ? 0 : 1;
    balance[credit].Add(line.amount);
    balance[2 + credit].Add(line.currency == kBaseCurrency ? line.amount : line.amount_for);
    balance[4 + credit].Add(IsQuantityInRange(line.quantity) ? Millionths(line.quantity) : 0);
  }

  void Report(std::string_view rule, const Voucher& voucher, const Line& line,
              std::string_view problem) {
    findings_.Add(rule, "Voucher", line.voucher,
                  voucher.name + ", line " + std::to_string(line.number), problem);
  }

  void CheckVoucher(Long id, const Voucher& voucher) {
    const auto report = [&](std::string_view rule, std::string_view problem) {
      findings_.Add(rule, "Voucher", id, voucher.name, problem);
    };
    if (voucher.lines == 0) report("VoucherLines", "It has no lines.");
    if (voucher.lines != voucher.entry_count || voucher.debit != WideSum(voucher.debit_total) ||
        voucher.credit != WideSum(voucher.credit_total)) {
      report("VoucherTotals", "Its totals or its number of lines are not those of its lines.");
    }
    if (voucher.debit != voucher.credit) report("VoucherBalance", "Debits and credits differ.");
    if (voucher.is_too_large) report("VoucherSize", "Its lines are too large to add up.");
    if (voucher.posted) posted_.Add(voucher.size);
  }

  void CheckPosted() {
    const auto stored = db_.Query<std::int64_t>("SELECT FSize FROM t_Posted");
    if (stored.size() != 1 || posted_ != WideSum(std::get<0>(stored.front()))) {
      findings_.Add("Posted", "Books", 0, "",
                    "The size of what is posted is not that of the posted lines, or they are too "
                    "large to add up.");
    }
  }

  // That the lines of accounts by day are the posted ones, under their vouchers' days.
  void CheckPostedLines() {
    RowSum stored;
    EachRow(db_, std::string(kStoredLines), [&](const Statement& row) {
      stored.Add({row.Whole(0), row.Whole(2), row.Whole(3)}, row.Text(1));
    });
    if (stored == posted_lines_) return;
    ReportOddLines(kPostedLines, kStoredLines,
                   "Posted lines are missing among those of their accounts.");
    ReportOddLines(kStoredLines, kPostedLines,
                   "Lines stand among the posted ones of an account and are none.");
  }

  static constexpr std::string_view kPostedLines =
      "SELECT e.FAccountID, v.FDate, e.FVoucherID, e.FEntryID FROM t_Voucher v"
      " JOIN t_VoucherEntry e ON e.FVoucherID = v.FVoucherID WHERE v.FPosted = 1";
  static constexpr std::string_view kStoredLines =
      "SELECT FAccountID, FDate, FVoucherID, FEntryID FROM t_PostedLine";

  // The vouchers of lines that are among these and not among the others.
  void ReportOddLines(std::string_view these, std::string_view others, std::string_view problem) {
    for (const auto& [id, name] : db_.Query<Long, std::string>(
             "SELECT rest.FVoucherID, COALESCE((SELECT " + std::string(kVoucherName) +
             std::string(kFromVouchers) + " WHERE v.FVoucherID = rest.FVoucherID), '?')" +
             " FROM (SELECT DISTINCT FVoucherID FROM (" + std::string(these) + " EXCEPT " +
             std::string(others) + ") AS odd) AS rest ORDER BY rest.FVoucherID")) {
      findings_.Add("PostedLine", "Voucher", id, name, problem);
    }
  }

  template <class... Numbers>
  static void Subtract(Balance& balance, const Numbers&... stored) {
    std::size_t i = 0;
    (balance[i++].Subtract(stored), ...);
  }

  void TakeAwayStoredBalances() {
    for (const auto& [account, currency, year, period, debit, credit, debit_for, credit_for,
                      debit_quantity, credit_quantity] :
         db_.Query<Long, Long, Long, Long, std::int64_t, std::int64_t, std::int64_t, std::int64_t,
                   std::int64_t, std::int64_t>(
             "SELECT FAccountID, FCurrencyID, FYear, FPeriod, FDebit, FCredit, FDebitFor,"
             " FCreditFor, FDebitQty, FCreditQty FROM t_Balance")) {
      Subtract(balances_[{account, currency, year, period}], debit, credit, debit_for, credit_for,
               debit_quantity, credit_quantity);
    }
  }

  // The balances of the years whose sums are kept, out of their lines, without those sums.
  void SumYears() {
    const Long summed = db_.QueryValue<Long>("SELECT FSummedYear FROM t_Posted").value_or(0);
    for (const auto& [key, balance] : balances_) {
      const auto& [account, currency, year, period] = key;
      if (year > summed) continue;
      Balance& sum = year_balances_[{account, currency, year, 0}];
      for (std::size_t i = 0; i < sum.size(); ++i) sum[i].Add(balance[i]);
    }
    for (const auto& [account, currency, year, debit, credit, debit_for, credit_for, debit_quantity,
                      credit_quantity] :
         db_.Query<Long, Long, Long, std::int64_t, std::int64_t, std::int64_t, std::int64_t,
                   std::int64_t, std::int64_t>(
             "SELECT FAccountID, FCurrencyID, FYear, FDebit, FCredit, FDebitFor, FCreditFor,"
             " FDebitQty, FCreditQty FROM t_YearBalance")) {
      Subtract(year_balances_[{account, currency, year, 0}], debit, credit, debit_for, credit_for,
               debit_quantity, credit_quantity);
    }
  }

  // What is left when the stored balances are taken away should be nothing.
  void CheckBalances() {
    for (const auto& [key, rest] : balances_) {
      if (rest == Balance()) continue;
      ReportBalance("Balance", key, PeriodOf(key));
    }
  }

  void CheckYearBalances() {
    for (const auto& [key, rest] : year_balances_) {
      if (rest == Balance()) continue;
      ReportBalance("YearBalance", key, "year " + std::to_string(key[2]));
    }
  }

  void ReportBalance(std::string_view rule, const BalanceKey& key, const std::string& of) {
    const auto number =
        db_.QueryValue<std::string>("SELECT FNumber FROM t_Account WHERE FAccountID = ?", key[0]);
    findings_.Add(rule, "Account", key[0], number.value_or("?"),
                  "Its balance in currency " + std::to_string(key[1]) + ", " + of +
                      " is not the sum of its posted lines.");
  }

  static std::string PeriodOf(const BalanceKey& key) {
    return "period " + AccountingPeriod{key[2], key[3]}.ToText();
  }

  // What the combinations stand for by their ids.
  std::map<Long, LineItems> Combinations() {
    std::map<Long, LineItems> combinations;
    for (const auto& [id, item_class, item] : db_.Query<Long, Long, Long>(
             "SELECT FCombinationID, FItemClassID, FItemID FROM t_ItemCombinationItem")) {
      combinations[id][item_class] = item;
    }
    for (const auto& [id, text] :
         db_.Query<Long, std::string>("SELECT FCombinationID, FItems FROM t_ItemCombination")) {
      if (text == TextOf(combinations[id])) continue;
      findings_.Add("ItemCombination", "Books", id, text,
                    "Its items are not those that its text tells.");
    }
    return combinations;
  }

  void TakeAwayStoredItemBalances() {
    std::map<Long, LineItems> combinations = Combinations();
    for (const auto& [account, currency, year, period, combination, debit, credit, debit_for,
                      credit_for, debit_quantity, credit_quantity] :
         db_.Query<Long, Long, Long, Long, Long, std::int64_t, std::int64_t, std::int64_t,
                   std::int64_t, std::int64_t, std::int64_t>(
             "SELECT FAccountID, FCurrencyID, FYear, FPeriod, FCombinationID, FDebit, FCredit,"
             " FDebitFor, FCreditFor, FDebitQty, FCreditQty FROM t_ItemBalance")) {
      Subtract(item_balances_[{{account, currency, year, period}, combinations[combination]}],
               debit, credit, debit_for, credit_for, debit_quantity, credit_quantity);
    }
  }

  void CheckItemBalances() {
    for (const auto& [place, rest] : item_balances_) {
      if (rest == Balance()) continue;
      const auto& [key, items] = place;
      ReportBalance("ItemBalance", key, PeriodOf(key) + NamesOf(items));
    }
  }

  // ", CUSTOMER C001, DEP SHOP"
  std::string NamesOf(const LineItems& items) {
    std::string names;
    for (const auto& [item_class, item] : items) {
      names += ", " + db_.QueryValue<std::string>(
                             "SELECT c.FNumber || ' ' || i.FNumber FROM t_Item i JOIN t_ItemClass c"
                             " ON c.FItemClassID = i.FItemClassID WHERE i.FItemID = ?",
                             item)
                          .value_or("item " + std::to_string(item));
    }
    return names.empty() ? ", no items" : names;
  }

  Database& db_;
  Findings& findings_;
  std::map<Long, Exchange> exchanges_;
  WideSum posted_;  // the sizes of posted vouchers
  RowSum posted_lines_;
  std::map<BalanceKey, Balance> balances_;
  std::map<BalanceKey, Balance> year_balances_;  // of period 0
  std::set<Long> asking_;                        // accounts that ask for items
  // Voucher, line, class and item of the range, and how far the lines have come in them.
  std::vector<std::tuple<Long, Long, Long, Long>> items_;
  std::size_t next_item_ = 0;
  ItemBalances item_balances_;
};

}  // namespace

void CheckLines(Database& db, Findings& findings, const WorkProgress& progress) {
  LinesCheck(db, findings).Run(progress);
}

}  // namespace qdclgl::server
