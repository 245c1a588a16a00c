#include "qdclgl/server/vouchers/posting.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <tuple>

#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/records/currency.h"
#include "qdclgl/server/vouchers/line_items.h"
#include "qdclgl/server/vouchers/line_size.h"

namespace qdclgl::server {

namespace {

// Debit, credit, debit and credit in the currency, debit and credit quantity; modulo 2^64, which
// shows only in vouchers of older programs, and is taken out again as it came in.
using Movement = std::array<std::uint64_t, 6>;

struct Movements {
  // By account and currency, in that order, so that two postings never wait for each other in a
  // circle.
  std::map<std::pair<Long, Long>, Movement> by_place;
  // Those on accounts that ask for items, by account, items and currency.
  std::map<std::tuple<Long, LineItems, Long>, Movement> by_items;
  std::int64_t size = 0;
  bool adds_up = true;  // false for some of older programs
};

struct MovingLine {
  Long account, currency, side;
  std::int64_t amount, amount_for;
  double quantity;

  void AddTo(Movement& movement) const {
    const std::size_t credit = side == 1 ? 0 : 1;
    const auto add = [&](std::size_t place, std::int64_t units) {
      movement[place + credit] += static_cast<std::uint64_t>(units);
    };
    add(0, amount);
    add(2, currency == kBaseCurrency ? amount : amount_for);
    add(4, Millionths(quantity));
  }
};

Movements MovementsOf(Database& db, Long voucher_id) {
  Movements movements;
  std::optional<std::map<Long, LineItems>> items;  // read where an account asks for some
  for (const auto& [number, account, currency, side, amount, amount_for, quantity, asks] :
       db.Query<Long, Long, Long, Long, std::int64_t, std::int64_t, double, bool>(
           "SELECT e.FEntryID, e.FAccountID, e.FCurrencyID, e.FDC, e.FAmount, e.FAmountFor, " +
               std::string(kCountedQuantity) +
               ", CASE WHEN EXISTS (SELECT 1 FROM t_AccountItem a WHERE a.FAccountID = "
               "e.FAccountID)"
               " THEN 1 ELSE 0 END FROM t_VoucherEntry e WHERE e.FVoucherID = ?",
           voucher_id)) {
    movements.adds_up = movements.adds_up && AddLine(movements.size, amount, amount_for, quantity);
    const MovingLine line{account, currency, side, amount, amount_for, quantity};
    line.AddTo(movements.by_place[{account, currency}]);
    if (!asks) continue;
    if (!items) items = ItemsOfLines(db, voucher_id);
    line.AddTo(movements.by_items[{account, (*items)[number], currency}]);
  }
  return movements;
}

// The size of what is posted is a row that stands for this or more.
constexpr std::int64_t kFull = INT64_MAX;

// Adds to what is posted, or takes from it. Both give the last year whose sums are kept.
Long AddToSize(Database& db, const Movements& movements, const std::string& name) {
  const auto refuse = [&](const std::string& reason) {
    Refuse(refusal::kTooLarge, "Voucher " + name + ": " + reason);
  };
  if (!movements.adds_up) refuse("its lines are too large to add up.");
  const auto summed = db.QueryValue<Long>(
      "UPDATE t_Posted SET FSize = FSize + ? WHERE FSize <= ? RETURNING FSummedYear",
      movements.size, kFull - movements.size);
  if (!summed) refuse("with it, what is posted would be too large to add up.");
  return *summed;
}

Long TakeFromSize(Database& db, const Movements& movements, Long voucher_id) {
  if (movements.adds_up) {
    const auto summed = db.QueryValue<Long>(
        "UPDATE t_Posted SET FSize = FSize - ? WHERE FSize < ? RETURNING FSummedYear",
        movements.size, kFull);
    if (summed) return *summed;
  }
  // What more there was than the row can tell is known by adding up what is left.
  std::int64_t size = 0;
  for (const auto& [amount, amount_for, quantity] : db.Query<std::int64_t, std::int64_t, double>(
           "SELECT e.FAmount, e.FAmountFor, " + std::string(kCountedQuantity) +
               " FROM t_Voucher v JOIN t_VoucherEntry e ON e.FVoucherID = v.FVoucherID WHERE "
               "v.FPosted = 1 AND v.FVoucherID <> ?",
           voucher_id)) {
    if (!AddLine(size, amount, amount_for, quantity)) size = kFull;
  }
  return db.QueryValue<Long>("UPDATE t_Posted SET FSize = ? RETURNING FSummedYear", size)
      .value_or(0);
}

constexpr std::string_view kSums[] = {"FDebit",     "FCredit",   "FDebitFor",
                                      "FCreditFor", "FDebitQty", "FCreditQty"};

// Adds movements to the rows of a table of balances, or takes them out.
class BalanceRows {
 public:
  // The columns that tell the rows apart.
  BalanceRows(const std::string& table, const std::string& keys) {
    const auto count = std::ranges::count(keys, ',') + 1 + std::ssize(kSums);
    std::string sums, sets, places;
    for (const std::string_view name : kSums) {
      const std::string sum(name);
      sums += ", " + sum;
      sets += (sets.empty() ? "" : ", ") + sum + " = " + table + "." + sum + " + excluded." + sum;
    }
    for (std::ptrdiff_t i = 0; i < count; ++i) places += i == 0 ? "?" : ", ?";
    sql_ = "INSERT INTO " + table + " (" + keys + sums + ") VALUES (" + places + ") ON CONFLICT (" +
           keys + ") DO UPDATE SET " + sets;
  }

