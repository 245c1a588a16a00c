// Errors on their way between the library and Python. The classes of the library's own numbers
// stand in qdclgl/_errors.py; those of the server's refusals are made from its table.
#pragma once

#include "python/core/interpreter.h"
#include "qdclgl/frame/vocabulary/errors.h"

namespace qdclgl::python {

// Makes a class of each refusal of the server and puts it into the module.
void AddErrors(PyObject* module);

// Raises what is being handled as an exception of Python: for use in a catch (...).
void RaiseHandled();

// What Python has raised, as an error of the library; `source` is who has called Python.
Error TakeRaised(std::string_view source);

// What a function returns to the interpreter: the result of `body`, or `failure` with an exception
// raised.
template <class Result, class Body>
Result Guarded(Result failure, Body body) {
  try {
    return body();
  } catch (...) {
    RaiseHandled();
    return failure;
  }
}
template <class Body>
PyObject* Guarded(Body body) {
  return Guarded<PyObject*>(nullptr, [&] { return body().Detach(); });
}

// Raises a TypeError of Python with these words.
[[noreturn]] void RaiseTypeError(const std::string& words);
[[noreturn]] void RaiseValueError(const std::string& words);

}  // namespace qdclgl::python
