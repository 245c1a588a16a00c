#include "python/core/foreign.h"

#include <algorithm>
#include <vector>

#include "python/core/crossing.h"
#include "python/core/errors.h"
#include "python/core/gil.h"
#include "python/core/known.h"
#include "qdclgl/frame/objects/nesting.h"
#include "qdclgl/frame/vocabulary/text.h"

namespace qdclgl::python {

namespace {

// The stack that Python takes for a call is not ours to know.
constexpr int kLevelsOfACall = kDeepestNesting / 100;

// The arguments of a call on their way out, and back where they go by reference.
class Outgoing {
 public:
  explicit Outgoing(std::span<Argument> arguments)
      : positional_(PyRef::Take(PyList_New(0))), named_(PyRef::Take(PyDict_New())) {
    for (Argument& argument : arguments) {
      PyRef value = ToPython(argument.Value());
      if (argument.IsByRef()) {
        value =
            PyRef::Take(PyObject_CallFunctionObjArgs(TheKnown().ref.get(), value.get(), nullptr));
        references_.emplace_back(&argument, value);
      }
      if (argument.name().empty()) {
        Checked(PyList_Append(positional_.get(), value.get()));
      } else {
        Checked(PyDict_SetItem(named_.get(), ToText(argument.name()).get(), value.get()));
      }
    }
  }

  PyObject* positional() const { return positional_.get(); }
  PyObject* named() const { return named_.get(); }

  void WriteBack() const {
    for (const auto& [argument, reference] : references_) {
      argument->Put(
          FromPython(Attribute(reference.get(), "value").get(), argument->Value().IsObject()));
    }
  }

 private:
  PyRef positional_, named_;
  std::vector<std::pair<Argument*, PyRef>> references_;
};

const char* UseOf(CallKind kind) {
  if (Includes(kind, CallKind::kMethod)) return "call";
  if (Includes(kind, CallKind::kGet)) return "get";
  return Includes(kind, CallKind::kLet) ? "let" : "set";
}

// The name of a member as the object spells it.
PyRef SpellingOf(PyObject* object, std::string_view name) {
  PyRef exact = ToText(name);
  if (PyObject_HasAttr(object, exact.get()) != 0) return exact;
  const PyRef names = PyRef::Take(PyObject_Dir(object));
  for (Py_ssize_t i = 0; i < PyList_Size(names.get()); ++i) {
    PyObject* candidate = PyList_GetItem(names.get(), i);
    if (EqualsIgnoringAsciiCase(FromText(candidate), name)) return PyRef::Share(candidate);
  }
  throw Error(error_number::kMemberNotFound, "", "No member " + std::string(name) + ".");
}

PyRef CallMember(PyObject* object, std::string_view name, CallKind kind, const Outgoing& out) {
  const PyRef spelling = SpellingOf(object, name);
  if (Includes(kind, CallKind::kLet) || Includes(kind, CallKind::kSet)) {
    if (PyList_Size(out.positional()) != 1 || PyDict_Size(out.named()) != 0) {
      RaiseError(error_number::kWrongArgumentCount);
    }
    Checked(PyObject_SetAttr(object, spelling.get(), PyList_GetItem(out.positional(), 0)));
    return PyRef::Share(Py_None);
  }
  PyRef member = PyRef::Take(PyObject_GetAttr(object, spelling.get()));
  const bool takes = PyList_Size(out.positional()) + PyDict_Size(out.named()) > 0;
  // By name alone a method can't be told from a value.
  if (!takes && PyCallable_Check(member.get()) == 0) return member;
  return PyRef::Take(PyObject_Call(
      member.get(), PyRef::Take(PyList_AsTuple(out.positional())).get(), out.named()));
}

PyRef CallObject(PyObject* object, std::string_view name, CallKind kind, const Outgoing& out) {
  if (PyObject_HasAttrString(object, "__invoke__") == 0) {
    return CallMember(object, name, kind, out);
  }
  return PyRef::Take(PyObject_CallMethod(object, "__invoke__", "sOOO", UseOf(kind),
                                         ToText(name).get(), out.positional(), out.named()));
}

std::string NameOfClass(PyObject* object) {
  const PyRef name = Attribute(reinterpret_cast<PyObject*>(Py_TYPE(object)), "__name__");
  return FromText(name.get());
}

}  // namespace

ForeignObject::~ForeignObject() {
  const WithLock lock;
  object_ = PyRef();
}

Variant ForeignObject::Invoke(std::string_view name, CallKind kind, std::span<Argument> arguments) {
  const CallingOut out_of_here(this, kLevelsOfACall);
  const WithLock lock;
  const PyRef object = object_;
  try {
    const Outgoing outgoing(arguments);
    Variant result = FromPython(CallObject(object.get(), name, kind, outgoing).get());
    outgoing.WriteBack();
    return result;
  } catch (const Raised&) {
    throw TakeRaised(NameOfClass(object.get()));
  }
}

}  // namespace qdclgl::python
