// The interpreter's own C interface, of which the module uses the part that stays the same from
// version to version, and what owns its references.
#pragma once

#define PY_SSIZE_T_CLEAN
#ifndef Py_LIMITED_API
#define Py_LIMITED_API 0x030B0000
#endif
#include <Python.h>
#include <structmember.h>

#include <string>
#include <string_view>
#include <utility>

namespace qdclgl::python {

// The interpreter has raised an exception, which is its own to keep until a call returns to it.
struct Raised {};

// A counted reference to an object of the interpreter.
class PyRef {
 public:
  PyRef() = default;
  // Takes over a new reference. Raised for null, by which the interpreter tells of an exception.
  static PyRef Take(PyObject* object) {
    if (object == nullptr) throw Raised();
    return PyRef(object);
  }
  // Adds a reference to a borrowed one.
  static PyRef Share(PyObject* object) { return Take(Py_XNewRef(object)); }

  PyRef(const PyRef& other) : object_(Py_XNewRef(other.object_)) {}
  PyRef(PyRef&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  PyRef& operator=(PyRef other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~PyRef() { Py_XDECREF(object_); }

  PyObject* get() const { return object_; }
  explicit operator bool() const { return object_ != nullptr; }
  // Gives the reference away, as a function that the interpreter calls returns it.
  PyObject* Detach() { return std::exchange(object_, nullptr); }

 private:
  explicit PyRef(PyObject* object) : object_(object) {}

  PyObject* object_ = nullptr;
};

// Raised where a call of the interpreter tells of failure by a negative number.
inline int Checked(int result) {
  if (result < 0) throw Raised();
  return result;
}

inline PyRef Attribute(PyObject* object, const char* name) {
  return PyRef::Take(PyObject_GetAttrString(object, name));
}
inline PyRef Import(const char* module) { return PyRef::Take(PyImport_ImportModule(module)); }

// Text both ways. Half a character of automation's stays what it is.
PyRef ToText(std::string_view text);
std::string FromText(PyObject* text);

}  // namespace qdclgl::python
