// The balances of accounts: what each posted line adds to the account, currency and period it is
// in.
#pragma once

#include "qdclgl/server/db/database.h"
#include "qdclgl/server/periods/calendar.h"

namespace qdclgl::server {

enum class Direction { kPost, kUnPost };

// Adds the lines of a stored voucher, which is called `name`, to the balances of a period, or takes
// them out. TooLarge when everything posted would not add up any more (line_size.h).
void MoveBalances(Database& db, Long voucher_id, const std::string& name, AccountingPeriod period,
                  Direction direction);

}  // namespace qdclgl::server
