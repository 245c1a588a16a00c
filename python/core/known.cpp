#include "python/core/known.h"

namespace qdclgl::python {

Known& TheKnown() {
  // Never ended: the interpreter is gone before it could be.
  static Known& known = *new Known;
  return known;
}

void LoadKnown() {
  const PyRef datetime = Import("datetime");
  const PyRef values = Import("qdclgl._values");
  const PyRef errors = Import("qdclgl._errors");
  TheKnown() = {
      .decimal = Attribute(Import("decimal").get(), "Decimal"),
      .date = Attribute(datetime.get(), "date"),
      .datetime = Attribute(datetime.get(), "datetime"),
      .iskeyword = Attribute(Import("keyword").get(), "iskeyword"),
      .null = Attribute(values.get(), "Null"),
      .ref = Attribute(values.get(), "Ref"),
      .error_code = Attribute(values.get(), "ErrorCode"),
      .error = Attribute(errors.get(), "Error"),
      .refusal = Attribute(errors.get(), "Refusal"),
      .error_by_number = Attribute(errors.get(), "BY_NUMBER"),
  };
}

}  // namespace qdclgl::python
