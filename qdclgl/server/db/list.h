// Lists: rows of the books as recordsets, filtered and sorted in the language of filter.h.
#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/server/db/columns.h"
#include "qdclgl/server/db/filter.h"

namespace qdclgl::server {

// Lists hold what is marked deleted only with this bit of ListOptions.
inline constexpr Long kWithDeleted = 1;

// The rows of a list from the one at `first` on, counted from 0, and at most so many.
struct Page {
  Long first = 0;
  Long count = 0;
};

// The values of a statement's placeholders.
void SetAll(Statement& statement, std::span<const BoundValue> values);

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
                         std::string_view sort, std::span<const BoundValue> values = {},
                         const std::optional<Page>& page = {});

}  // namespace qdclgl::server
