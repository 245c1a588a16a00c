// The module qdclgl._core: the library's classes for Python, and what the package is made with.
#include "python/core/errors.h"
#include "python/core/known.h"
#include "python/core/recording_server.h"
#include "python/core/released.h"
#include "python/core/session.h"
#include "python/core/types.h"
#include "qdclgl/version.h"

namespace qdclgl::python {

namespace {

PyObject* GetInterface(PyObject*, PyObject*) {
  return Guarded([] { return Interface(); });
}

PyMethodDef kInterfaceFunctions[] = {
    {"interface", GetInterface, METH_NOARGS, "The member rows of all classes."}, {}};

int Execute(PyObject* module) {
  return Guarded(-1, [&] {
    // The library's session, threads and counts are those of the process.
    if (PyInterpreterState_GetID(PyInterpreterState_Get()) != 0) {
      PyErr_SetString(PyExc_ImportError,
                      "qdclgl works in the main interpreter only, not in sub-interpreters");
      throw Raised();
    }
    LoadKnown();
    Checked(PyModule_AddFunctions(module, kInterfaceFunctions));
    Checked(PyModule_AddFunctions(module, kSessionFunctions));
    AddErrors(module);
    AddTypes(module);
    AddRecordingServer(module);
    RegisterReleasedComponents();
    return Checked(
        PyModule_AddStringConstant(module, "__version__", std::string(Version()).c_str()));
  });
}

PyModuleDef_Slot kSlots[] = {{Py_mod_exec, reinterpret_cast<void*>(Execute)}, {}};
PyModuleDef kModule = {PyModuleDef_HEAD_INIT,
                       "qdclgl._core",
                       "The library's classes for Python.",
                       0,
                       nullptr,
                       kSlots,
                       nullptr,
                       nullptr,
                       nullptr};

}  // namespace

}  // namespace qdclgl::python

PyMODINIT_FUNC PyInit__core() { return PyModuleDef_Init(&qdclgl::python::kModule); }
