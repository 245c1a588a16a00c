#include "python/core/errors.h"

#include <array>
#include <new>

#include "python/core/known.h"
#include "qdclgl/server/db/refusals.h"

namespace qdclgl::python {

namespace {

// What an exception of Python's own means to a caller that knows numbers; the first that fits.
std::int32_t NumberOf(PyObject* exception) {
  using namespace error_number;
  const std::array<std::pair<PyObject*, std::int32_t>, 8> kNumbers = {{
      {PyExc_OverflowError, kOverflow},
      {PyExc_TypeError, kTypeMismatch},
      {PyExc_IndexError, kSubscriptOutOfRange},
      {PyExc_KeyError, kInvalidCall},
      {PyExc_ValueError, kInvalidCall},
      {PyExc_MemoryError, kOutOfMemory},
      {PyExc_RecursionError, kOutOfStackSpace},
      {PyExc_AttributeError, kMemberNotFound},
  }};
  for (const auto& [type, number] : kNumbers) {
    if (PyErr_GivenExceptionMatches(exception, type) != 0) return number;
  }
  return kAutomationError;
}

std::string TextOf(PyObject* object) {
  PyObject* text = PyObject_Str(object);
  if (text == nullptr) {
    PyErr_Clear();
    return "";
  }
  return FromText(PyRef::Take(text).get());
}

Error ErrorOf(PyObject* exception, std::string_view source) {
  if (IsOf(exception, TheKnown().error)) {
    const long number = PyLong_AsLong(Attribute(exception, "number").get());
    if (number == -1 && PyErr_Occurred() != nullptr) throw Raised();
    return Error(static_cast<std::int32_t>(number), TextOf(Attribute(exception, "source").get()),
                 TextOf(Attribute(exception, "description").get()));
  }
  const PyRef type = PyRef::Share(reinterpret_cast<PyObject*>(Py_TYPE(exception)));
  const std::string words = TextOf(exception);
  return Error(
      NumberOf(exception), std::string(source),
      TextOf(Attribute(type.get(), "__name__").get()) + (words.empty() ? "" : ": " + words));
}

void Raise(const Error& error) {
  const PyRef number = PyRef::Take(PyLong_FromLong(error.number()));
  PyObject* type = PyDict_GetItemWithError(TheKnown().error_by_number.get(), number.get());
  if (type == nullptr) {
    if (PyErr_Occurred() != nullptr) return;
    type = TheKnown().error.get();
  }
  const PyRef exception =
      PyRef::Take(PyObject_CallFunctionObjArgs(type, number.get(), ToText(error.source()).get(),
                                               ToText(error.description()).get(), nullptr));
  PyErr_SetObject(type, exception.get());
}

[[noreturn]] void RaiseOwn(PyObject* type, const std::string& words) {
  PyErr_SetString(type, words.c_str());
  throw Raised();
}

}  // namespace

void AddErrors(PyObject* module) {
  Known& known = TheKnown();
  for (const server::RefusalRow& row : server::kRefusals) {
    const std::string name(row.name);
    PyObject* lookup = row.number == server::refusal::kNotFound ? PyExc_KeyError : nullptr;
    const PyRef bases =
        PyRef::Take(lookup == nullptr ? PyTuple_Pack(1, known.refusal.get())
                                      : PyTuple_Pack(2, known.refusal.get(), lookup));
    const PyRef number = PyRef::Take(PyLong_FromLong(row.number));
    const PyRef members = PyRef::Take(PyDict_New());
    Checked(PyDict_SetItemString(members.get(), "NUMBER", number.get()));
    const PyRef type = PyRef::Take(PyErr_NewExceptionWithDoc(
        ("qdclgl." + name).c_str(), std::string(row.meaning).c_str(), bases.get(), members.get()));
    Checked(PyDict_SetItem(known.error_by_number.get(), number.get(), type.get()));
    Checked(PyModule_AddObjectRef(module, name.c_str(), type.get()));
  }
}

void RaiseHandled() {
  try {
    throw;
  } catch (const Raised&) {
  } catch (const Error& error) {
    try {
      Raise(error);
    } catch (const Raised&) {
    }
  } catch (const std::bad_alloc&) {
    PyErr_NoMemory();
  } catch (const std::exception& error) {
    PyErr_SetString(PyExc_RuntimeError, error.what());
  }
}

Error TakeRaised(std::string_view source) {
  PyObject *type = nullptr, *value = nullptr, *trace = nullptr;
  PyErr_Fetch(&type, &value, &trace);
  PyErr_NormalizeException(&type, &value, &trace);
  const PyRef held_type = PyRef::Take(type);
  Py_XDECREF(trace);
  const PyRef exception = PyRef::Take(value);
  try {
    return ErrorOf(exception.get(), source);
  } catch (const Raised&) {
    PyErr_Clear();
    return Error(error_number::kAutomationError, std::string(source));
  }
}

void RaiseTypeError(const std::string& words) { RaiseOwn(PyExc_TypeError, words); }

void RaiseValueError(const std::string& words) { RaiseOwn(PyExc_ValueError, words); }

}  // namespace qdclgl::python