  template <class... Keys>
  void Move(Database& db, Direction direction, const Movement& movement,
            const Keys&... keys) const {
    const auto units = [&](std::size_t i) {
      return static_cast<std::int64_t>(direction == Direction::kPost ? movement[i]
                                                                     : 0 - movement[i]);
    };
    db.ExecuteLater(sql_, keys..., units(0), units(1), units(2), units(3), units(4), units(5));
  }

 private:
  std::string sql_;
};

// Years are summed when one after them is the first that anything is posted in; `summed` are those
// that were before. What moves in one of these moves in its sums too.
void MoveYearBalances(Database& db, const Movements& movements, Long year, Long summed,
                      Direction direction) {
  if (year <= summed) {
    static const BalanceRows kRows("t_YearBalance", "FAccountID, FCurrencyID, FYear");
    for (const auto& [place, movement] : movements.by_place) {
      kRows.Move(db, direction, movement, place.first, place.second, year);
    }
  } else if (year > summed + 1) {
    std::string names, sums;
    for (const std::string_view name : kSums) {
      names += ", " + std::string(name);
      sums += ", SUM(" + std::string(name) + ")";
    }
    db.ExecuteLater("INSERT INTO t_YearBalance (FAccountID, FCurrencyID, FYear" + names +
                        ") SELECT FAccountID, FCurrencyID, FYear" + sums +
                        " FROM t_Balance WHERE FYear > ? AND FYear < ?"
                        " GROUP BY FAccountID, FCurrencyID, FYear",
                    summed, year);
    db.ExecuteLater("UPDATE t_Posted SET FSummedYear = ?", year - 1);
  }
}

void MoveItemBalances(Database& db, const Movements& movements, AccountingPeriod period,
                      Direction direction) {
  if (movements.by_items.empty()) return;
  static const BalanceRows kRows("t_ItemBalance",
                                 "FAccountID, FCombinationID, FCurrencyID, FYear, FPeriod");
  for (const auto& [place, movement] : movements.by_items) {
    const auto& [account, items, currency] = place;
    kRows.Move(db, direction, movement, account, CombinationOf(db, items), currency, period.year,
               period.period);
  }
}

// Puts the lines among those of their accounts by day, or takes them out.
void MovePostedLines(Database& db, Long voucher_id, Direction direction) {
  if (direction == Direction::kPost) {
    db.ExecuteLater("INSERT INTO t_PostedLine (FAccountID, FDate, FVoucherID, FEntryID)"
                    " SELECT e.FAccountID, v.FDate, e.FVoucherID, e.FEntryID"
                    " FROM t_Voucher v JOIN t_VoucherEntry e ON e.FVoucherID = v.FVoucherID"
                    " WHERE v.FVoucherID = ?",
                    voucher_id);
  } else {
    db.ExecuteLater("DELETE FROM t_PostedLine WHERE FVoucherID = ?"
                    " AND FDate = (SELECT FDate FROM t_Voucher WHERE FVoucherID = ?)"
                    " AND FAccountID IN (SELECT FAccountID FROM t_VoucherEntry"
                    "  WHERE FVoucherID = ?)",
                    voucher_id, voucher_id, voucher_id);
  }
}

}  // namespace

void MoveBalances(Database& db, Long voucher_id, const std::string& name, AccountingPeriod period,
                  Direction direction) {
  const Movements movements = MovementsOf(db, voucher_id);
  // First of all, so that postings on other accounts wait here and not half done.
  const Long summed = direction == Direction::kPost ? AddToSize(db, movements, name)
                                                    : TakeFromSize(db, movements, voucher_id);
  static const BalanceRows kRows("t_Balance", "FAccountID, FCurrencyID, FYear, FPeriod");
  for (const auto& [place, movement] : movements.by_place) {
    kRows.Move(db, direction, movement, place.first, place.second, period.year, period.period);
  }
  MoveYearBalances(db, movements, period.year, summed, direction);
  MoveItemBalances(db, movements, period, direction);
  MovePostedLines(db, voucher_id, direction);
}

void MakeItemBalances(Database& db) {
  for (const auto& [voucher, year, period] : db.Query<Long, Long, Long>(
           "SELECT v.FVoucherID, v.FYear, v.FPeriod FROM t_Voucher v WHERE v.FPosted = 1"
           " AND EXISTS (SELECT 1 FROM t_VoucherEntry e JOIN t_AccountItem a ON"
           " a.FAccountID = e.FAccountID WHERE e.FVoucherID = v.FVoucherID)")) {
    MoveItemBalances(db, MovementsOf(db, voucher), {year, period}, Direction::kPost);
  }
}

}  // namespace qdclgl::server
