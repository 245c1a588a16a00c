// Everything in the books whose whole life is on the trail, read alike: vouchers and the kinds of
// master data. (Settings are one record of their own, see periods/settings.h.)
#pragma once

#include <functional>
#include <map>
#include <string_view>
#include <vector>

#include "qdclgl/server/records/master_data.h"

namespace qdclgl::server {

struct TrailedKind {
  std::string_view subject;
  std::string_view table, id;
  // The records with ids from `first` to `last`.
  std::function<std::map<Long, TrailedRecord>(Database& db, Long first, Long last)> read;
};

const std::vector<TrailedKind>& TrailedKinds();

}  // namespace qdclgl::server
