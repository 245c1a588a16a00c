#include "python/core/incoming_call.h"

#include <cstring>

#include "python/core/crossing.h"
#include "python/core/errors.h"
#include "python/core/known.h"
#include "python/core/member_text.h"
#include "qdclgl/frame/vocabulary/text.h"

namespace qdclgl::python {

namespace {

class Arguments {
 public:
  explicit Arguments(const ClassMember& member) : member_(member) {}

  void Add(PyObject* value) { arguments_.push_back(Taken(value, TypeAt(arguments_.size()))); }
  void Add(std::string_view name, PyObject* value) {
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
    variables_.push_back({PyRef::Share(value), given, given});
    return Argument(Reference(&variables_.back().now));
  }

  const ClassMember& member_;
  std::deque<Variable> variables_;  // which stay where they are
  std::deque<std::string> names_;
  std::vector<Argument> arguments_;
};

bool IsOfArguments(const Error& error) {
  using namespace error_number;
  return error.number() == kNamedArgumentNotFound || error.number() == kArgumentNotOptional ||
         error.number() == kWrongArgumentCount;
}

CallKind PutKind(const Argument& value) {
  return value.Value().IsObject() ? CallKind::kSet : CallKind::kLet;
}

}  // namespace

std::size_t Given::named() const {
  return names == nullptr ? 0 : static_cast<std::size_t>(PyTuple_Size(names));
}

PyRef CallMember(Object& self, const ClassMember& member, const Given& given) {
  Arguments arguments(member);
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
    result = self.Invoke(member.row.name, kind, arguments.get());
  } catch (const Error& error) {
    if (!IsOfArguments(error) || !error.description().empty()) throw;
    throw Error(error.number(), std::string(self.ClassName()),
                "The member is called as " + SignatureOf(member) + ".");
  }
  arguments.WriteBack();
  return ToPython(result);
}

PyRef GetMember(Object& self, const ClassMember& member, std::span<PyObject* const> keys) {
  Arguments arguments(member);
  for (PyObject* key : keys) arguments.Add(key);
  return ToPython(self.Invoke(member.row.name, CallKind::kGet, arguments.get()));
}

void PutMember(Object& self, const ClassMember& member, std::span<PyObject* const> keys,
               PyObject* value) {
  Arguments arguments(member);
  for (PyObject* key : keys) arguments.Add(key);
  arguments.AddPut(value);
  self.Invoke(member.row.name, PutKind(arguments.get().back()), arguments.get());
}

}  // namespace qdclgl::python
