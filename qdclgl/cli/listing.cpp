#include "qdclgl/cli/listing.h"

#include <algorithm>
#include <vector>

#include "qdclgl/frame/containers/dictionary.h"
#include "qdclgl/frame/session/server_gateway.h"
#include "qdclgl/frame/vocabulary/text.h"
#include "qdclgl/server/db/list.h"
#include "qdclgl/server/db/refusals.h"
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

namespace {

Ref<Recordset> FetchPage(const server::ServerComponent& component, const std::string& props,
                         const ListQuery& query, const Variant& page) {
  std::vector<Argument> arguments;
  for (const MemberParameter& parameter : component.table->Find("GetList")->parameters) {
    if (parameter.name == "PropsString") arguments.emplace_back(props);
    else if (parameter.name == "ListOptions")
      arguments.emplace_back(query.with_deleted ? server::kWithDeleted : Long{0});
    else if (parameter.name == "Filter") arguments.emplace_back(query.filter);
    else if (parameter.name == "Sort") arguments.emplace_back(query.sort);
    else if (parameter.name == "ItemClassID") arguments.emplace_back(query.item_class);
    else if (parameter.name == "Page") arguments.emplace_back(page);
    else if (parameter.optional) arguments.emplace_back(Missing);
    else arguments.emplace_back(Long{0});
  }
  return CreateObject(component.prog_id)
      ->Invoke("GetList", CallKind::kMethod, arguments)
      .As<Recordset>();
}

// The row with that id, deleted or not.
Ref<Dictionary> RowWithId(const server::ServerComponent& component, const std::string& props,
                          const ListQuery& query, Long id) {
  auto no_row = Make<Dictionary>();
  no_row->Put("Count", Long{0});
  ListQuery one{.item_class = query.item_class, .with_deleted = true};
  const String column = FetchPage(component, props, one, Variant(no_row))->FieldName(0);
  one.filter = column + " = " + std::to_string(id);
  const Ref<Recordset> rows = FetchPage(component, props, one, Missing);
  if (rows->Eof()) {
    throw Error(server::refusal::kNotFound, "qdclgl",
                "The list " + std::string(component.list->name) + " has no row with the id " +
                    std::to_string(id) + ".");
  }
  return rows->Row();
}

}  // namespace

Ref<Recordset> FetchList(const server::ServerComponent& component, const std::string& props,
                         const ListQuery& query) {
  auto page = Make<Dictionary>();
  if (query.limit != 0) page->Put("Count", query.limit);
  if (query.after != 0) {
    page->Put("Behind", Variant(RowWithId(component, props, query, query.after)));
  }
  return FetchPage(component, props, query, page->size() == 0 ? Missing : Variant(page));
}

}  // namespace qdclgl::cli
