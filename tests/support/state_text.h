// Whole states as text, so that a test compares all of a state at once.
#pragma once

#include <span>
#include <string>

#include "qdclgl/frame/objects/late_bound.h"

namespace qdclgl::testing {

// A value as one reads it in code: 5 (Long), 5% (Integer), 5! (Single), 5# (Double), 5@ (Currency),
// 5d (Decimal), 5b (Byte), "text", True, #2024-01-31#, Empty, Null, Missing, Nothing, bytes(2a00),
// {FName: "Receipts", _Entries: [...]}, recordset{FGroupID, FName | 1, "Receipts"}, <ClassName>.
// A list whose first index is not 1 tells it: [0: ...].
std::string StateText(const Variant& value);

// An argument of a call: the value, `ref` and the value, `ref Variant` and the value for a
// reference to a Variant; a named one behind `Name:=`.
std::string StateText(const Argument& argument);
std::string StateText(std::span<const Argument> arguments);

}  // namespace qdclgl::testing
