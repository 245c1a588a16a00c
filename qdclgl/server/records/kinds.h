// The kinds of master data that there are.
#pragma once

#include <span>

#include "qdclgl/server/records/master_data.h"

namespace qdclgl::server {

// By the name of their files.
std::span<const MasterData* const> MasterDataKinds();

}  // namespace qdclgl::server
