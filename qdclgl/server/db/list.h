// Lists: rows of the books as recordsets, filtered and sorted in the language of filter.h.
#pragma once

#include <limits>
#include <optional>
#include <span>
#include <string_view>

#include "qdclgl/frame/containers/dictionary.h"
#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/server/db/columns.h"
#include "qdclgl/server/db/filter.h"

namespace qdclgl::server {

// Lists hold what is marked deleted only with this bit of ListOptions.
inline constexpr Long kWithDeleted = 1;

// A part of a list: the rows behind a row of it, or from the beginning on, without the `first` ones
// of these, and at most so many. A row is told by its values: it may have gone since, and what came
// or went before it moves nothing.
struct Page {
  Long first = 0;
  Long count = std::numeric_limits<Long>::max();
  Ref<Dictionary> behind = {};
};

// What help texts say of the argument that asks for one.
#define QDCLGL_PAGE_KEYS                                                                    \
  "a Dictionary with any of the keys Count, the most rows that come, Behind, a row of the " \
  "list, behind which it goes on, such as the last one of the page before, passed back as " \
  "it came, and First, the number of the first row from 1."
#define QDCLGL_PAGE_HELP "Page asks for a part of the list: " QDCLGL_PAGE_KEYS

// The page that a caller asks for by a Dictionary with any of the keys First, counted from 1, Count
// and Behind; nothing, which is the whole list, without one. BadValue.
std::optional<Page> PageIn(const Variant& asked);

// Gives the placeholders of a statement from `position` on their values, and tells the one behind
// them.
std::size_t SetAll(Statement& statement, std::span<const BoundValue> values,
                   std::size_t position = 0);

// What a list is made of. The columns are those of the recordset, and those that filter and sort
// may name.
struct ListSource {
  std::string_view query;  // a SELECT that has the columns under their names
  std::span<const Column> columns;
  // The order of rows that the sort leaves open: columns in which no two rows are alike.
  std::string_view order;
  // The same SELECT, made to go along an index that begins with the column that the sort begins
  // with, where the database would read all rows and sort them for a page of few. Otherwise empty.
  std::string_view walk = {};
};

// What the list is sorted by at first.
std::string_view FirstSorted(const ListSource& source, std::string_view sort);

// The rows of the list that meet the filter, sorted. `values` are those of the query's own
// placeholders. BadFilter, BadSort; BadValue for a page behind a row that lacks a column by which
// the list is sorted.
Ref<Recordset> FetchList(Database& db, const ListSource& source, std::string_view filter,
                         std::string_view sort, std::span<const BoundValue> values = {},
                         const std::optional<Page>& page = {});

}  // namespace qdclgl::server
