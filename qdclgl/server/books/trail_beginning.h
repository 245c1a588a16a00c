// Where the trail of books begins to hold everything: as they are made, and as they are upgraded
// from a version whose trail did not.
#pragma once

#include <string_view>

#include "qdclgl/server/access/login.h"
#include "qdclgl/server/books/trailed_kinds.h"

namespace qdclgl::server {

// Links the rows that the trail has, writes the whole of every record as it stands behind them as a
// deed of this name, and seals all of it; in a transaction that changes rules.
void BeginTrail(const Caller& caller, std::string_view action);
// The same for the records of one kind, where the trail has begun.
void TrailRecords(const Caller& caller, std::string_view action, const TrailedKind& kind);
// Whether that was done.
bool HasTrailBegun(Database& db);

}  // namespace qdclgl::server
