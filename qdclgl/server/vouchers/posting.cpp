#include "qdclgl/server/vouchers/posting.h"

#include <array>
#include <map>

#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/records/currency.h"
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
  std::int64_t size = 0;
  bool adds_up = true;  // false for some of older programs
};

Movements MovementsOf(Database& db, Long voucher_id) {
  Movements movements;
  for (const auto& [account, currency, side, amount, amount_for, quantity] :
       db.Query<Long, Long, Long, std::int64_t, std::int64_t, double>(
           "SELECT e.FAccountID, e.FCurrencyID, e.FDC, e.FAmount, e.FAmountFor, " +
               std::string(kCountedQuantity) + " FROM t_VoucherEntry e WHERE e.FVoucherID = ?",
           voucher_id)) {
    movements.adds_up = movements.adds_up && AddLine(movements.size, amount, amount_for, quantity);
    Movement& movement = movements.by_place[{account, currency}];
    const std::size_t credit = side == 1 ? 0 : 1;
    const auto add = [&](std::size_t place, std::int64_t units) {
      movement[place + credit] += static_cast<std::uint64_t>(units);
    };
    add(0, amount);
    add(2, currency == kBaseCurrency ? amount : amount_for);
    add(4, Millionths(quantity));
  }
  return movements;
}

// The size of what is posted is a row that stands for this or more.
constexpr std::int64_t kFull = INT64_MAX;

void AddToSize(Database& db, const Movements& movements, const std::string& name) {
  const auto refuse = [&](const std::string& reason) {
    Refuse(refusal::kTooLarge, "Voucher " + name + ": " + reason);
  };
  if (!movements.adds_up) refuse("its lines are too large to add up.");
  if (db.Execute("UPDATE t_Posted SET FSize = FSize + ? WHERE FSize <= ?", movements.size,
                 kFull - movements.size) == 0) {
    refuse("with it, what is posted would be too large to add up.");
  }
}

void TakeFromSize(Database& db, const Movements& movements, Long voucher_id) {
  if (movements.adds_up && db.Execute("UPDATE t_Posted SET FSize = FSize - ? WHERE FSize < ?",
                                      movements.size, kFull) != 0) {
    return;
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
  db.Execute("UPDATE t_Posted SET FSize = ?", size);
}

}  // namespace

void MoveBalances(Database& db, Long voucher_id, const std::string& name, AccountingPeriod period,
                  Direction direction) {
  const Movements movements = MovementsOf(db, voucher_id);
  // First of all, so that postings on other accounts wait here and not half done.
  if (direction == Direction::kPost) {
    AddToSize(db, movements, name);
  } else {
    TakeFromSize(db, movements, voucher_id);
  }
  for (const auto& [place, movement] : movements.by_place) {
    const auto units = [&, &moved = movement](std::size_t i) {
      return static_cast<std::int64_t>(direction == Direction::kPost ? moved[i] : 0 - moved[i]);
    };
    db.Execute("INSERT INTO t_Balance (FAccountID, FCurrencyID, FYear, FPeriod, FDebit, FCredit,"
               " FDebitFor, FCreditFor, FDebitQty, FCreditQty)"
               " VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"
               " ON CONFLICT (FAccountID, FCurrencyID, FYear, FPeriod) DO UPDATE SET"
               " FDebit = t_Balance.FDebit + excluded.FDebit,"
               " FCredit = t_Balance.FCredit + excluded.FCredit,"
               " FDebitFor = t_Balance.FDebitFor + excluded.FDebitFor,"
               " FCreditFor = t_Balance.FCreditFor + excluded.FCreditFor,"
               " FDebitQty = t_Balance.FDebitQty + excluded.FDebitQty,"
               " FCreditQty = t_Balance.FCreditQty + excluded.FCreditQty",
               place.first, place.second, period.year, period.period, units(0), units(1), units(2),
               units(3), units(4), units(5));
  }
}

}  // namespace qdclgl::server
