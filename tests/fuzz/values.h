// Values of every type for fuzzes, the odd ones above all.
#pragma once

#include <span>
#include <string>

#include "qdclgl/frame/objects/late_bound.h"
#include "tests/fuzz/choices.h"

namespace qdclgl::fuzz {

// A text: numbers, dates, names of columns, pieces of the little languages, texts that are no UTF-8
// or very long, noise.
std::string AnyText(Choices& choices);
Double AnyDouble(Choices& choices);
Long AnyLong(Choices& choices);
// A value of any type but an object.
Variant AnyPlainValue(Choices& choices);

// The keys that rows have, of all public classes.
std::span<const std::string_view> RowKeys();

// A value as a report shows it: the type and the beginning of the value, an object's class.
std::string ShortText(const Variant& value);

}  // namespace qdclgl::fuzz
