#include "python/core/incoming_call.h"

#include <cstring>
#include <memory_resource>

#include "python/core/crossing.h"
#include "python/core/errors.h"
#include "python/core/known.h"
#include "python/core/member_text.h"
#include "qdclgl/frame/vocabulary/text.h"

namespace qdclgl::python {

namespace {

class Arguments {
 public:
  // With room for so many, which stay where they are.
  Arguments(const ClassMember& member, std::size_t count) : member_(member), count_(count) {
    arguments_.reserve(count);
  }

  void Add(PyObject* value) { arguments_.push_back(Taken(value, TypeAt(arguments_.size()))); }
  void Add(std::string_view name, PyObject* value) {
    names_.reserve(count_);
    const std::string& kept = names_.emplace_back(name);
    arguments_.push_back(Argument(Named(std::string_view(kept), Taken(value, TypeOf(name)))));
  }
  void AddPut(PyObject* value) {
    arguments_.push_back(FromPython(value, IsObjectWord(member_.row.PutType())));
  }

  std::span<Argument> get() { return arguments_; }

  // Hands back what the member has written into the variables that were given by reference.
  void WriteBack() const {
    for (const Variable& variable : variables_) {
      if (std::memcmp(static_cast<const void*>(&variable.given), &variable.now, sizeof(Variant)) ==
          0) {
        continue;
      }
      Checked(
          PyObject_SetAttrString(variable.reference.get(), "value", ToPython(variable.now).get()));
    }
  }

 private:
  struct Variable {
    PyRef reference;
    Variant given, now;
  };

  std::string_view TypeAt(std::size_t place) const {
    return place < member_.parameters.size() ? member_.parameters[place].type : "Variant";
  }
  std::string_view TypeOf(std::string_view name) const {
    for (const MemberParameter& parameter : member_.parameters) {
      if (EqualsIgnoringAsciiCase(parameter.name, name)) return parameter.type;
    }
    return "Variant";
  }

  Argument Taken(PyObject* value, std::string_view type) {
    const bool wants_object = IsObjectWord(type);
    if (!IsOf(value, TheKnown().ref)) return FromPython(value, wants_object);
    const Variant given = FromPython(Attribute(value, "value").get(), wants_object);
    variables_.reserve(count_);
    variables_.push_back({PyRef::Share(value), given, given});
    return Argument(Reference(&variables_.back().now));
  }

  const ClassMember& member_;
  const std::size_t count_;
  std::vector<Variable> variables_;
  std::vector<std::string> names_;
  // Few arguments take no memory of the heap.
  alignas(Argument) std::byte room_[4 * sizeof(Argument)];
  std::pmr::monotonic_buffer_resource memory_{room_, sizeof room_};
  std::pmr::vector<Argument> arguments_{&memory_};
};

bool IsOfArguments(const Error& error) {
  using namespace error_number;
  return error.number() == kNamedArgumentNotFound || error.number() == kArgumentNotOptional ||
         error.number() == kWrongArgumentCount;
}

// Calls a member that is known, without looking for its name. What has no members of its own here
// stands before what does, and is asked by name.
Variant Invoked(Object& self, const ClassMember& member, CallKind kind,
                std::span<Argument> arguments) {
  const ClassTable* table = self.Members();
  if (table == nullptr) return self.Invoke(member.row.name, kind, arguments);
  self.CheckThread();
  return table->Invoke(self, member, kind, arguments);
}

// Whether a member of an object can be called as it stands in the row.
bool IsPlain(const Object& self, const ClassMember& member, Invoker invoker) {
  return invoker != nullptr && member.parameters.empty() && self.Members() != nullptr;
}
Variant Plain(Object& self, Invoker invoker, Argument* put) {
  self.CheckThread();
  const Ref<Object> held(&self);
  return invoker(self, put);
}

CallKind PutKind(const Argument& value) {
  return value.Value().IsObject() ? CallKind::kSet : CallKind::kLet;
}

}  // namespace

std::size_t Given::named() const {
  return names == nullptr ? 0 : static_cast<std::size_t>(PyTuple_Size(names));
}

PyRef CallMember(Object& self, const ClassMember& member, const Given& given) {
  Arguments arguments(member, given.positional + given.named());
  // The value of a put is the last argument, or the one of that name.
  PyObject* put = nullptr;
  std::size_t positional = given.positional;
  if (IsPutByCall(member) && positional == member.parameters.size() + 1) {
    put = given.values[--positional];
  }
  for (std::size_t i = 0; i < positional; ++i) arguments.Add(given.values[i]);
  std::vector<std::pair<std::string, PyObject*>> named;
  for (std::size_t i = 0; i < given.named(); ++i) {
    const std::string name = FromText(PyTuple_GetItem(given.names, static_cast<Py_ssize_t>(i)));
    PyObject* value = given.values[given.positional + i];
    if (IsPutByCall(member) && put == nullptr && name == kValueParameter) {
      put = value;
    } else {
      named.emplace_back(RowName(name), value);
    }
  }
  if (put == Py_Ellipsis) put = nullptr;
  if (put != nullptr) arguments.AddPut(put);
  const CallKind kind =
      put != nullptr ? PutKind(arguments.get().back()) : CallKind::kMethod | CallKind::kGet;
  for (const auto& [name, value] : named) arguments.Add(name, value);

  Variant result;
  try {
    result = Invoked(self, member, kind, arguments.get());
  } catch (const Error& error) {
    if (!IsOfArguments(error) || !error.description().empty()) throw;
    throw Error(error.number(), std::string(self.ClassName()),
                "The member is called as " + SignatureOf(member) + ".");
  }
  arguments.WriteBack();
  return ToPython(result);
}

PyRef GetMember(Object& self, const ClassMember& member, std::span<PyObject* const> keys) {
  if (keys.empty()) {
    return ToPython(IsPlain(self, member, member.row.get)
                        ? Plain(self, member.row.get, nullptr)
                        : Invoked(self, member, CallKind::kGet, {}));
  }
  Arguments arguments(member, keys.size());
  for (PyObject* key : keys) arguments.Add(key);
  return ToPython(Invoked(self, member, CallKind::kGet, arguments.get()));
}

void PutMember(Object& self, const ClassMember& member, std::span<PyObject* const> keys,
               PyObject* value) {
  if (keys.empty()) {
    Argument put(FromPython(value, IsObjectWord(member.row.PutType())));
    const CallKind kind = PutKind(put);
    if (kind == CallKind::kLet && IsPlain(self, member, member.row.let)) {
      Plain(self, member.row.let, &put);
    } else {
      Invoked(self, member, kind, {&put, 1});
    }
    return;
  }
  Arguments arguments(member, keys.size() + 1);
  for (PyObject* key : keys) arguments.Add(key);
  arguments.AddPut(value);
  Invoked(self, member, PutKind(arguments.get().back()), arguments.get());
}

}  // namespace qdclgl::python
