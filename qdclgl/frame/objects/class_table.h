// A public class as late-bound callers see it: its members by name, built from its rows.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "qdclgl/frame/objects/members.h"

namespace qdclgl {

struct MemberParameter {
  std::string name;
  std::string_view type;
  bool by_ref = false;
  bool optional = false;
  std::string default_text;  // as the API table shows it; empty without a default
  Variant default_value;     // Missing without a default
};

struct ClassMember {
  MemberRow row;
  int ordinal;  // place in the interface, from 1
  std::vector<MemberParameter> parameters;
};

// A call of a member whose arguments stand in their places: one for each parameter, and the value
// behind them where one is put.
class BoundCall {
 public:
  BoundCall(Invoker invoke, std::span<Argument> in_place) : invoke_(invoke), in_place_(in_place) {}
  BoundCall(Invoker invoke, std::vector<Argument> arranged)
      : invoke_(invoke), arranged_(std::move(arranged)) {}

  std::span<Argument> arguments() { return arranged_.empty() ? in_place_ : arranged_; }
  // Errors: 13 and 6 for an argument that doesn't convert, and what the member raises.
  // The object outlives the call, whatever the member releases.
  Variant Invoke(Object& self) {
    const Ref<Object> held(&self);
    return invoke_(self, arguments().data());
  }

 private:
  Invoker invoke_;
  std::span<Argument> in_place_;
  std::vector<Argument> arranged_;
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
  const std::vector<ClassMember>& members() const { return members_; }
  // Case is ignored. Null when there is none.
  const ClassMember* Find(std::string_view name) const;
  const ClassMember* default_member() const { return default_member_; }

  // Calls a member of `self`, an object of this class; see Object::Invoke.
  Variant Invoke(Object& self, std::string_view name, CallKind kind,
                 std::span<Argument> arguments) const;
  Variant Invoke(Object& self, const ClassMember& member, CallKind kind,
                 std::span<Argument> arguments) const;

  // The first half of Invoke, for callers that must know whether the call itself or what was called
  // has failed. Errors: 438, 448, 449, 450 as told at Object::Invoke. `arguments` must outlive the
  // result.
  BoundCall Bind(const ClassMember& member, CallKind kind, std::span<Argument> arguments) const;

 private:
  struct Slot {
    std::uint32_t hash = 0;
    std::int32_t member = -1;
  };

  ClassDescription description_;
  std::vector<ClassMember> members_;
  std::vector<Slot> slots_;  // open addressing, a power of two
  const ClassMember* default_member_ = nullptr;
};

}  // namespace qdclgl
