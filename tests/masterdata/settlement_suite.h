// The declarations by which the dictionaries of settlement take part in the suites of all entities
// and sets.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "qdclgl/masterdata/settlement.h"
#include "tests/support/columns.h"
#include "tests/support/recording_server.h"
#include "tests/support/set_suite.h"

namespace qdclgl::testing {

template <class Entity>
std::string InfoOf() {
  const std::string name(Entity::kClassName);
  return "QDSVGL" + name + "." + name + "Info";
}

template <class Entity>
EntityCase SettlementCase() {
  const std::string name(Entity::kClassName);
  return EntityCaseOf<Entity>(&Entity::ItemID,
                              static_cast<void (SettlementEntity::*)(String)>(&Entity::Name),
                              {.info_component = InfoOf<Entity>(),
                               .update_component = "QDSVGL" + name + "." + name + "Update",
                               .id_member = "ItemID",
                               .id_key = "FItemID",
                               .text_member = "Name",
                               .text_key = "FName"});
}

// One of a set whose ExistenceCheck asks the server for nothing too.
template <class Set, class Entity>
SetCase SettlementSetCase() {
  return SetCaseOf<Set>(
      SettlementCase<Entity>(),
      {.exists_by_nothing = "ExistenceCheck(\"props\", Name:=ref Variant Missing)",
       .exists_of_nothing = "7",
       .walked_class = "Currencyx",
       .item_is_default = false});
}

// A member that reads and writes one key.
template <class View, class T, class Base>
Column<View> SettlementColumn(const char* name, const char* key, T (Base::*read)() const,
                              void (Base::*write)(T)) {
  return WritableColumn<T, View>(name, key, read, write, Zero::kIsStored);
}

// Everything that one can see of an entity.
inline std::string StateOf(const SettlementEntity& entity) {
  return "id " + std::to_string(entity.ItemID()) + " " + State(static_cast<const RowView&>(entity));
}

}  // namespace qdclgl::testing
