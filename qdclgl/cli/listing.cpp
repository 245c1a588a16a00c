#include "qdclgl/cli/listing.h"

#include <algorithm>
#include <vector>

#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/db/list.h"
#include "qdclgl/server/server.h"

namespace qdclgl::cli {

std::span<const server::ServerComponent* const> Lists() {
  static const std::vector<const server::ServerComponent*> kLists = [] {
    std::vector<const server::ServerComponent*> lists;
    for (const server::ServerComponent& component : server::ServerComponents()) {
      if (component.list != nullptr) lists.push_back(&component);
    }
    std::ranges::sort(lists, {}, [](const auto* component) { return component->list->name; });
    return lists;
  }();
  return kLists;
}

const server::ServerComponent* FindList(std::string_view name) {
  for (const server::ServerComponent* component : Lists()) {
    if (EqualsIgnoringAsciiCase(component->list->name, name)) return component;
  }
  return nullptr;
}

Ref<Recordset> FetchList(const server::ServerComponent& component, const std::string& props,
                         const ListQuery& query) {
  std::vector<Argument> arguments;
  for (const MemberParameter& parameter : component.table->Find("GetList")->parameters) {
    if (parameter.name == "PropsString") arguments.emplace_back(props);
    else if (parameter.name == "ListOptions")
      arguments.emplace_back(query.with_deleted ? server::kWithDeleted : Long{0});
    else if (parameter.name == "Filter") arguments.emplace_back(query.filter);
    else if (parameter.name == "Sort") arguments.emplace_back(query.sort);
    else if (parameter.name == "ItemClassID") arguments.emplace_back(query.item_class);
    else if (parameter.optional) arguments.emplace_back(Missing);
    else arguments.emplace_back(Long{0});
  }
  return CreateObject(component.prog_id)
      ->Invoke("GetList", CallKind::kMethod, arguments)
      .As<Recordset>();
}

}  // namespace qdclgl::cli
