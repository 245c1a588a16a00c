// The dispatch ids of members: a member's place in the interface, but for the two that automation
// knows by ids of their own. A parameter's id is its place from 0.
#pragma once

#include <algorithm>

#include "qdclgl/automation/com.h"
#include "qdclgl/frame/containers/vector.h"
#include "qdclgl/frame/objects/class_table.h"
#include "qdclgl/frame/objects/enumeration.h"

namespace qdclgl::automation {

// The member that For Each asks for an enumerator.
inline bool IsEnumeration(const ClassMember& member) {
  return member.row.type == Enumerator::kClassName && member.parameters.empty();
}

// Whether the Vector that a member returns is an array to its callers.
inline bool AnswersArray(const ClassMember& member) {
  return member.row.options.array_dimensions > 0 && member.row.type == Vector::kClassName;
}

inline DISPID IdOfMember(const ClassMember& member) {
  if (member.row.options.is_default_member) return DISPID_VALUE;
  return IsEnumeration(member) ? DISPID_NEWENUM : member.ordinal;
}

// Null when the class has no such member.
inline const ClassMember* MemberOfId(const ClassTable& table, DISPID id) {
  const std::vector<ClassMember>& members = table.members();
  if (id > 0 && static_cast<std::size_t>(id) <= members.size()) {
    return &members[static_cast<std::size_t>(id - 1)];
  }
  if (id == DISPID_VALUE) return table.default_member();
  if (id != DISPID_NEWENUM) return nullptr;
  const auto found = std::find_if(members.begin(), members.end(), IsEnumeration);
  return found != members.end() ? &*found : nullptr;
}

}  // namespace qdclgl::automation
