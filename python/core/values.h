// Values both ways.
//
//   Boolean                 bool
//   Byte, Integer, Long     int
//   Single, Double          float
//   Currency, Decimal       decimal.Decimal
//   Date                    datetime.datetime without a zone
//   String                  str
//   bytes                   bytes
//   Empty, Nothing          None
//   Null                    qdclgl.Null
//   left out                ...
//   a result code           qdclgl.ErrorCode
//   an object               its wrapper; an object of Python's own is itself
#pragma once

#include "python/core/interpreter.h"
#include "qdclgl/frame/objects/variant.h"

namespace qdclgl::python {

PyRef ToPython(const Variant& value);

// Raised with a TypeError for what is no value of the library, with a ValueError or an
// OverflowError for a number or date that is none there. None is Nothing where an object is wanted,
// otherwise Empty.
Variant FromPython(PyObject* value, bool wants_object = false);

// Whether a row's word for a type stands for objects.
bool IsObjectWord(std::string_view word);

// The class of Python that a row's word for a type reads as: "Currency" as "decimal.Decimal".
std::string PythonWord(std::string_view word);

}  // namespace qdclgl::python
