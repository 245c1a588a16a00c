// Lists: rows of the books as recordsets, filtered and sorted in the language of filter.h.
#pragma once

#include <span>
#include <string_view>

#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/server/db/columns.h"
#include "qdclgl/server/db/filter.h"

namespace qdclgl::server {

// Lists hold what is marked deleted only with this bit of ListOptions.
inline constexpr Long kWithDeleted = 1;

// What a list is made of. The columns are those of the recordset, and those that filter and sort
// may name.
struct ListSource {
  std::string_view query;  // a SELECT that has the columns under their names
  std::span<const Column> columns;
  std::string_view order;  // the order of rows that the sort leaves open
};

// The rows of the list that meet the filter, sorted. `values` are those of the query's own
// placeholders. BadFilter, BadSort.
Ref<Recordset> FetchList(Database& db, const ListSource& source, std::string_view filter,
                         std::string_view sort, std::span<const BoundValue> values = {});

}  // namespace qdclgl::server
