// The classes of Python: one for each class of the library, made from its member rows when the
// first is asked for.
#pragma once

#include "python/core/interpreter.h"
#include "qdclgl/frame/objects/class_table.h"

namespace qdclgl::python {

struct TypeOfClass {
  PyTypeObject* type = nullptr;
  allocfunc allocate = nullptr;       // of the type
  const ClassTable* table = nullptr;  // null for a class without member rows
  const ClassMember* count = nullptr;
  const ClassMember* item = nullptr;  // what x[...] reads and writes
  const ClassMember* elements = nullptr;
  bool is_of_rows = false;  // a list of a server's rows
};

// The class of Python for an object, and for a class of the library.
const TypeOfClass& TypeOf(Object& object);
const TypeOfClass& TypeOf(const ClassTable& table);

// Makes the named classes names of the module.
void AddTypes(PyObject* module);

}  // namespace qdclgl::python
