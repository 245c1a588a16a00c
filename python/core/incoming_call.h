// A call from Python to a member: its arguments on their way in, and back where they were given by
// reference.
#pragma once

#include <span>
#include <vector>

#include "python/core/interpreter.h"
#include "qdclgl/frame/objects/class_table.h"

namespace qdclgl::python {

// Arguments as the interpreter hands them over: positional ones, then those that `names` names.
struct Given {
  PyObject* const* values = nullptr;
  std::size_t positional = 0;
  PyObject* names = nullptr;

  std::size_t named() const;
};

// What calling a member of `self` gives. A needed argument that is left out, too many of them and
// unknown names are told in words.
PyRef CallMember(Object& self, const ClassMember& member, const Given& given);

PyRef GetMember(Object& self, const ClassMember& member, std::span<PyObject* const> keys = {});
void PutMember(Object& self, const ClassMember& member, std::span<PyObject* const> keys,
               PyObject* value);

}  // namespace qdclgl::python
