// What the module uses of Python: classes of the standard library, and those of the package that
// are written in Python.
#pragma once

#include "python/core/interpreter.h"

namespace qdclgl::python {

struct Known {
  PyRef decimal;          // decimal.Decimal
  PyRef date;             // datetime.date
  PyRef datetime;         // datetime.datetime
  PyRef null;             // qdclgl.Null
  PyRef ref;              // qdclgl.Ref
  PyRef error_code;       // qdclgl.ErrorCode
  PyRef error;            // qdclgl.Error
  PyRef refusal;          // qdclgl.Refusal
  PyRef error_by_number;  // a dict
};

// Filled by the first import and kept to the end of the process.
Known& TheKnown();
void LoadKnown();

// Whether an object is of a class, or of one derived from it.
inline bool IsOf(PyObject* object, const PyRef& type) {
  return PyObject_TypeCheck(object, reinterpret_cast<PyTypeObject*>(type.get())) != 0;
}

}  // namespace qdclgl::python
