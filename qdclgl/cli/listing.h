// Lists of the server: what a component's GetList gives.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "qdclgl/frame/containers/recordset.h"
#include "qdclgl/server/access/component.h"

namespace qdclgl::cli {

// The components that have a list, by its name.
std::span<const server::ServerComponent* const> Lists();
// Null when there is none; case is ignored.
const server::ServerComponent* FindList(std::string_view name);

struct ListQuery {
  std::string filter = {};
  std::string sort = {};
  Long item_class = 0;        // of a list that knows classes of items
  bool with_deleted = false;  // where a list leaves out what is marked deleted
  Long limit = 0;             // at most so many rows; all with 0
  Long after = 0;             // behind the row with this id; from the beginning on with 0
};

// The rows' own ids stand in the first column. NotFound for an id to go on behind that no row has.

Ref<Recordset> FetchList(const server::ServerComponent& component, const std::string& props,
                         const ListQuery& query);

}  // namespace qdclgl::cli
