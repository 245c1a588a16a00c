// Values across the edge: VARIANT outside, Variant inside.
#pragma once

#include <string_view>

#include "qdclgl/automation/crossing.h"
#include "qdclgl/frame/containers/vector.h"
#include "qdclgl/frame/objects/variant.h"

namespace qdclgl::automation {

// The VARTYPE for the word by which a row names a type; VT_DISPATCH for a class.
VARTYPE TypeOfWord(std::string_view word);

// The value in `source`, references followed to the end. Objects arrive as crossing.h tells. Whole
// numbers of types that we don't have become the narrowest type of ours that holds them. Error 13
// for what has no counterpart, with words where a value is refused for what it is: arrays of
// anything but bytes or of several dimensions, texts of half a unit; without them for types that no
// language has, and for references that lead nowhere or in a circle.
Variant FromVariant(const VARIANT& source, Taking taking);

// The same, with an array of one dimension, whatever but bytes it holds, as a Vector.
Variant ListFromVariant(const VARIANT& source, Taking taking);

// Puts `value` into an empty VARIANT.
void ToVariant(const Variant& value, VARIANT* destination);

// Puts a Vector into an empty VARIANT as an array of `dimensions`, one or two, from its own lower
// bound on: for two, the element at (i, j) is the one at j of the Vector at i, which are all of one
// length and begin at 0.
void ToArray(const Vector& list, int dimensions, VARIANT* destination);

// `value` as a variable of the type that a row's word names takes it. Errors 13 and 6.
Variant ConvertedTo(const Variant& value, std::string_view word);

// Overwrites the variable behind a by-reference VARIANT, releasing what it held; a typed variable
// takes the value converted (errors 13 and 6).
void WriteThrough(const VARIANT& reference, const Variant& value);

// An owned BSTR, for the caller to free.
BSTR NewText(std::string_view text);

}  // namespace qdclgl::automation
