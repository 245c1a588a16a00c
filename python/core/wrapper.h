// The objects of Python that stand before ours. An object has one wrapper for as long as that is
// held.
#pragma once

#include <memory>

#include "python/core/interpreter.h"
#include "python/core/threads.h"
#include "qdclgl/frame/objects/class_table.h"

namespace qdclgl::python {

struct TypeOfClass;

struct Wrapper {
  PyObject_HEAD Object* object;
  const TypeOfClass* type;
  PyObject* weak_references;
  std::shared_ptr<Owner> owner;
};

// The wrapper of an object, with a reference for the caller; an object of Python's own is itself.
PyRef Wrap(Object* object);

// The object behind a wrapper, null for what is none.
Object* Unwrap(PyObject* object);

// The class `Object`, which all wrappers are of, made once.
PyTypeObject* BaseType();

}  // namespace qdclgl::python
