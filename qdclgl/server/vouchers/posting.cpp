#include "qdclgl/server/vouchers/posting.h"

#include <array>
#include <cmath>
#include <map>

#include "qdclgl/server/db/refusals.h"
#include "qdclgl/server/records/currency.h"

namespace qdclgl::server {

namespace {

// Debit, credit, debit and credit in the currency, debit and credit quantity.
using Movement = std::array<std::int64_t, 6>;

}  // namespace

void MoveBalances(Database& db, Long voucher_id, AccountingPeriod period, Direction direction) {
  // In the order of their keys, so that two postings never wait for each other in a circle.
  std::map<std::pair<Long, Long>, Movement> movements;
  for (const auto& [account, currency, side, amount, amount_for, quantity] :
       db.Query<Long, Long, Long, std::int64_t, std::int64_t, double>(
           "SELECT FAccountID, FCurrencyID, FDC, FAmount, FAmountFor, FQuantity"
           " FROM t_VoucherEntry WHERE FVoucherID = ?",
           voucher_id)) {
    Movement& movement = movements[{account, currency}];
    const std::size_t credit = side == 1 ? 0 : 1;
    movement[credit] += amount;
    movement[2 + credit] += currency == kBaseCurrency ? amount : amount_for;
    movement[4 + credit] += std::llround(quantity * kQuantityScale);
  }
  const std::int64_t sign = direction == Direction::kPost ? 1 : -1;
  for (const auto& [place, movement] : movements) {
    const Long account = place.first, currency = place.second;
    const auto balance = db.QueryRow<std::int64_t, std::int64_t, std::int64_t, std::int64_t,
                                     std::int64_t, std::int64_t>(
        "INSERT INTO t_Balance (FAccountID, FCurrencyID, FYear, FPeriod, FDebit, FCredit,"
        " FDebitFor, FCreditFor, FDebitQty, FCreditQty)"
        " VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"
        " ON CONFLICT (FAccountID, FCurrencyID, FYear, FPeriod) DO UPDATE SET"
        " FDebit = t_Balance.FDebit + excluded.FDebit,"
        " FCredit = t_Balance.FCredit + excluded.FCredit,"
        " FDebitFor = t_Balance.FDebitFor + excluded.FDebitFor,"
        " FCreditFor = t_Balance.FCreditFor + excluded.FCreditFor,"
        " FDebitQty = t_Balance.FDebitQty + excluded.FDebitQty,"
        " FCreditQty = t_Balance.FCreditQty + excluded.FCreditQty"
        " RETURNING FDebit, FCredit, FDebitFor, FCreditFor, FDebitQty, FCreditQty",
        account, currency, period.year, period.period, sign * movement[0], sign * movement[1],
        sign * movement[2], sign * movement[3], sign * movement[4], sign * movement[5]);
    std::apply(
        [&](auto... total) {
          if (((total > kLargestTotal || total < -kLargestTotal) || ...)) {
            Refuse(refusal::kTooLarge,
                   "The balance of account " +
                       db.QueryValue<std::string>(
                             "SELECT FNumber FROM t_Account WHERE FAccountID = ?", account)
                           .value_or("") +
                       " in period " + period.ToText() + " would be too large.");
          }
        },
        *balance);
  }
}

}  // namespace qdclgl::server
