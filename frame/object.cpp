#include "frame/object.h"

#include "frame/class_table.h"

namespace qdclgl {

Variant Object::Invoke(std::string_view name, CallKind kind, std::span<Argument> arguments) {
  const ClassTable* members = Members();
  if (members == nullptr) {
    throw Error(error_number::kMemberNotFound, std::string(ClassName()),
                "No member " + std::string(name) + ".");
  }
  return members->Invoke(*this, name, kind, arguments);
}

Variant Object::DefaultValue() {
  const ClassTable* members = Members();
  const Member* member = members != nullptr ? members->default_member() : nullptr;
  if (member == nullptr || !member->parameters.empty()) {
    throw Error(error_number::kMemberNotFound, std::string(ClassName()),
                "The object has no default value.");
  }
  return members->Invoke(*this, *member, CallKind::kMethod | CallKind::kGet, {});
}

}  // namespace qdclgl
