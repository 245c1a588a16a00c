// The balances of accounts: what each posted line adds to the account, currency and period it is
// in.
#pragma once

#include "qdclgl/server/db/database.h"
#include "qdclgl/server/periods/calendar.h"

namespace qdclgl::server {

// Amounts and totals up to this can be added in any order without leaving the range of the books'
// whole numbers: half of what 64 bits hold.
inline constexpr std::int64_t kLargestTotal = INT64_MAX / 2;

// Balances count quantities in millionths.
inline constexpr double kQuantityScale = 1e6;

enum class Direction { kPost, kUnPost };

// Adds the lines of a stored voucher to the balances of a period, or takes them out. TooLarge,
// naming the account, for a balance beyond kLargestTotal.
void MoveBalances(Database& db, Long voucher_id, AccountingPeriod period, Direction direction);

}  // namespace qdclgl::server
