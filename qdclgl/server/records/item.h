// Items: the records of item classes, a tree within each class.
#pragma once

#include "qdclgl/server/records/record_save.h"

namespace qdclgl::server {

const MasterData& Items();

// An item with the fields of its class, Nothing when there is none.
Ref<Dictionary> ReadItem(Database& db, Long id);

// The components that clients know items by, and sub-messages with them.
std::vector<ServerComponent> ItemComponents();

}  // namespace qdclgl::server
