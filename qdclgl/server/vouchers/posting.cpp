#include "qdclgl/server/vouchers/posting.h"

#include <array>
#include <map>

#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/records/currency.h"
#include "qdclgl/server/vouchers/line_size.h"

namespace qdclgl::server {

namespace {

// Debit, credit, debit and credit in the currency, debit and credit quantity.
using Movement = std::array<std::int64_t, 6>;

struct Movements {
  // By account and currency, in that order, so that two postings never wait for each other in a
  // circle.
  std::map<std::pair<Long, Long>, Movement> by_place;
  std::int64_t size = 0;
};

[[noreturn]] void RefuseSize(const std::string& name, const std::string& reason) {
  Refuse(refusal::kTooLarge, "Voucher " + name + ": " + reason);
}

Movements MovementsOf(Database& db, Long voucher_id, const std::string& name) {
  Movements movements;
  for (const auto& [account, currency, side, amount, amount_for, quantity] :
       db.Query<Long, Long, Long, std::int64_t, std::int64_t, double>(
           "SELECT FAccountID, FCurrencyID, FDC, FAmount, FAmountFor, FQuantity"
           " FROM t_VoucherEntry WHERE FVoucherID = ?",
           voucher_id)) {
    // Vouchers that older programs have saved may be larger than new ones.
    if (!IsAmountInRange(amount) || !IsAmountInRange(amount_for) || !IsQuantityInRange(quantity) ||
        !AddSize(movements.size, LineSize(amount, amount_for, quantity))) {
      RefuseSize(name, "its lines are too large to add up.");
    }
    Movement& movement = movements.by_place[{account, currency}];
    const std::size_t credit = side == 1 ? 0 : 1;
    movement[credit] += amount;
    movement[2 + credit] += currency == kBaseCurrency ? amount : amount_for;
    movement[4 + credit] += Millionths(quantity);
  }
  return movements;
}

// First of all, so that postings on other accounts wait here and not half done.
void MoveSize(Database& db, std::int64_t size, const std::string& name, Direction direction) {
  if (direction == Direction::kUnPost) {
    db.Execute("UPDATE t_Posted SET FSize = FSize - ?", size);
  } else if (db.Execute("UPDATE t_Posted SET FSize = FSize + ? WHERE FSize <= ?", size,
                        INT64_MAX - size) == 0) {
    RefuseSize(name, "with it, what is posted would be too large to add up.");
  }
}

}  // namespace

void MoveBalances(Database& db, Long voucher_id, const std::string& name, AccountingPeriod period,
                  Direction direction) {
  const Movements movements = MovementsOf(db, voucher_id, name);
  MoveSize(db, movements.size, name, direction);
  const std::int64_t sign = direction == Direction::kPost ? 1 : -1;
  for (const auto& [place, movement] : movements.by_place) {
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
               place.first, place.second, period.year, period.period, sign * movement[0],
               sign * movement[1], sign * movement[2], sign * movement[3], sign * movement[4],
               sign * movement[5]);
  }
}

}  // namespace qdclgl::server
