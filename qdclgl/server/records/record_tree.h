// Records that form a tree: each has the id of the one above it in FParentID, 0 where there is
// none, and is a detail record (FDetail) while it has none below.
#pragma once

#include <string_view>

#include "qdclgl/frame/values/values.h"
#include "qdclgl/server/db/database.h"

namespace qdclgl::server {

struct RecordTree {
  std::string_view table, id;
  std::string_view deleted;       // the column that marks a record deleted
  std::string_view heading = {};  // one that keeps a record from being a detail record

  bool HasBelow(Database& db, Long record, bool deleted_too) const;
  // Of a record whose records below have changed; 0 is none.
  void KeepDetailFlag(Database& db, Long record) const;
};

}  // namespace qdclgl::server
