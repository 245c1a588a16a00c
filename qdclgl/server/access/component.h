// What every component of this server tells of itself: its ProgID, what each of its methods asks of
// the caller, and the list that it gives. Callers' rights, the command line's lists and the tables
// of docs/server.md all come from here.
#pragma once

#include <functional>
#include <span>
#include <string_view>

#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/server/access/session.h"

namespace qdclgl::server {

struct MethodRight {
  std::string_view method;
  Right right;
};

// A list of the books that people ask for by a name, and which of its columns they see first.
struct NamedList {
  std::string_view name;  // "currencies"
  std::string_view help;
  std::string_view columns;  // "FNumber FName"
};

struct ServerComponent {
  std::string_view prog_id;
  const ClassTable* table;
  std::function<Ref<Object>()> make;
  std::span<const MethodRight> rights = {};  // what is not among them is open to everybody
  const NamedList* list = nullptr;           // what GetList gives
};

// What a method of a component asks of its caller, from the class's kRights. A name that is not
// there does not compile.
template <class Component>
consteval Right RightTo(std::string_view method) {
  for (const MethodRight& row : Component::kRights) {
    if (row.method == method) return row.right;
  }
  throw "no such method";
}

// A component of a class of its own, which has a kProgID, kRights where there are any, and a kList
// where GetList gives a list that people ask for.
template <class Component>
ServerComponent ComponentOf() {
  ServerComponent component{Component::kProgID, &Component::Table(),
                            [] { return Ref<Object>(Make<Component>()); }};
  if constexpr (requires { Component::kRights; }) component.rights = Component::kRights;
  if constexpr (requires { Component::kList; }) component.list = &Component::kList;
  return component;
}

}  // namespace qdclgl::server
