// The session of a thread, and the server components that Python knows by name.
#pragma once

#include "python/core/interpreter.h"

namespace qdclgl::python {

// The functions of the module that deal with sessions, components and lists.
extern PyMethodDef kSessionFunctions[];

}  // namespace qdclgl::python
