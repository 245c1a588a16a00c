// Where the trail of books begins to hold everything: as they are made, and as they are upgraded
// from a version whose trail did not.
#pragma once

#include <string_view>
#include <vector>

#include "qdclgl/server/access/login.h"
#include "qdclgl/server/books/trailed_kinds.h"

namespace qdclgl::server {

// Links the rows that the trail has, writes the whole of every record as it stands behind them as a
// deed of this name, and seals all of it; in a transaction that changes rules.
void BeginTrail(const Caller& caller, std::string_view action);
// Whether that was done.
bool HasTrailBegun(Database& db);

// The kinds that the books have no table for yet: an upgrade will bring them, some with records.
std::vector<const TrailedKind*> KindsToCome(Database& db);
// Begins the trail of kinds that an upgrade has brought, the whole of each record as a deed of this
// name.
void TrailWhole(const Caller& caller, std::string_view action,
                const std::vector<const TrailedKind*>& kinds);

}  // namespace qdclgl::server
