#include "qdclgl/automation/creatable_classes.h"

#include <algorithm>
#include <vector>

#include "qdclgl/automation/identity.h"
#include "qdclgl/automation/served_classes.h"
#include "qdclgl/server/server.h"

namespace qdclgl::automation {

std::span<const CreatableClass> CreatableClasses() {
  static const std::vector<CreatableClass> kClasses = [] {
    std::vector<CreatableClass> all;
    for (const ServedClass& served : ServedClasses()) {
      const ClassTable* table = served.table;
      if (!table->creatable()) continue;
      all.push_back({served.prog_id, served.class_id, table->help(), served.yields, true,
                     [table] { return table->Create(); }});
    }
    for (const server::ServerComponent& component : server::ServerComponents()) {
      const std::string prog_id(component.prog_id);
      all.push_back(
          {prog_id, IdOfName(prog_id), component.table->help(), true, false, component.make});
    }
    return all;
  }();
  return kClasses;
}

const CreatableClass* FindCreatableById(REFCLSID class_id) {
  const auto classes = CreatableClasses();
  const auto found = std::ranges::find_if(
      classes, [&](const CreatableClass& creatable) { return creatable.class_id == class_id; });
  return found != classes.end() ? &*found : nullptr;
}

}  // namespace qdclgl::automation
