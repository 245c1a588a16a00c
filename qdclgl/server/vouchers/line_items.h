// The items that lines of vouchers name: those that count are of the classes that the lines'
// accounts ask for.
#pragma once

#include <map>
#include <string>
#include <string_view>

#include "qdclgl/server/db/database.h"

namespace qdclgl::server {

// An item of each class, both by their ids.
using LineItems = std::map<Long, Long>;

// "1:5,3:7"
std::string TextOf(const LineItems& items);

// A SELECT of FVoucherID, FEntryID, FItemClassID and FItemID, in this order of rows, for the lines
// `e` that meet the condition. Lines that are older than the rules of items may name several items
// of a class, or one that there isn't: then one of them counts, or none.
std::string LineItemsQuery(std::string_view condition);

// What the lines of a voucher name, by their numbers.
std::map<Long, LineItems> ItemsOfLines(Database& db, Long voucher_id);

// The id under which balances are kept of lines that name these items; it is given here, when there
// is none yet. Postings alone do so, one after the other.
Long CombinationOf(Database& db, const LineItems& items);

}  // namespace qdclgl::server
