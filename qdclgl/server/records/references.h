// References: columns that hold ids of records of another kind, as descriptions declare them
// (Referred). From the declaration alone it follows that a save refuses an id that it brings in and
// that is no record in use; that a record is not removed while something refers to it; and that the
// check of the books finds what leads nowhere. Saves of records and removals exclude each other by
// their transactions, and so do saves of vouchers and removals.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "qdclgl/server/records/master_data.h"

namespace qdclgl::server {

// Those of voucher lines, by column. (Accounts, currencies and groups have rules of their own.)
using ReferringColumn = std::pair<std::string_view, Referred>;
std::span<const ReferringColumn> LineReferences();

// A column of the books that holds ids.
struct Reference {
  std::string_view subject, noun;  // of the record whose row it is: "SettType", "settlement type"
  std::string_view table;
  std::string_view id;  // the column of the table that names that record
  std::string_view column;
  Referred refers;
  const MasterData* owner = nullptr;  // the record's kind, null for vouchers
  // The record's name; its noun goes before it in sentences.
  std::function<std::string(Database& db, Long id)> name_of;
};

// All that there are.
const std::vector<Reference>& References();

// Why `id` can't be brought in under `column`: "there is no currency 7 in use.". Nothing when it
// can.
std::optional<std::string> ReasonAgainst(Database& db, const Referred& refers,
                                         std::string_view column, Long id);

// What refers to a record, other than itself: "account 1000 (Cash)". Nothing when nothing does.
std::optional<std::string> ReferrerOf(Database& db, const MasterData& kind, Long id);

// The ids in those columns of a record's lists that refer to something.
using HeldIds = std::map<const ReferringColumn*, std::set<Long>>;
HeldIds IdsInLists(Database& db, const MasterData& kind, Long id);

}  // namespace qdclgl::server
