// A public class as late-bound callers see it: its members by name, built from its rows.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "frame/members.h"

namespace qdclgl {

struct Parameter {
  std::string name;
  std::string_view type;
  bool by_ref = false;
  bool optional = false;
  std::string default_text;  // as the API table shows it; empty without a default
  Variant default_value;     // Missing without a default
};

struct Member {
  MemberRow row;
  int ordinal;  // place in the interface, from 1
  std::vector<Parameter> parameters;
};

class ClassTable {
 public:
  // Error 5 with a description when a row's parameter list can't be read or a name stands twice.
  explicit ClassTable(const ClassDescription& description);

  std::string_view name() const { return description_.name; }
  std::string_view help() const { return description_.help; }
  bool takes_context() const { return description_.takes_context; }
  bool creatable() const { return description_.create != nullptr; }
  // Error 429 for a class that callers can't create.
  Ref<Object> Create() const;

  // In interface order.
  const std::vector<Member>& members() const { return members_; }
  // Case is ignored. Null when there is none.
  const Member* Find(std::string_view name) const;
  const Member* default_member() const { return default_member_; }

  // Calls a member of `self`, an object of this class; see Object::Invoke.
  Variant Invoke(Object& self, std::string_view name, CallKind kind,
                 std::span<Argument> arguments) const;
  Variant Invoke(Object& self, const Member& member, CallKind kind,
                 std::span<Argument> arguments) const;

 private:
  struct Slot {
    std::uint32_t hash = 0;
    std::int32_t member = -1;
  };

  ClassDescription description_;
  std::vector<Member> members_;
  std::vector<Slot> slots_;  // open addressing, a power of two
  const Member* default_member_ = nullptr;
};

}  // namespace qdclgl
