// Lists of items with the fields of their class, filtered and sorted, whole or a page of them.
#pragma once

#include <optional>
#include <string_view>

#include "qdclgl/server/db/list.h"

namespace qdclgl::server {

struct ItemQuery {
  Long item_class = 0;  // 0: of all classes, without fields
  bool with_deleted = false;
  std::string_view filter = {}, sort = {};
  Long item = 0;  // that one alone, otherwise 0
  std::optional<Page> page = {};
};

// BadFilter, BadSort.
Ref<Recordset> ListItems(Database& db, const ItemQuery& query);

}  // namespace qdclgl::server
