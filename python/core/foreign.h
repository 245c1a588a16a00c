// Objects of Python's own, as the library calls them.
#pragma once

#include "python/core/interpreter.h"
#include "qdclgl/frame/objects/late_bound.h"

namespace qdclgl::python {

// Its members are called by name: as they are spelled, otherwise without regard to case. Arguments
// by reference come as a qdclgl.Ref. An object with a method __invoke__(use, name, arguments,
// named) is asked by that for all; `use` is "call", "get", "let" or "set".
class ForeignObject final : public Object {
 public:
  explicit ForeignObject(PyRef object) : object_(std::move(object)) {}
  ~ForeignObject() override;

  PyObject* object() const { return object_.get(); }

  std::string_view ClassName() const override { return "PythonObject"; }
  // What the object raises arrives as an error; see TakeRaised.
  Variant Invoke(std::string_view name, CallKind kind, std::span<Argument> arguments) override;

 private:
  PyRef object_;
};

}  // namespace qdclgl::python
