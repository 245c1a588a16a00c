// What crosses between the library and Python: objects, which have a wrapper there, and values.
//
//   Boolean                 bool
//   Byte, Integer, Long     int
//   Single, Double          float
//   Currency, Decimal       decimal.Decimal
//   Date                    datetime.datetime without a zone
//   String                  str
//   bytes                   bytes
//   Empty, Nothing          None
//   Null                    qdclgl.Null
//   left out                ...
//   a result code           qdclgl.ErrorCode
//   an object               its wrapper; an object of Python's own is itself
#pragma once

#include <memory>

#include "python/core/interpreter.h"
#include "python/core/threads.h"
#include "qdclgl/frame/objects/variant.h"

namespace qdclgl::python {

struct TypeOfClass;

// An object of Python that stands before one of ours, which has no other for as long as that is
// held.
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

// ---- Values ----

PyRef ToPython(const Variant& value);

// Raised with a TypeError for what is no value of the library, with a ValueError or an
// OverflowError for a number or date that is none there. None is Nothing where an object is wanted,
// otherwise Empty.
Variant FromPython(PyObject* value, bool wants_object = false);

}  // namespace qdclgl::python
