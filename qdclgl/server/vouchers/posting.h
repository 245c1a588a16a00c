// The balances of accounts: what each posted line adds to the account, currency and period it is
// in, and on an account that asks for items to those that it names. Beside them the posted lines
// themselves, by account and day.
#pragma once

#include "qdclgl/server/db/database.h"
#include "qdclgl/server/periods/calendar.h"

namespace qdclgl::server {

enum class Direction { kPost, kUnPost };

// Adds the lines of a stored voucher, which is called `name`, to the balances of a period, or takes
// them out. TooLarge when everything posted would not add up any more (line_size.h).
void MoveBalances(Database& db, Long voucher_id, const std::string& name, AccountingPeriod period,
                  Direction direction);

// The balances by items of books that have none yet, out of all that is posted.
void MakeItemBalances(Database& db);

}  // namespace qdclgl::server
