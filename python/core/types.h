// The classes of Python: one for each class of the library, made from its member rows when the
// first is asked for.
#pragma once

#include "python/core/interpreter.h"
#include "qdclgl/frame/objects/class_table.h"

namespace qdclgl::python {

struct TypeOfClass {
  PyTypeObject* type = nullptr;
  const ClassTable* table = nullptr;  // null for a class without member rows
  const ClassMember* count = nullptr;
  const ClassMember* item = nullptr;  // what x[...] reads and writes
  const ClassMember* elements = nullptr;
  bool is_of_rows = false;  // a list of a server's rows
};

// The class of Python for an object, and for a class of the library.
const TypeOfClass& TypeOf(Object& object);
const TypeOfClass& TypeOf(const ClassTable& table);

// The classes that are names of the module: all public ones, and the containers of the frame.
std::vector<const ClassTable*> NamedClasses();
void AddTypes(PyObject* module);

// The rows of the named classes as Python has them, for what is made from them:
// (class, help, can be made, [(member, uses, type read, type put, help,
//   [(parameter, type, by reference, optional, default)])]).
PyRef Interface();

}  // namespace qdclgl::python
