// The stand-in for all server components, for tests of programs that use the module.
#pragma once

#include "python/core/interpreter.h"

namespace qdclgl::python {

void AddRecordingServer(PyObject* module);

}  // namespace qdclgl::python
